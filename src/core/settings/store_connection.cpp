#include "core/settings/store_connection.h"

#include <fmt/format.h>

#include <string>
#include <system_error>

#include "core/common/binary_file.h"
#include "core/common/strings.h"

namespace romsteward {

namespace {

namespace fs = std::filesystem;

fs::path WithSuffix(const fs::path& file, const char* suffix) {
  fs::path named = file;
  named += suffix;
  return named;
}

bool Exists(const fs::path& path) {
  std::error_code error;
  return fs::exists(path, error);
}

// An SQLite URI naming `file`: the characters a URI gives a meaning to are escaped.
std::string FileUri(const fs::path& file) {
  std::string uri = "file:";
  for (const char c : PathToUtf8(file)) {
    if (c == '%' || c == '?' || c == '#')
      uri += fmt::format("%{:02X}", static_cast<unsigned char>(c));
    else
      uri += c;
  }
  return uri;
}

}  // namespace

StoreAccess ChooseStoreAccess(const fs::path& file) {
  const fs::path folder = file.has_parent_path() ? file.parent_path() : fs::path(".");
  if (Exists(file) && !IsWritableByUser(file)) {
    return IsWritableByUser(folder) ? StoreAccess::ReadOnly : StoreAccess::Frozen;
  }
  if (Exists(folder) && !IsWritableByUser(folder)) return StoreAccess::ReadOnly;
  return StoreAccess::ReadWrite;
}

JournalFiles FindJournalFiles(const fs::path& file) {
  return {Exists(WithSuffix(file, "-wal")), Exists(WithSuffix(file, "-shm"))};
}

bool JournalWithoutItsFile(const fs::path& file) {
  std::error_code error;
  const auto journal = fs::file_size(WithSuffix(file, "-wal"), error);
  if (error || journal == 0) return false;
  const auto size = fs::file_size(file, error);
  return !error && size == 0;
}

void RemoveAddedJournalFiles(const fs::path& file, JournalFiles before) {
  std::error_code error;
  const fs::path wal = WithSuffix(file, "-wal");
  if (!before.wal && fs::file_size(wal, error) == 0 && !error) fs::remove(wal, error);
  if (!before.index) fs::remove(WithSuffix(file, "-shm"), error);
}

int ConnectStore(const fs::path& file, StoreAccess access, bool inspection, DatabaseHandle& db) {
  // Journal files left beside a frozen store still hold part of it: read them, read-only.
  if (access == StoreAccess::Frozen) {
    const JournalFiles journals = FindJournalFiles(file);
    if (journals.wal || journals.index) access = StoreAccess::ReadOnly;
  }
  int flags = SQLITE_OPEN_URI;
  std::string uri = FileUri(file);
  switch (access) {
    case StoreAccess::ReadWrite:
      flags |= SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE;
      break;
    case StoreAccess::ReadOnly:
      flags |= SQLITE_OPEN_READONLY;
      break;
    case StoreAccess::Frozen:
      flags |= SQLITE_OPEN_READONLY;
      uri += "?immutable=1";
      break;
  }
  sqlite3* raw = nullptr;
  const int opened = sqlite3_open_v2(uri.c_str(), &raw, flags, nullptr);
  db.reset(raw);
  if (opened != SQLITE_OK) return opened;
  if (inspection) sqlite3_db_config(raw, SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
  return SQLITE_OK;
}

}  // namespace romsteward
