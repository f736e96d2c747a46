#include "core/launch/zip_archive.h"

#include <archive.h>
#include <archive_entry.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <functional>
#include <memory>
#include <system_error>
#include <unordered_map>

#include "core/common/atomic_file.h"
#include "core/common/binary_file.h"
#include "core/common/strings.h"
#include "core/common/wildcard.h"
#include "core/host/app_title.h"
#include "core/host/host.h"

namespace romsteward {

namespace {

using ArchivePtr = std::unique_ptr<archive, decltype(&archive_read_free)>;

std::atomic<std::uint64_t> g_archiveOpens{0};

bool StartsWithBytes(const std::filesystem::path& path, std::string_view bytes) {
  std::error_code error;
  if (!std::filesystem::is_regular_file(path, error)) return false;
  auto file = BinaryFile::Open(path);
  return file && file->ReadAt(0, bytes.size()) == bytes;
}

Result<ArchivePtr> OpenZip(const std::filesystem::path& path) {
  ArchivePtr reader(archive_read_new(), &archive_read_free);
  if (!reader) return Error{"Out of memory opening " + PathToUtf8(path)};
  // Both ZIP readers (the one that trusts the central directory, and the streaming one that
  // still reads an archive whose directory at the end was cut off) and the 7z reader; no
  // other format and no outer compression filter is ever tried on a stranger's file.
  archive_read_support_format_zip(reader.get());
  archive_read_support_format_7zip(reader.get());
  ++g_archiveOpens;
  if (archive_read_open_filename(reader.get(), path.c_str(), 64 * 1024) != ARCHIVE_OK) {
    const char* why = archive_error_string(reader.get());
    return Error{"Cannot read the " + std::string(ArchiveFormatName(ArchiveFormatOf(path))) +
                 " archive " + PathToUtf8(path) + ": " + (why ? why : "unknown error")};
  }
  return reader;
}

std::string ErrorText(archive* reader) {
  const char* why = archive_error_string(reader);
  // The 7z reader fails a cut-off archive without saying why.
  return why ? why : "it is damaged or cut short";
}

std::string MemberName(archive_entry* entry) {
  if (const char* utf8 = archive_entry_pathname_utf8(entry)) return utf8;
  if (const char* raw = archive_entry_pathname(entry)) return raw;
  return {};
}

bool IsLink(archive_entry* entry) {
  return archive_entry_filetype(entry) == AE_IFLNK || archive_entry_hardlink(entry) != nullptr ||
         archive_entry_symlink(entry) != nullptr;
}

// The steps of a member's name. "." steps name the folder they stand in and are dropped, so
// "a/./b" and "a/b" are one file, and no step ever names a folder where a file should go.
std::vector<std::string> SplitMemberName(std::string_view name) {
  std::vector<std::string> parts;
  std::size_t start = 0;
  for (std::size_t i = 0; i <= name.size(); ++i) {
    if (i == name.size() || name[i] == '/' || name[i] == '\\') {
      const std::string_view part = name.substr(start, i - start);
      if (!part.empty() && part != ".") parts.emplace_back(part);
      start = i + 1;
    }
  }
  return parts;
}

// The folders of a member's name, created below `folder` as needed. A step that exists as
// anything but a real folder (a link above all) stops the extraction, so no link planted
// in the temporary folder can carry a write elsewhere.
Result<std::filesystem::path> PrepareTarget(const std::filesystem::path& folder,
                                            std::string_view member) {
  const std::vector<std::string> parts = SplitMemberName(member);
  std::filesystem::path at = folder;
  for (std::size_t i = 0; i + 1 < parts.size(); ++i) {
    at /= Utf8ToPath(parts[i]);
    std::error_code error;
    const auto status = std::filesystem::symlink_status(at, error);
    if (status.type() == std::filesystem::file_type::not_found) {
      if (!std::filesystem::create_directory(at, error) && error)
        return Error{"Cannot create the folder " + PathToUtf8(at) + ": " + error.message()};
    } else if (status.type() != std::filesystem::file_type::directory) {
      return Error{"Cannot extract " + std::string(member) + ": " + PathToUtf8(at) +
                   " is in the way and is no folder"};
    }
  }
  at /= Utf8ToPath(parts.back());
  std::error_code error;
  if (std::filesystem::symlink_status(at, error).type() == std::filesystem::file_type::directory)
    return Error{"Cannot extract " + std::string(member) + ": a folder of that name is in the way"};
  return at;
}

std::string MemberText(std::string_view kind, std::string_view member) {
  return "The " + std::string(kind) + " member \"" + std::string(member) + "\"";
}

std::string ArchiveText(std::string_view kind, const std::filesystem::path& path) {
  return "The " + std::string(kind) + " archive " + PathToUtf8(path);
}

Error DamagedError(std::string_view kind, const std::filesystem::path& path, archive* reader) {
  return Error{ArchiveText(kind, path) + " is damaged: " + ErrorText(reader)};
}

Error MissingMemberError(std::string_view kind, const std::filesystem::path& path,
                         std::string_view member) {
  return Error{ArchiveText(kind, path) + " holds no member \"" + std::string(member) + "\"."};
}

std::string LimitText(std::uint64_t limit) {
  return limit % (1024 * 1024) == 0 ? std::to_string(limit / (1024 * 1024)) + " MiB"
                                    : std::to_string(limit) + " bytes";
}

// Reads the current member's data in pieces into `sink`, within `sizeLimit`, checking that
// it holds what the archive claims.
Status ReadCurrent(archive* reader, archive_entry* entry, std::string_view kind,
                   std::string_view member, std::uint64_t sizeLimit,
                   const std::function<Status(std::string_view)>& sink) {
  const std::string quoted = MemberText(kind, member);
  const bool sizeKnown = archive_entry_size_is_set(entry) != 0;
  const auto claimed =
      static_cast<std::uint64_t>(std::max<la_int64_t>(0, archive_entry_size(entry)));
  if (sizeKnown && claimed > sizeLimit)
    return Error{quoted + " is larger than " + LimitText(sizeLimit) + " and is not extracted."};

  std::uint64_t held = 0;
  std::string buffer(64 * 1024, '\0');
  while (true) {
    const la_ssize_t got = archive_read_data(reader, buffer.data(), buffer.size());
    if (got == 0) break;
    if (got < 0) return Error{quoted + " cannot be read: " + ErrorText(reader)};
    held += static_cast<std::uint64_t>(got);
    // Counted as it comes, whatever the archive claims: a bomb stops here.
    if (held > sizeLimit)
      return Error{quoted + " unpacks to more than " + LimitText(sizeLimit) +
                   " and is not extracted."};
    if (Status taken = sink(std::string_view(buffer.data(), static_cast<std::size_t>(got))); !taken)
      return taken;
  }
  if (sizeKnown && held != claimed)
    return Error{quoted + " is damaged: the archive claims " + std::to_string(claimed) +
                 " bytes for it, but it holds " + std::to_string(held) + "."};
  return {};
}

Status ExtractCurrent(archive* reader, archive_entry* entry, std::string_view kind,
                      std::string_view member, const std::filesystem::path& target,
                      std::uint64_t sizeLimit) {
  // A link planted in the temporary folder under the member's name is replaced, never
  // written through.
  auto writer = AtomicFileWriter::Create(target, AtomicFileWriter::AtLink::Replace);
  if (!writer) return writer.error();
  if (Status read = ReadCurrent(reader, entry, kind, member, sizeLimit,
                                [&writer](std::string_view data) { return writer->Write(data); });
      !read)
    return read;
  return writer->Commit();
}

// A copy that lives only while it is visited: written straight, without the sync that makes
// a kept file durable (a sync per member made a report of thousands of them crawl). It
// replaces nothing: "x" refuses a file or link of its name, so nothing is written through
// a link planted there. A failure removes what it wrote.
Status ExtractTransient(archive* reader, archive_entry* entry, std::string_view kind,
                        std::string_view member, const std::filesystem::path& target,
                        std::uint64_t sizeLimit) {
  const auto cannot = [&target](std::string_view doing) {
    return Error{"Cannot " + std::string(doing) + " " + PathToUtf8(target) + ": " +
                 std::error_code(errno, std::generic_category()).message()};
  };
  std::FILE* file = std::fopen(target.c_str(), "wbx");
  if (file == nullptr) return cannot("create");
  Status read =
      ReadCurrent(reader, entry, kind, member, sizeLimit, [&](std::string_view data) -> Status {
        if (std::fwrite(data.data(), 1, data.size(), file) != data.size()) return cannot("write");
        return {};
      });
  if (std::fclose(file) != 0 && read) read = cannot("write");
  if (!read) {
    std::error_code ignored;
    std::filesystem::remove(target, ignored);
  }
  return read;
}

}  // namespace

bool IsZipFile(const std::filesystem::path& path) {
  return StartsWithBytes(path, "PK") || StartsWithBytes(path, kSevenZipSignature);
}

bool HasZipSignature(const std::filesystem::path& path) {
  return StartsWithBytes(path, std::string_view("PK\x03\x04", 4)) ||
         StartsWithBytes(path, kSevenZipSignature);
}

ArchiveFormat ArchiveFormatOf(const std::filesystem::path& path) {
  return StartsWithBytes(path, kSevenZipSignature) ? ArchiveFormat::SevenZip : ArchiveFormat::Zip;
}

std::string_view ArchiveFormatName(ArchiveFormat format) {
  return format == ArchiveFormat::SevenZip ? "7z" : "ZIP";
}

Result<ZipListing> ListZipEntries(const std::filesystem::path& path, std::string_view masks) {
  auto reader = OpenZip(path);
  if (!reader) return reader.error();
  ZipListing listing;
  archive_entry* entry = nullptr;
  for (bool first = true;; first = false) {
    const int status = archive_read_next_header(reader->get(), &entry);
    if (status == ARCHIVE_EOF) break;
    // Not even one member: the file only starts like an archive.
    if (status < ARCHIVE_WARN && first)
      return Error{"Cannot read the " + std::string(ArchiveFormatName(ArchiveFormatOf(path))) +
                   " archive " + PathToUtf8(path) + ": " + ErrorText(reader->get())};
    if (status < ARCHIVE_WARN) {
      listing.damage = ErrorText(reader->get());
      break;
    }
    const std::string name = MemberName(entry);
    if (archive_entry_filetype(entry) == AE_IFREG && !IsLink(entry) && !name.empty() &&
        name.back() != '/' && MatchesAnyMask(name, masks))
      listing.names.push_back(name);
    if (archive_read_data_skip(reader->get()) < ARCHIVE_WARN) {
      listing.damage = ErrorText(reader->get());
      break;
    }
  }
  return listing;
}

Status ReadZipMembers(const std::filesystem::path& path, std::string_view masks,
                      const std::function<void(const std::string&, Result<std::string>)>& visit,
                      std::uint64_t sizeLimit) {
  auto reader = OpenZip(path);
  if (!reader) return reader.error();
  const std::string kind(ArchiveFormatName(ArchiveFormatOf(path)));
  archive_entry* entry = nullptr;
  while (true) {
    const int status = archive_read_next_header(reader->get(), &entry);
    if (status == ARCHIVE_EOF) return {};
    if (status < ARCHIVE_WARN) return DamagedError(kind, path, reader->get());
    const std::string name = MemberName(entry);
    if (archive_entry_filetype(entry) != AE_IFREG || IsLink(entry) || name.empty() ||
        name.back() == '/' || !MatchesAnyMask(name, masks))
      continue;
    std::string bytes;
    Status read =
        ReadCurrent(reader->get(), entry, kind, name, sizeLimit, [&bytes](std::string_view data) {
          bytes.append(data);
          return Status{};
        });
    visit(name, read ? Result<std::string>(std::move(bytes)) : Result<std::string>(read.error()));
  }
}

std::string UnsafeMemberNameReason(std::string_view name) {
  if (name.empty()) return "it has no name";
  if (name.find('\0') != std::string_view::npos) return "its name holds a NUL byte";
  if (name.front() == '/' || name.front() == '\\' || (name.size() >= 2 && name[1] == ':'))
    return "its name is an absolute path";
  const std::vector<std::string> parts = SplitMemberName(name);
  for (const std::string& part : parts) {
    if (part == "..") return "its name leads out of the folder it is extracted to";
  }
  if (parts.empty() || name.back() == '/' || name.back() == '\\') return "it is a folder";
  return {};
}

Result<std::vector<std::filesystem::path>> ExtractZipMembers(const std::filesystem::path& path,
                                                             std::span<const std::string> members,
                                                             const std::filesystem::path& folder,
                                                             std::uint64_t sizeLimit) {
  const std::string kind(ArchiveFormatName(ArchiveFormatOf(path)));
  for (const std::string& member : members) {
    if (std::string why = UnsafeMemberNameReason(member); !why.empty())
      return Error{MemberText(kind, member) + " is refused: " + why + "."};
  }
  std::error_code error;
  if (!std::filesystem::is_directory(folder, error))
    return Error{"Cannot extract into " + PathToUtf8(folder) + ": it is no folder"};

  auto reader = OpenZip(path);
  if (!reader) return reader.error();
  std::vector<std::filesystem::path> extracted(members.size());
  std::vector<bool> done(members.size(), false);
  // A failure takes back what this call wrote (the member under way included, with the
  // folders its name created), so the folder is left as it was.
  std::string underWay;
  const auto fail = [&](Error why) -> Result<std::vector<std::filesystem::path>> {
    for (std::size_t i = 0; i < members.size(); ++i) {
      if (done[i]) (void)RemoveExtractedMember(folder, members[i]);
    }
    if (!underWay.empty()) (void)RemoveExtractedMember(folder, underWay);
    return why;
  };
  std::size_t remaining = members.size();
  archive_entry* entry = nullptr;
  while (remaining > 0) {
    const int status = archive_read_next_header(reader->get(), &entry);
    if (status == ARCHIVE_EOF) break;
    if (status < ARCHIVE_WARN) return fail(DamagedError(kind, path, reader->get()));
    const std::string name = MemberName(entry);
    for (std::size_t i = 0; i < members.size(); ++i) {
      if (done[i] || members[i] != name) continue;
      if (IsLink(entry) || archive_entry_filetype(entry) != AE_IFREG)
        return fail(Error{MemberText(kind, name) + " is refused: it is a link or no file."});
      underWay = name;
      auto target = PrepareTarget(folder, name);
      if (!target) return fail(target.error());
      if (Status written = ExtractCurrent(reader->get(), entry, kind, name, *target, sizeLimit);
          !written)
        return fail(written.error());
      extracted[i] = std::move(*target);
      done[i] = true;
      underWay.clear();
      --remaining;
      // The same name asked twice is the same file: it is only read once.
      for (std::size_t j = i + 1; j < members.size(); ++j) {
        if (!done[j] && members[j] == name) {
          extracted[j] = extracted[i];
          done[j] = true;
          --remaining;
        }
      }
      break;
    }
  }
  for (std::size_t i = 0; i < members.size(); ++i) {
    if (!done[i]) return fail(MissingMemberError(kind, path, members[i]));
  }
  return extracted;
}

Result<std::filesystem::path> ExtractZipMember(const std::filesystem::path& archive,
                                               std::string_view member,
                                               const std::filesystem::path& folder,
                                               std::uint64_t sizeLimit) {
  const std::string names[] = {std::string(member)};
  auto extracted = ExtractZipMembers(archive, names, folder, sizeLimit);
  if (!extracted) return extracted.error();
  return std::move(extracted->front());
}

Status VisitExtractedMembers(
    const std::filesystem::path& path, std::span<const std::string> members,
    const std::filesystem::path& folder,
    const std::function<Status(std::size_t, const std::filesystem::path&)>& visit,
    std::uint64_t sizeLimit) {
  const std::string kind(ArchiveFormatName(ArchiveFormatOf(path)));
  // Each header is looked up by name, so the pass costs the same for any number of members.
  std::unordered_map<std::string, std::vector<std::size_t>> wanted;
  for (std::size_t i = 0; i < members.size(); ++i) {
    if (std::string why = UnsafeMemberNameReason(members[i]); !why.empty())
      return Error{MemberText(kind, members[i]) + " is refused: " + why + "."};
    wanted[members[i]].push_back(i);
  }
  std::error_code error;
  if (!std::filesystem::is_directory(folder, error))
    return Error{"Cannot extract into " + PathToUtf8(folder) + ": it is no folder"};

  auto reader = OpenZip(path);
  if (!reader) return reader.error();
  archive_entry* entry = nullptr;
  while (!wanted.empty()) {
    const int status = archive_read_next_header(reader->get(), &entry);
    if (status == ARCHIVE_EOF) break;
    if (status < ARCHIVE_WARN) return DamagedError(kind, path, reader->get());
    // Only the first member of a name counts, as for ExtractZipMembers.
    const auto found = wanted.find(MemberName(entry));
    if (found == wanted.end()) continue;
    const std::string& name = found->first;
    if (IsLink(entry) || archive_entry_filetype(entry) != AE_IFREG)
      return Error{MemberText(kind, name) + " is refused: it is a link or no file."};
    auto target = PrepareTarget(folder, name);
    if (!target) return target.error();
    if (Status written = ExtractTransient(reader->get(), entry, kind, name, *target, sizeLimit);
        !written)
      return written;
    Status done;
    for (std::size_t i = 0; done && i < found->second.size(); ++i)
      done = visit(found->second[i], *target);
    Status removed = RemoveExtractedMember(folder, name);
    if (!done) return done;
    if (!removed) return removed;
    wanted.erase(found);
  }
  for (const std::string& member : members) {
    if (wanted.contains(member)) return MissingMemberError(kind, path, member);
  }
  return {};
}

std::uint64_t ArchiveOpenCount() {
  return g_archiveOpens.load();
}

Status RemoveExtractedMember(const std::filesystem::path& folder, std::string_view member) {
  if (!UnsafeMemberNameReason(member).empty())
    return Error{"Cannot delete \"" + std::string(member) + "\" from the temporary folder"};
  std::vector<std::string> parts = SplitMemberName(member);
  std::filesystem::path at = folder;
  for (const std::string& part : parts)
    at /= Utf8ToPath(part);
  std::error_code fileError;
  // Old copies may have been made read-only; write permission on the folder is what counts
  // here, so the file's own mode needs no change.
  std::filesystem::remove(at, fileError);
  // The folders the name made go too, deepest first, as long as they are empty, also when
  // the file itself could not be (a step whose name is too long was never made: passed over).
  while (parts.size() > 1) {
    parts.pop_back();
    std::filesystem::path dir = folder;
    for (const std::string& part : parts)
      dir /= Utf8ToPath(part);
    std::error_code error;
    if (std::filesystem::symlink_status(dir, error).type() != std::filesystem::file_type::directory)
      continue;
    if (!std::filesystem::is_empty(dir, error) || error) break;
    std::filesystem::remove(dir, error);
  }
  if (fileError) return Error{"Cannot delete " + PathToUtf8(at) + ": " + fileError.message()};
  return {};
}

bool IsArchiveLibraryVersionAcceptable(int versionNumber) {
  return versionNumber >= kMinimumArchiveLibraryVersion;
}

int ArchiveLibraryVersion() {
  return archive_version_number();
}

void CheckArchiveLibraryVersion(Host& host) {
  CheckArchiveLibraryVersion(host, ArchiveLibraryVersion());
}

void CheckArchiveLibraryVersion(Host& host, int versionNumber) {
  if (IsArchiveLibraryVersionAcceptable(versionNumber)) return;
  host.ShowMessage(
      "The unzipping dlls found in your system are outdated. Get the latest version in "
      "info-ZIP or Romsteward's homepage (read docs)",
      MessageIcon::Exclamation, kAppTitle);
}

}  // namespace romsteward
