#include "core/cart/file_properties.h"

#include <fcntl.h>
#include <fmt/chrono.h>
#include <fmt/format.h>
#include <pwd.h>
#include <sys/stat.h>

#include <algorithm>
#include <ctime>
#include <optional>

#include "core/cart/checksum.h"
#include "core/cart/detect.h"
#include "core/cart/header.h"
#include "core/cart/interleave.h"
#include "core/cart/logical_io.h"
#include "core/common/binary_file.h"
#include "core/common/strings.h"
#include "core/host/host.h"
#include "core/identify/rom_hash.h"
#include "core/launch/zip_archive.h"

namespace romsteward {

namespace {

constexpr std::string_view kNoHeader = "none: no cartridge header";

std::string Megabits(std::uint64_t bytes) {
  return fmt::format("{} Mbit", std::min<std::uint64_t>(bytes * 8 / 1048576, 255));
}

std::string Time(const struct statx_timestamp& stamp) {
  const std::time_t seconds = stamp.tv_sec;
  std::tm local{};
  localtime_r(&seconds, &local);
  return fmt::format("{:%Y-%m-%d %H:%M:%S}", local);
}

std::string PermissionText(unsigned mode) {
  std::string text = "rwxrwxrwx";
  for (int bit = 0; bit < 9; ++bit) {
    if ((mode & (0400u >> bit)) == 0) text[static_cast<std::size_t>(bit)] = '-';
  }
  return text;
}

std::string OwnerName(unsigned uid) {
  struct passwd entry {};
  struct passwd* found = nullptr;
  char buffer[1024];
  if (getpwuid_r(uid, &entry, buffer, sizeof buffer, &found) == 0 && found != nullptr)
    return found->pw_name;
  return std::to_string(uid);
}

// Dates, owner and permissions of a file (for an archive member: of its archive).
void AddFileSystemRows(const std::filesystem::path& path, std::vector<PropertyRow>& rows) {
  struct statx info {};
  if (statx(AT_FDCWD, path.c_str(), 0, STATX_BASIC_STATS | STATX_BTIME, &info) != 0) {
    rows.push_back({"Modified:", "unknown"});
    return;
  }
  rows.push_back({"Modified:", Time(info.stx_mtime)});
  rows.push_back({"Created:", (info.stx_mask & STATX_BTIME) != 0
                                  ? Time(info.stx_btime)
                                  : "not recorded by this file system"});
  rows.push_back({"Access:", IsWritableByUser(path) ? "Read and write" : "Read-only"});
  rows.push_back({"Owner:", OwnerName(info.stx_uid)});
  rows.push_back({"Permissions:", PermissionText(info.stx_mode & 0777u)});
}

void AddHashRows(const Result<HashedImage>& hashed, std::vector<PropertyRow>& rows) {
  if (!hashed) {
    rows.push_back({"CRC32:", hashed.error().message});
    return;
  }
  rows.push_back({"CRC32:", Crc32Text(hashed->hashes.crc32)});
  rows.push_back({"SHA-1:", hashed->hashes.sha1});
}

void AddChecksumRows(std::optional<std::uint16_t> stored, const Result<std::uint16_t>& computed,
                     std::vector<PropertyRow>& rows) {
  if (!stored) {
    rows.push_back({"Checksum:", std::string(kNoHeader)});
    return;
  }
  rows.push_back({"Stored checksum:", fmt::format("{:04X}", *stored)});
  if (!computed) {
    rows.push_back({"Computed checksum:", computed.error().message});
    return;
  }
  rows.push_back({"Computed checksum:", fmt::format("{:04X} ({})", *computed,
                                                    *computed == *stored ? "correct" : "wrong")});
}

Result<HashedImage> HashWithProgress(const std::filesystem::path& path, Host* progress) {
  if (progress == nullptr) return HashImageFile(path);
  ScopedProgress shown(*progress, "Progress");
  progress->SetProgress(0);
  return HashImageFile(path);
}

Result<std::vector<PropertyRow>> FileRows(const std::filesystem::path& path, Host* progress) {
  auto file = BinaryFile::Open(path);
  if (!file) return file.error();
  const Layout layout = DetectRomFormat(*file);
  std::vector<PropertyRow> rows{
      {"Location:", PathToUtf8(path)},
      {"Size:", FormatThousands(file->Size()) + " bytes"},
      {"Cartridge size:", fmt::format("{} Mbit", RomSizeMbit(*file, PathToUtf8(path), layout))},
      {"Layout:", std::string(FormatDescription(layout))},
  };
  AddFileSystemRows(path, rows);
  AddHashRows(HashWithProgress(path, progress), rows);
  const bool hasHeader = layout != Layout::NoRom && layout != Layout::SplitLater;
  std::optional<std::uint16_t> stored;
  if (hasHeader) {
    stored = ReadHeaderChecksum(ReadLogicalBytes(*file, layout, header_field::kChecksum.offset,
                                                 header_field::kChecksum.width));
  }
  AddChecksumRows(stored, hasHeader ? CalcChecksum(*file, layout, progress) : 0, rows);
  return rows;
}

// The plain logical bytes of a member held in memory, when its layout allows them.
Result<std::string> MemberLogical(std::string_view bytes, Layout layout) {
  if (layout == Layout::Md) {
    if (bytes.size() % 2 != 0) return Error{"an MD image of odd length"};
    return MdToBin(bytes);
  }
  if (layout == Layout::Smd || layout == Layout::SplitFirst) {
    if (bytes.size() < kCopierHeaderSize || (bytes.size() - kCopierHeaderSize) % kBlockSize != 0)
      return Error{"SMD data that is not whole 16 KiB blocks"};
    return SmdDataToBin(bytes.substr(kCopierHeaderSize));
  }
  return std::string(bytes);
}

Result<std::vector<PropertyRow>> MemberRows(const std::filesystem::path& archive,
                                            std::string_view member) {
  std::optional<Result<std::string>> found;
  Status read =
      ReadZipMembers(archive, member, [&](const std::string& name, Result<std::string> bytes) {
        if (name == member && !found) found = std::move(bytes);
      });
  if (!found && !read) return read.error();
  if (!found) return Error{std::string(member) + " is no longer in " + PathToUtf8(archive) + "."};
  if (!*found) return found->error();
  const std::string& bytes = **found;

  const Layout layout = DetectRomFormat(bytes);
  std::vector<PropertyRow> rows{
      {"Archive:", PathToUtf8(archive)},
      {"Member:", std::string(member)},
      {"Size:", FormatThousands(bytes.size()) + " bytes"},
      {"Cartridge size:", Megabits(bytes.size())},
      {"Layout:", std::string(FormatDescription(layout))},
  };
  AddFileSystemRows(archive, rows);
  AddHashRows(HashImageBytes(bytes, member), rows);
  if (layout == Layout::NoRom || layout == Layout::SplitLater) {
    AddChecksumRows(std::nullopt, 0, rows);
    return rows;
  }
  auto logical = MemberLogical(bytes, layout);
  if (!logical) {
    rows.push_back({"Checksum:", "cannot be computed for " + logical.error().message});
    return rows;
  }
  const std::string_view field = std::string_view(*logical).substr(
      std::min<std::size_t>(logical->size(), header_field::kChecksum.offset), 2);
  AddChecksumRows(ReadHeaderChecksum(field), ChecksumOfLogicalImage(*logical), rows);
  return rows;
}

}  // namespace

Result<std::vector<PropertyRow>> ReadFileProperties(std::string_view place, std::string_view entry,
                                                    bool inArchive, Host* progress) {
  if (inArchive) return MemberRows(Utf8ToPath(place), entry);
  return FileRows(Utf8ToPath(JoinDirName(place, entry)), progress);
}

}  // namespace romsteward
