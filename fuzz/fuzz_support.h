#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string_view>

namespace romsteward::fuzz {

/// One in-memory file per process that a target refills with each input, so the code under
/// test reads and writes a real file without the cost of a disk.
class MemoryFile {
public:
  MemoryFile();
  ~MemoryFile();
  MemoryFile(const MemoryFile&) = delete;
  MemoryFile& operator=(const MemoryFile&) = delete;

  /// Replaces the whole contents with `bytes`.
  void Fill(std::string_view bytes);
  /// A path that opens this file.
  const std::filesystem::path& Path() const { return m_path; }

private:
  int m_fd = -1;
  std::filesystem::path m_path;
};

/// A fresh, empty folder in memory-backed storage where there is some (/dev/shm).
std::filesystem::path MakeScratchFolder();

inline std::string_view AsText(const std::uint8_t* data, std::size_t size) {
  return {reinterpret_cast<const char*>(data), size};
}

}  // namespace romsteward::fuzz
