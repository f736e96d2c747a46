#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

#include "core/common/binary_file.h"
#include "core/common/strings.h"

namespace romsteward {

namespace {

Error ErrnoError(std::string_view what, const std::filesystem::path& path) {
  const int number = errno;
  return Error{std::string(what) + " " + PathToUtf8(path) + ": " + std::strerror(number), number};
}

}  // namespace

Result<BinaryFile> BinaryFile::Open(const std::filesystem::path& path, Mode mode) {
  const int flags = (mode == Mode::ReadWrite ? O_RDWR : O_RDONLY) | O_CLOEXEC;
  int fd;
  // Without O_NONBLOCK a FIFO would wait here for a writer, for ever; what is no regular
  // file is refused right after, so the flag never matters for what is read.
  do {
    fd = ::open(path.c_str(), flags | O_NONBLOCK);
  } while (fd < 0 && errno == EINTR);
  if (fd < 0) return ErrnoError("Cannot open", path);
  struct stat info {};
  if (::fstat(fd, &info) != 0) {
    Error failed = ErrnoError("Cannot open", path);
    ::close(fd);
    return failed;
  }
  if (!S_ISREG(info.st_mode)) {
    ::close(fd);
    return Error{"Cannot open " + PathToUtf8(path) + ": " +
                 (S_ISDIR(info.st_mode) ? "it is a directory" : "it is not a regular file")};
  }
  ::fcntl(fd, F_SETFL, ::fcntl(fd, F_GETFL) & ~O_NONBLOCK);
  return BinaryFile(fd, path, mode);
}

BinaryFile::BinaryFile(int fd, std::filesystem::path path, Mode mode)
    : m_fd(fd), m_path(std::move(path)), m_mode(mode) {}

BinaryFile::BinaryFile(BinaryFile&& other) noexcept
    : m_fd(std::exchange(other.m_fd, -1)), m_path(std::move(other.m_path)), m_mode(other.m_mode) {}

BinaryFile& BinaryFile::operator=(BinaryFile&& other) noexcept {
  if (this != &other) {
    if (m_fd >= 0) ::close(m_fd);
    m_fd = std::exchange(other.m_fd, -1);
    m_path = std::move(other.m_path);
    m_mode = other.m_mode;
  }
  return *this;
}

BinaryFile::~BinaryFile() {
  if (m_fd >= 0) ::close(m_fd);
}

std::uint64_t BinaryFile::Size() const {
  struct stat info {};
  if (::fstat(m_fd, &info) != 0) return 0;
  return static_cast<std::uint64_t>(info.st_size);
}

std::size_t BinaryFile::ReadInto(std::uint64_t offset, std::span<char> out) const {
  std::size_t done = 0;
  while (done < out.size()) {
    const ssize_t got =
        ::pread(m_fd, out.data() + done, out.size() - done, static_cast<off_t>(offset + done));
    if (got < 0 && errno == EINTR) continue;
    if (got <= 0) break;
    done += static_cast<std::size_t>(got);
  }
  return done;
}

std::string BinaryFile::ReadAt(std::uint64_t offset, std::size_t count) const {
  std::string bytes(count, '\0');
  bytes.resize(ReadInto(offset, bytes));
  return bytes;
}

std::uint64_t BinaryFile::NextDataOffset(std::uint64_t offset) const {
  const off_t data = ::lseek(m_fd, static_cast<off_t>(offset), SEEK_DATA);
  if (data >= 0) return static_cast<std::uint64_t>(data);
  // ENXIO: nothing but a hole from `offset` to the end.
  return errno == ENXIO ? std::max(offset, Size()) : offset;
}

std::uint64_t BinaryFile::NextHoleOffset(std::uint64_t offset) const {
  const off_t hole = ::lseek(m_fd, static_cast<off_t>(offset), SEEK_HOLE);
  return hole >= 0 ? static_cast<std::uint64_t>(hole) : UINT64_MAX;
}

MappedBytes::MappedBytes(MappedBytes&& other) noexcept
    : m_address(std::exchange(other.m_address, nullptr)),
      m_length(std::exchange(other.m_length, 0)) {}

MappedBytes& MappedBytes::operator=(MappedBytes&& other) noexcept {
  if (this != &other) {
    if (m_address != nullptr) ::munmap(m_address, m_length);
    m_address = std::exchange(other.m_address, nullptr);
    m_length = std::exchange(other.m_length, 0);
  }
  return *this;
}

MappedBytes::~MappedBytes() {
  if (m_address != nullptr) ::munmap(m_address, m_length);
}

Result<MappedBytes> BinaryFile::MapForReading(std::size_t length) const {
  length = static_cast<std::size_t>(std::min<std::uint64_t>(length, Size()));
  if (length == 0) return MappedBytes();
  void* address = ::mmap(nullptr, length, PROT_READ, MAP_PRIVATE | MAP_POPULATE, m_fd, 0);
  if (address == MAP_FAILED) return ErrnoError("Cannot read", m_path);
  return MappedBytes(address, length);
}

Status BinaryFile::WriteAt(std::uint64_t offset, std::string_view data) {
  std::size_t done = 0;
  while (done < data.size()) {
    const ssize_t put =
        ::pwrite(m_fd, data.data() + done, data.size() - done, static_cast<off_t>(offset + done));
    if (put < 0 && errno == EINTR) continue;
    if (put <= 0) return ErrnoError("Cannot write", m_path);
    done += static_cast<std::size_t>(put);
  }
  return {};
}

Status BinaryFile::Truncate(std::uint64_t length) {
  if (::ftruncate(m_fd, static_cast<off_t>(length)) != 0)
    return ErrnoError("Cannot resize", m_path);
  return {};
}

Result<std::string> ReadWholeFile(const std::filesystem::path& path, std::uint64_t limit) {
  auto file = BinaryFile::Open(path);
  if (!file) return file.error();
  const std::uint64_t size = file->Size();
  if (size > limit)
    return Error{"Cannot read " + PathToUtf8(path) + ": it is " + FormatThousands(size) +
                 " bytes long, more than the " + FormatThousands(limit / (1024 * 1024)) +
                 " MiB any cartridge image, patch or template can be."};
  std::string bytes = file->ReadAt(0, static_cast<std::size_t>(size));
  if (bytes.size() != size) return Error{"Cannot read all of " + PathToUtf8(path)};
  return bytes;
}

bool IsWritableByUser(const std::filesystem::path& path) {
  if (::access(path.c_str(), W_OK) != 0) return false;
  // A file with no write permission for anyone was marked read-only on purpose; the
  // superuser, whom access() always lets write, keeps off it as well.
  struct stat info {};
  return ::stat(path.c_str(), &info) == 0 && (info.st_mode & (S_IWUSR | S_IWGRP | S_IWOTH)) != 0;
}

}  // namespace romsteward
