#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <string>
#include <string_view>

#include "core/common/result.h"

namespace romsteward {

/// An open file read and written at explicit offsets, the way every image routine works.
/// Move-only; the descriptor closes with the object.
class BinaryFile {
public:
  enum class Mode { Read, ReadWrite };

  static Result<BinaryFile> Open(const std::filesystem::path& path, Mode mode = Mode::Read);

  BinaryFile(BinaryFile&& other) noexcept;
  BinaryFile& operator=(BinaryFile&& other) noexcept;
  BinaryFile(const BinaryFile&) = delete;
  BinaryFile& operator=(const BinaryFile&) = delete;
  ~BinaryFile();

  const std::filesystem::path& Path() const { return m_path; }
  Mode OpenMode() const { return m_mode; }

  /// Current length in bytes (asked of the file system each time: writes may extend it).
  std::uint64_t Size() const;

  /// Up to `count` bytes from `offset`; fewer when the file ends first.
  std::string ReadAt(std::uint64_t offset, std::size_t count) const;
  /// Fills as much of `out` as the file holds from `offset`; returns the bytes read.
  std::size_t ReadInto(std::uint64_t offset, std::span<char> out) const;

  Status WriteAt(std::uint64_t offset, std::string_view data);
  Status Truncate(std::uint64_t length);

private:
  BinaryFile(int fd, std::filesystem::path path, Mode mode);

  int m_fd = -1;
  std::filesystem::path m_path;
  Mode m_mode = Mode::Read;
};

/// Whole file in memory; a clear error naming the file when it cannot be read.
Result<std::string> ReadWholeFile(const std::filesystem::path& path);

/// Whether the current user may write the file (the read-only attribute of old). A file
/// without any write permission bit counts as read-only even for the superuser.
bool IsWritableByUser(const std::filesystem::path& path);

}  // namespace romsteward
