#include "ui/trash_file_operations.h"

#include <QFile>
#include <QFileInfo>

#include "core/common/strings.h"
#include "core/host/host.h"
#include "ui/qt_text.h"

namespace romsteward::ui {

FileOperationResult TrashFileOperations::Run(const FileOperationRequest& request, Host& host) {
  if (request.verb != FileVerb::Delete || !request.toTrash) return m_fileSystem.Run(request, host);
  for (const std::filesystem::path& source : request.sources) {
    const QString path = ToQt(PathToUtf8(source));
    FileOperationResult result;
    result.failedSource = source;
    if (!QFileInfo(path).isFile()) {
      result.code = FileOpCode::NotFound;
      result.reason = PathToUtf8(source) + " is not a file";
      return result;
    }
    const std::string question = "Move '" + PathToUtf8(source.filename()) + "' to the trash?";
    if (host.AskYesNo(question, MessageIcon::Question, {}) != Answer::Yes) {
      result.code = FileOpCode::Cancelled;
      result.aborted = true;
      return result;
    }
    if (!QFile::moveToTrash(path)) {
      result.code = FileOpCode::Failed;
      result.reason = "The trash refused " + PathToUtf8(source);
      return result;
    }
  }
  return {};
}

}  // namespace romsteward::ui
