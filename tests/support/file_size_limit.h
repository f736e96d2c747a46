#pragma once

#include <sys/resource.h>

#include <csignal>
#include <cstdint>

namespace romsteward::test {

/// While alive, no file of this process can grow beyond `bytes`: a write past it fails as on
/// a full disk, so tests can watch a write fail half way without a special file system.
class FileSizeLimit {
public:
  explicit FileSizeLimit(std::uint64_t bytes) : m_handler(std::signal(SIGXFSZ, SIG_IGN)) {
    ::getrlimit(RLIMIT_FSIZE, &m_old);
    rlimit limited{static_cast<rlim_t>(bytes), m_old.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &limited);
  }
  ~FileSizeLimit() {
    ::setrlimit(RLIMIT_FSIZE, &m_old);
    std::signal(SIGXFSZ, m_handler);
  }
  FileSizeLimit(const FileSizeLimit&) = delete;
  FileSizeLimit& operator=(const FileSizeLimit&) = delete;

private:
  void (*m_handler)(int);
  rlimit m_old{};
};

}  // namespace romsteward::test
