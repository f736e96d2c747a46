#include <fcntl.h>
#include <stdio.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <random>
#include <utility>

#include "core/common/atomic_file.h"
#include "core/common/strings.h"

namespace romsteward {

namespace {

Error ErrnoError(std::string_view what, const std::filesystem::path& path) {
  const int number = errno;
  return Error{std::string(what) + " " + PathToUtf8(path) + ": " + std::strerror(number), number};
}

std::filesystem::path TemporaryBeside(const std::filesystem::path& target, unsigned salt) {
  static constexpr char kDigits[] = "0123456789abcdef";
  std::string suffix;
  for (int i = 0; i < 8; ++i, salt >>= 4)
    suffix += kDigits[salt & 15];
  return target.parent_path() / ("." + PathToUtf8(target.filename()) + ".tmp-" + suffix);
}

// The file a symbolic link at `target` leads to (through any chain of links, even to a file
// that does not exist yet), or `target` itself: the link stays, its file gets the contents.
Result<std::filesystem::path> FollowLinks(const std::filesystem::path& target) {
  std::filesystem::path at = target;
  for (int hops = 0; hops < 40; ++hops) {
    std::error_code error;
    if (!std::filesystem::is_symlink(std::filesystem::symlink_status(at, error))) return at;
    const std::filesystem::path next = std::filesystem::read_symlink(at, error);
    if (error)
      return Error{"Cannot follow the link " + PathToUtf8(target) + ": " + error.message()};
    at = next.is_absolute() ? next : at.parent_path() / next;
  }
  return Error{"Cannot follow the link " + PathToUtf8(target) + ": too many levels of links",
               ELOOP};
}

}  // namespace

Result<AtomicFileWriter> AtomicFileWriter::Create(const std::filesystem::path& target,
                                                  AtLink atLink) {
  auto destination =
      atLink == AtLink::WriteThrough ? FollowLinks(target) : Result<std::filesystem::path>(target);
  if (!destination) return destination.error();
  // A file replaced whole keeps its permissions; a new one gets what the umask leaves.
  struct stat old {};
  const bool replacing = ::lstat(destination->c_str(), &old) == 0 && S_ISREG(old.st_mode);
  std::random_device entropy;
  for (int attempt = 0; attempt < 16; ++attempt) {
    std::filesystem::path temporary = TemporaryBeside(*destination, entropy());
    const int fd = ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (fd >= 0) {
      AtomicFileWriter writer(fd, target, *destination, std::move(temporary));
      if (replacing && ::fchmod(fd, old.st_mode & 07777) != 0)
        return ErrnoError("Cannot keep the permissions of", target);
      return writer;
    }
    if (errno != EEXIST) return ErrnoError("Cannot create a file beside", target);
  }
  return Error{"Cannot create a temporary file beside " + PathToUtf8(target)};
}

AtomicFileWriter::AtomicFileWriter(int fd, std::filesystem::path target,
                                   std::filesystem::path destination,
                                   std::filesystem::path temporary)
    : m_fd(fd),
      m_target(std::move(target)),
      m_destination(std::move(destination)),
      m_temporary(std::move(temporary)) {}

AtomicFileWriter::AtomicFileWriter(AtomicFileWriter&& other) noexcept
    : m_fd(std::exchange(other.m_fd, -1)),
      m_target(std::move(other.m_target)),
      m_destination(std::move(other.m_destination)),
      m_temporary(std::move(other.m_temporary)) {}

AtomicFileWriter::~AtomicFileWriter() {
  Discard();
}

void AtomicFileWriter::Discard() {
  if (m_fd < 0) return;
  ::close(m_fd);
  m_fd = -1;
  ::unlink(m_temporary.c_str());
}

Status AtomicFileWriter::Write(std::string_view data) {
  if (m_fd < 0) return Error{"Cannot write " + PathToUtf8(m_target) + ": already closed"};
  while (!data.empty()) {
    const ssize_t put = ::write(m_fd, data.data(), data.size());
    if (put < 0 && errno == EINTR) continue;
    if (put <= 0) return ErrnoError("Cannot write", m_target);
    data.remove_prefix(static_cast<std::size_t>(put));
  }
  return {};
}

Status AtomicFileWriter::Commit() {
  if (m_fd < 0) return Error{"Cannot write " + PathToUtf8(m_target) + ": already closed"};
  if (::fsync(m_fd) != 0) {
    Status failed = ErrnoError("Cannot write", m_target);
    Discard();
    return failed;
  }
  ::close(m_fd);
  m_fd = -1;
  if (::rename(m_temporary.c_str(), m_destination.c_str()) != 0) {
    Status failed = ErrnoError("Cannot replace", m_target);
    ::unlink(m_temporary.c_str());
    return failed;
  }
  return {};
}

Status WriteFileAtomically(const std::filesystem::path& target, std::string_view contents) {
  auto writer = AtomicFileWriter::Create(target);
  if (!writer) return writer.error();
  if (Status written = writer->Write(contents); !written) return written;
  return writer->Commit();
}

Status RenameWithoutReplacing(const std::filesystem::path& from, const std::filesystem::path& to) {
  const auto taken = [&] {
    return Error{"Cannot rename " + PathToUtf8(from) + ": " + PathToUtf8(to) + " already exists",
                 EEXIST};
  };
  if (renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) return {};
  if (errno == EEXIST) return taken();
  if (errno != EINVAL && errno != ENOSYS) return ErrnoError("Cannot rename", from);
  // A file system without an exclusive rename: a hard link is just as exclusive.
  if (link(from.c_str(), to.c_str()) != 0)
    return errno == EEXIST ? taken() : ErrnoError("Cannot rename", from);
  if (unlink(from.c_str()) != 0) return ErrnoError("Cannot remove the old name", from);
  return {};
}

}  // namespace romsteward
