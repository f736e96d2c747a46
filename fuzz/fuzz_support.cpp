#include "fuzz_support.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>

namespace romsteward::fuzz {

MemoryFile::MemoryFile() : m_fd(::memfd_create("romsteward-fuzz", MFD_CLOEXEC)) {
  if (m_fd < 0) {
    std::perror("memfd_create");
    std::abort();
  }
  m_path = "/proc/self/fd/" + std::to_string(m_fd);
}

MemoryFile::~MemoryFile() {
  ::close(m_fd);
}

void MemoryFile::Fill(std::string_view bytes) {
  if (::ftruncate(m_fd, 0) != 0) std::abort();
  for (std::size_t done = 0; done < bytes.size();) {
    const ssize_t put =
        ::pwrite(m_fd, bytes.data() + done, bytes.size() - done, static_cast<off_t>(done));
    if (put <= 0) std::abort();
    done += static_cast<std::size_t>(put);
  }
}

std::filesystem::path MakeScratchFolder() {
  std::error_code error;
  const std::filesystem::path base =
      std::filesystem::is_directory("/dev/shm", error) ? "/dev/shm" : "/tmp";
  std::string pattern = (base / "romsteward-fuzz-XXXXXX").string();
  if (::mkdtemp(pattern.data()) == nullptr) std::abort();
  return pattern;
}

}  // namespace romsteward::fuzz
