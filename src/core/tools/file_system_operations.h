#pragma once

#include <cstdint>
#include <filesystem>

#include "core/common/result.h"
#include "core/tools/file_operations.h"

namespace romsteward {

/// The file operations done with the file system alone: what the terminal tool and the
/// tests use, and what the desktop program uses for everything but the trash. Copies (and
/// moves across file systems) of `progressThreshold` bytes or more show progress and can be
/// cancelled; every target is written beside itself and renamed into place, so a cancel or
/// a failure leaves none. Delete asks first and always deletes for good: it has no trash to
/// offer, which is why the desktop program brings its own delete.
class FileSystemOperations : public FileOperations {
public:
  static constexpr std::uint64_t kDefaultProgressThreshold = 4 << 20;

  explicit FileSystemOperations(std::uint64_t progressThreshold = kDefaultProgressThreshold)
      : m_progressThreshold(progressThreshold) {}

  FileOperationResult Run(const FileOperationRequest& request, Host& host) override;

private:
  std::uint64_t m_progressThreshold;
};

/// Moves `from` to `to`, replacing it, without questions: a rename, or a copy and a delete
/// across file systems. For files the program made itself (an extracted archive member).
Status MoveFileReplacing(const std::filesystem::path& from, const std::filesystem::path& to);

}  // namespace romsteward
