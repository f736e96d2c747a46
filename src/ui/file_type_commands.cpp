#include "ui/file_type_commands.h"

#include <QCoreApplication>

#include "core/common/strings.h"
#include "core/settings/file_types.h"
#include "ui/message_box.h"
#include "ui/qt_text.h"

namespace romsteward::ui {

namespace {

void Report(QWidget* parent, const Result<FileTypeReport>& report, std::string_view done) {
  if (!report) {
    ShowMessageBox(parent, MessageIcon::Critical, {}, report.error().message, QMessageBox::Ok,
                   QMessageBox::Ok);
    return;
  }
  // A missing desktop tool leaves the files in place; say what the desktop may not know yet.
  std::string text(done);
  for (const auto& note : report->notes)
    text += "\n" + note;
  ShowMessageBox(parent,
                 report->notes.empty() ? MessageIcon::Information : MessageIcon::Exclamation, {},
                 text, QMessageBox::Ok, QMessageBox::Ok);
}

Result<FileTypePlaces> Places() {
  return DefaultFileTypePlaces(Utf8ToPath(FromQt(QCoreApplication::applicationFilePath())));
}

}  // namespace

void RegisterFileTypesForThisProgram(QWidget* parent) {
  auto places = Places();
  Report(parent, places ? RegisterFileTypes(*places) : Result<FileTypeReport>(places.error()),
         "Images ending in .bin, .smd, .1 and .md now open with Genesis Romsteward.");
}

void RemoveFileTypeRegistration(QWidget* parent) {
  auto places = Places();
  Report(parent, places ? RemoveFileTypes(*places) : Result<FileTypeReport>(places.error()),
         "The image types are no longer registered.");
}

}  // namespace romsteward::ui
