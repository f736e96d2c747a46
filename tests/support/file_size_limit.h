#pragma once

#include <sys/resource.h>

#include <csignal>
#include <cstdint>

namespace romsteward::test {

/// While alive, no file of this process can grow beyond `bytes`: writes past it fail as they
/// would on a full disk, so the tests can watch a write fail half way without root or a
/// special file system.
class FileSizeLimit {
public:
  explicit FileSizeLimit(std::uint64_t bytes) {
    m_oldHandler = std::signal(SIGXFSZ, SIG_IGN);
    ::getrlimit(RLIMIT_FSIZE, &m_old);
    rlimit limited = m_old;
    limited.rlim_cur = static_cast<rlim_t>(bytes);
    ::setrlimit(RLIMIT_FSIZE, &limited);
  }
  ~FileSizeLimit() {
    ::setrlimit(RLIMIT_FSIZE, &m_old);
    std::signal(SIGXFSZ, m_oldHandler);
  }
  FileSizeLimit(const FileSizeLimit&) = delete;
  FileSizeLimit& operator=(const FileSizeLimit&) = delete;

private:
  rlimit m_old{};
  void (*m_oldHandler)(int) = nullptr;
};

}  // namespace romsteward::test
