#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <string>
#include <string_view>

#include "core/common/result.h"

namespace romsteward {

/// The first bytes of a file mapped into memory for reading; unmapped with the object.
class MappedBytes {
public:
  MappedBytes() = default;
  MappedBytes(MappedBytes&& other) noexcept;
  MappedBytes& operator=(MappedBytes&& other) noexcept;
  MappedBytes(const MappedBytes&) = delete;
  MappedBytes& operator=(const MappedBytes&) = delete;
  ~MappedBytes();

  std::string_view View() const { return {static_cast<const char*>(m_address), m_length}; }

private:
  friend class BinaryFile;
  MappedBytes(void* address, std::size_t length) : m_address(address), m_length(length) {}

  void* m_address = nullptr;
  std::size_t m_length = 0;
};

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

  /// The first offset at or after `offset` that may hold data other than a hole of a sparse
  /// file (which reads as zeros); the file's size when only a hole follows. Where the file
  /// system cannot tell, `offset` itself.
  std::uint64_t NextDataOffset(std::uint64_t offset) const;
  /// Where the data from `offset` on ends in a hole (or the file ends); where the file system
  /// cannot tell, the largest offset there is.
  std::uint64_t NextHoleOffset(std::uint64_t offset) const;

  /// The first `length` bytes (no more than the file holds) mapped for reading, with the
  /// pages brought in at once: what is read whole is neither copied nor zeroed first.
  Result<MappedBytes> MapForReading(std::size_t length) const;

  Status WriteAt(std::uint64_t offset, std::string_view data);
  Status Truncate(std::uint64_t length);

private:
  BinaryFile(int fd, std::filesystem::path path, Mode mode);

  int m_fd = -1;
  std::filesystem::path m_path;
  Mode m_mode = Mode::Read;
};

/// The largest file read whole into memory: no cartridge image, patch or template comes near
/// it, and it keeps a mistaken multi-gigabyte input from taking the machine's memory.
inline constexpr std::uint64_t kMaxWholeFileSize = 64ull * 1024 * 1024;

/// Whole file in memory; a clear error naming the file when it cannot be read or is larger
/// than `limit`.
Result<std::string> ReadWholeFile(const std::filesystem::path& path,
                                  std::uint64_t limit = kMaxWholeFileSize);

/// Whether the current user may write the file (the read-only attribute of old). A file
/// without any write permission bit counts as read-only even for the superuser.
bool IsWritableByUser(const std::filesystem::path& path);

}  // namespace romsteward
