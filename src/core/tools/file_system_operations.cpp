#include "core/tools/file_system_operations.h"

#include <cerrno>
#include <optional>
#include <system_error>

#include "core/common/atomic_file.h"
#include "core/common/binary_file.h"
#include "core/common/strings.h"
#include "core/tools/byte_copy.h"

namespace romsteward {

namespace {

namespace fs = std::filesystem;

FileOpCode CodeOf(const std::error_code& error) {
  if (error == std::errc::no_space_on_device || error == std::errc::file_too_large ||
      error == std::errc::io_error)
    return FileOpCode::WriteError;
#ifdef EDQUOT
  if (error.value() == EDQUOT) return FileOpCode::WriteError;  // over quota: a full disk too
#endif
  if (error == std::errc::permission_denied || error == std::errc::operation_not_permitted ||
      error == std::errc::read_only_file_system)
    return FileOpCode::AccessDenied;
  if (error == std::errc::no_such_file_or_directory || error == std::errc::not_a_directory)
    return FileOpCode::NotFound;
  if (error == std::errc::file_exists || error == std::errc::directory_not_empty ||
      error == std::errc::is_a_directory)
    return FileOpCode::TargetExists;
  return FileOpCode::Failed;
}

FileOperationResult Failure(FileOpCode code, std::string reason, bool aborted = false) {
  FileOperationResult result;
  result.code = code;
  result.aborted = aborted;
  result.reason = std::move(reason);
  return result;
}

FileOperationResult Failure(const Error& error) {
  return Failure(CodeOf(std::error_code(error.systemError, std::generic_category())),
                 error.message);
}

FileOperationResult Failure(const std::error_code& error, std::string_view what,
                            const fs::path& path) {
  return Failure(CodeOf(error),
                 std::string(what) + " " + PathToUtf8(path) + ": " + error.message());
}

FileOperationResult UserCancelled() {
  return Failure(FileOpCode::Cancelled, "Cancelled", true);
}

bool SamePlace(const fs::path& a, const fs::path& b) {
  if (a.lexically_normal() == b.lexically_normal()) return true;
  std::error_code error;
  return fs::equivalent(a, b, error);
}

bool Exists(const fs::path& path) {
  std::error_code error;
  return fs::exists(fs::symlink_status(path, error));
}

// Only plain files are worked on, never folders.
std::optional<FileOperationResult> CheckSource(const fs::path& source) {
  std::error_code error;
  const fs::file_status status = fs::status(source, error);
  if (!fs::exists(status)) return Failure(FileOpCode::NotFound, PathToUtf8(source) + " is missing");
  if (!fs::is_regular_file(status))
    return Failure(FileOpCode::NotFound, PathToUtf8(source) + " is not a file");
  return std::nullopt;
}

// The question before a file is replaced; nullopt means go ahead.
std::optional<FileOperationResult> ConfirmReplace(Host& host, const fs::path& target) {
  if (!Exists(target)) return std::nullopt;
  std::error_code error;
  if (fs::is_directory(fs::symlink_status(target, error)))
    return Failure(FileOpCode::TargetExists, PathToUtf8(target) + " is a folder");
  if (!IsWritableByUser(target))
    return Failure(FileOpCode::AccessDenied, PathToUtf8(target) + " is read-only");
  const std::string question =
      "The file '" + PathToUtf8(target) + "' already exists. Do you want to replace it?";
  if (host.AskYesNo(question, MessageIcon::Question, {}) != Answer::Yes) return UserCancelled();
  return std::nullopt;
}

// `source`'s bytes, permissions and modification time as `target`, which appears whole or
// not at all. With a Host, copies of `threshold` bytes or more show progress and can be
// cancelled.
FileOperationResult CopyContents(const fs::path& source, const fs::path& target, Host* host,
                                 std::string_view caption, std::uint64_t threshold) {
  auto in = BinaryFile::Open(source);
  if (!in) return Failure(in.error());
  auto writer = AtomicFileWriter::Create(target);
  if (!writer) return Failure(writer.error());

  const std::uint64_t size = in->Size();
  std::optional<ScopedProgress> progress;
  CopyProgress onChunk;
  if (host != nullptr && size >= threshold) {
    progress.emplace(*host, caption);
    onChunk = [host, size](std::uint64_t done) {
      return host->SetProgress(static_cast<int>(done * 100 / size));
    };
  }
  auto copied = AppendFileRange(*in, 0, size, *writer, onChunk);
  if (!copied) return Failure(copied.error());
  if (*copied == CopyEnd::Cancelled) return UserCancelled();

  // Like a copy made by the desktop: same permissions, same date.
  std::error_code ignored;
  fs::permissions(writer->TemporaryPath(), fs::status(source, ignored).permissions(), ignored);
  fs::last_write_time(writer->TemporaryPath(), fs::last_write_time(source, ignored), ignored);
  if (Status committed = writer->Commit(); !committed) return Failure(committed.error());
  return {};
}

class Job {
public:
  Job(const FileOperationRequest& request, Host& host, std::uint64_t threshold)
      : m_request(request), m_host(host), m_threshold(threshold) {}

  FileOperationResult Copy(const fs::path& source, const fs::path& target) {
    if (auto refused = CheckSource(source)) return *refused;
    if (SamePlace(source, target))
      return Failure(FileOpCode::SameFile, PathToUtf8(source) + " is its own target");
    if (auto refused = ConfirmReplace(m_host, target)) return *refused;
    return CopyContents(source, target, &m_host, m_request.description, m_threshold);
  }

  FileOperationResult Move(const fs::path& source, const fs::path& target) {
    if (auto refused = CheckSource(source)) return *refused;
    if (SamePlace(source, target))
      return Failure(FileOpCode::SameFile, PathToUtf8(source) + " is its own target");
    if (auto refused = ConfirmReplace(m_host, target)) return *refused;
    std::error_code error;
    fs::rename(source, target, error);
    if (!error) return {};
    if (error != std::errc::cross_device_link) return Failure(error, "Cannot move", source);
    if (FileOperationResult copied =
            CopyContents(source, target, &m_host, m_request.description, m_threshold);
        !copied.ok())
      return copied;
    if (fs::remove(source, error); error) {
      // Either both or neither: a source that stays means the copy goes.
      std::error_code ignored;
      fs::remove(target, ignored);
      return Failure(error, "Cannot move", source);
    }
    return {};
  }

  FileOperationResult Rename(const fs::path& source, const fs::path& target) {
    if (auto refused = CheckSource(source)) return *refused;
    if (Exists(target) && !SamePlace(source, target))
      return Failure(FileOpCode::TargetExists, PathToUtf8(target) + " already exists");
    std::error_code error;
    fs::rename(source, target, error);
    if (error) return Failure(error, "Cannot rename", source);
    return {};
  }

  FileOperationResult Delete(const fs::path& source) {
    if (auto refused = CheckSource(source)) return *refused;
    const std::string question =
        "Are you sure you want to delete '" + PathToUtf8(source.filename()) + "' for good?";
    if (m_host.AskYesNo(question, MessageIcon::Exclamation, {}) != Answer::Yes)
      return UserCancelled();
    std::error_code error;
    fs::remove(source, error);
    if (error) return Failure(error, "Cannot delete", source);
    return {};
  }

private:
  const FileOperationRequest& m_request;
  Host& m_host;
  std::uint64_t m_threshold;
};

}  // namespace

FileOperationResult FileSystemOperations::Run(const FileOperationRequest& request, Host& host) {
  Job job(request, host, m_progressThreshold);
  // A rename names the new file itself, even when a folder of that name exists.
  std::error_code error;
  const bool intoFolder = request.verb != FileVerb::Rename && !request.destination.empty() &&
                          fs::is_directory(request.destination, error);
  for (const fs::path& source : request.sources) {
    const fs::path target =
        intoFolder ? request.destination / source.filename() : request.destination;
    FileOperationResult result;
    if (request.verb != FileVerb::Delete && !intoFolder && request.sources.size() > 1) {
      result = Failure(FileOpCode::Failed,
                       PathToUtf8(request.destination) + " is not a folder for several files");
    } else {
      switch (request.verb) {
        case FileVerb::Copy:
          result = job.Copy(source, target);
          break;
        case FileVerb::Move:
          result = job.Move(source, target);
          break;
        case FileVerb::Rename:
          result = job.Rename(source, target);
          break;
        case FileVerb::Delete:
          result = job.Delete(source);
          break;
      }
    }
    if (!result.ok()) {
      result.failedSource = source;
      return result;
    }
  }
  return {};
}

Status MoveFileReplacing(const fs::path& from, const fs::path& to) {
  std::error_code error;
  fs::rename(from, to, error);
  if (!error) return {};
  if (error != std::errc::cross_device_link)
    return Error{
        "Cannot move " + PathToUtf8(from) + " to " + PathToUtf8(to) + ": " + error.message(),
        error.value()};
  if (FileOperationResult copied = CopyContents(from, to, nullptr, {}, 0); !copied.ok())
    return Error{copied.reason};
  fs::remove(from, error);
  return {};
}

}  // namespace romsteward
