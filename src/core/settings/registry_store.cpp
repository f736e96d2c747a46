#include "core/settings/registry_store.h"

#include <fmt/format.h>
#include <sqlite3.h>

#include <cstdlib>
#include <functional>
#include <system_error>

#include "core/common/strings.h"
#include "core/settings/sqlite_statement.h"

namespace romsteward {

namespace {

namespace fs = std::filesystem;

// "RSRG": marks a database as ours, so another program's database is never taken over.
constexpr int kApplicationId = 0x52535247;
constexpr int kSchemaVersion = 1;
// Long enough for another copy of the program to finish a write, short enough to report a
// store that stays locked.
constexpr int kBusyTimeoutMs = 10000;

// Rows are numbered in insertion order and an upsert keeps the row, which gives the
// registry's enumeration order. Names are kept as given and matched through an ASCII-folded
// copy, so "Joy" and "JOY" are one value while its first spelling is what enumerates.
constexpr const char* kSchema = R"sql(
CREATE TABLE IF NOT EXISTS registry_keys(
  id INTEGER PRIMARY KEY,
  path BLOB NOT NULL,
  folded BLOB NOT NULL UNIQUE);
CREATE TABLE IF NOT EXISTS registry_values(
  id INTEGER PRIMARY KEY,
  key_id INTEGER NOT NULL REFERENCES registry_keys(id),
  name BLOB NOT NULL,
  folded BLOB NOT NULL,
  data BLOB NOT NULL,
  UNIQUE(key_id, folded));
)sql";

struct DatabaseCloser {
  void operator()(sqlite3* db) const { sqlite3_close_v2(db); }
};
using DatabaseHandle = std::unique_ptr<sqlite3, DatabaseCloser>;

// The registry does not care about a trailing separator; neither do we.
std::string_view TrimKeyPath(std::string_view keyPath) {
  while (!keyPath.empty() && keyPath.back() == '\\')
    keyPath.remove_suffix(1);
  return keyPath;
}

std::string Describe(std::string_view bytes) {
  return EscapeForDisplay(bytes);
}

}  // namespace

struct RegistryStore::Impl {
  DatabaseHandle db;
  fs::path file;

  std::string FileName() const { return PathToUtf8(file); }

  Error Failure(std::string_view doing) const {
    return Error{fmt::format("Cannot {} the settings file \"{}\": {}", doing, FileName(),
                             sqlite3_errmsg(db.get()))};
  }

  // The key's row id, or 0 when it does not exist.
  std::int64_t FindKey(std::string_view keyPath) const {
    SqliteStatement find(db.get(), "SELECT id FROM registry_keys WHERE folded = ?1");
    find.BindBlob(1, ToLowerAscii(TrimKeyPath(keyPath)));
    return find.Step() == SQLITE_ROW ? find.ColumnInt(0) : 0;
  }

  // Runs `body` inside one write transaction; BEGIN IMMEDIATE takes the write lock at once,
  // so the busy timeout applies there instead of failing halfway through.
  Status InWriteTransaction(const std::function<bool()>& body) {
    if (ExecuteSql(db.get(), "BEGIN IMMEDIATE") != SQLITE_OK) return Failure("write to");
    if (!body()) {
      Error error = Failure("write to");
      ExecuteSql(db.get(), "ROLLBACK");
      return error;
    }
    if (ExecuteSql(db.get(), "COMMIT") != SQLITE_OK) {
      Error error = Failure("write to");
      ExecuteSql(db.get(), "ROLLBACK");
      return error;
    }
    return {};
  }

  // Inside a write transaction: the key's id, created when missing; 0 on failure.
  std::int64_t CreateKey(std::string_view keyPath) {
    const std::string_view path = TrimKeyPath(keyPath);
    SqliteStatement insert(db.get(),
                           "INSERT INTO registry_keys(path, folded) VALUES(?1, ?2) "
                           "ON CONFLICT(folded) DO NOTHING");
    insert.BindBlob(1, path);
    insert.BindBlob(2, ToLowerAscii(path));
    if (insert.Step() != SQLITE_DONE) return 0;
    return FindKey(path);
  }

  bool Upsert(std::int64_t keyId, std::string_view name, std::string_view data) {
    SqliteStatement upsert(db.get(),
                           "INSERT INTO registry_values(key_id, name, folded, data) "
                           "VALUES(?1, ?2, ?3, ?4) "
                           "ON CONFLICT(key_id, folded) DO UPDATE SET data = excluded.data");
    upsert.BindInt(1, keyId);
    upsert.BindBlob(2, name);
    upsert.BindBlob(3, ToLowerAscii(name));
    upsert.BindBlob(4, data);
    return upsert.Step() == SQLITE_DONE;
  }

  // Creates the tables in a new, empty database; refuses one that belongs to something else.
  Status Initialise() {
    SqliteStatement check(db.get(),
                          "SELECT (SELECT count(*) FROM sqlite_master), "
                          "(SELECT application_id FROM pragma_application_id), "
                          "(SELECT user_version FROM pragma_user_version)");
    if (check.Step() != SQLITE_ROW) return Failure("read");
    const std::int64_t objects = check.ColumnInt(0);
    const std::int64_t applicationId = check.ColumnInt(1);
    const std::int64_t version = check.ColumnInt(2);
    if (objects > 0 && applicationId != kApplicationId) {
      return Error{fmt::format(
          "Cannot read the settings file \"{}\": it is a database of another program", FileName())};
    }
    if (objects > 0 && version > kSchemaVersion) {
      return Error{
          fmt::format("Cannot read the settings file \"{}\": it was written by a newer version of "
                      "Genesis Romsteward",
                      FileName())};
    }
    if (objects > 0) return {};
    // Another copy may be creating the same new file right now: check again under the lock.
    return InWriteTransaction([this] {
      SqliteStatement recheck(db.get(), "SELECT count(*) FROM sqlite_master");
      if (recheck.Step() != SQLITE_ROW) return false;
      if (recheck.ColumnInt(0) > 0) return true;
      const std::string pragmas = fmt::format(
          "PRAGMA application_id = {}; PRAGMA user_version = {};", kApplicationId, kSchemaVersion);
      return ExecuteSql(db.get(), kSchema) == SQLITE_OK &&
             ExecuteSql(db.get(), pragmas.c_str()) == SQLITE_OK;
    });
  }

  // Reads every page once, so a damaged file is refused before anything is written to it.
  Status CheckIntegrity() {
    SqliteStatement check(db.get(), "PRAGMA quick_check(1)");
    if (check.Step() != SQLITE_ROW) return Failure("read");
    const std::string verdict = check.ColumnBlob(0);
    if (verdict == "ok") return {};
    return Error{fmt::format("Cannot read the settings file \"{}\": it is damaged ({})", FileName(),
                             verdict)};
  }
};

RegistryStore::RegistryStore(std::unique_ptr<Impl> impl) : m_impl(std::move(impl)) {}
RegistryStore::~RegistryStore() = default;

Result<std::unique_ptr<RegistryStore>> RegistryStore::Open(const fs::path& file) {
  auto impl = std::make_unique<Impl>();
  impl->file = file;
  const std::string name = impl->FileName();
  std::error_code error;
  if (fs::is_directory(file, error)) {
    return Error{fmt::format("Cannot open the settings file \"{}\": it is a folder", name)};
  }
  if (file.has_parent_path() && !fs::exists(file.parent_path(), error)) {
    fs::create_directories(file.parent_path(), error);
    if (error) {
      return Error{fmt::format("Cannot create the folder of the settings file \"{}\": {}", name,
                               error.message())};
    }
  }
  sqlite3* raw = nullptr;
  const int opened =
      sqlite3_open_v2(name.c_str(), &raw, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, nullptr);
  impl->db.reset(raw);
  if (opened != SQLITE_OK) return impl->Failure("open");
  sqlite3_busy_timeout(raw, kBusyTimeoutMs);

  // Verify before the first write: a file that is not ours, or damaged, stays as it was.
  if (Status ok = impl->CheckIntegrity(); !ok) return ok.error();
  if (Status ok = impl->Initialise(); !ok) return ok.error();
  if (sqlite3_db_readonly(raw, "main") == 0) {
    // WAL lets a reader and a writer in two copies of the program work side by side.
    if (ExecuteSql(raw, "PRAGMA journal_mode = WAL; PRAGMA synchronous = NORMAL") != SQLITE_OK) {
      return impl->Failure("open");
    }
  }
  return std::unique_ptr<RegistryStore>(new RegistryStore(std::move(impl)));
}

fs::path RegistryStore::DefaultLocation() {
  if (const char* chosen = std::getenv("ROMSTEWARD_SETTINGS"); chosen && *chosen) {
    return Utf8ToPath(chosen);
  }
  fs::path config;
  // A relative XDG_CONFIG_HOME is invalid and ignored, as the base-directory rules say.
  if (const char* xdg = std::getenv("XDG_CONFIG_HOME");
      xdg && *xdg && Utf8ToPath(xdg).is_absolute()) {
    config = Utf8ToPath(xdg);
  } else if (const char* home = std::getenv("HOME"); home && *home) {
    config = Utf8ToPath(home) / ".config";
  } else {
    config = ".config";
  }
  return config / "romsteward" / "settings.sqlite3";
}

const fs::path& RegistryStore::File() const {
  return m_impl->file;
}

Status RegistryStore::SetValue(std::string_view keyPath, std::string_view name,
                               std::string_view data) {
  return SetValues(keyPath, {{std::string(name), std::string(data)}});
}

Status RegistryStore::SetValues(std::string_view keyPath,
                                const std::vector<std::pair<std::string, std::string>>& values) {
  std::size_t next = 0;
  return SetValuesFrom(keyPath, [&]() -> Result<std::optional<NamedValue>> {
    if (next == values.size()) return std::optional<NamedValue>();
    return std::optional<NamedValue>(values[next++]);
  });
}

Status RegistryStore::SetValuesFrom(
    std::string_view keyPath, const std::function<Result<std::optional<NamedValue>>()>& next) {
  if (TrimKeyPath(keyPath).empty()) {
    return Error{fmt::format("Cannot write to the settings file \"{}\": no key was named",
                             m_impl->FileName())};
  }
  std::optional<Error> stopped;
  Status written = m_impl->InWriteTransaction([&] {
    const std::int64_t keyId = m_impl->CreateKey(keyPath);
    if (keyId == 0) return false;
    while (true) {
      auto value = next();
      if (!value) {
        stopped = value.error();
        return false;
      }
      if (!*value) return true;
      const auto& [name, data] = **value;
      if (name.find('\0') != std::string::npos) {
        stopped = Error{fmt::format("Cannot write the value \"{}\": a name cannot hold a 0x00 byte",
                                    Describe(name))};
        return false;
      }
      if (!m_impl->Upsert(keyId, name, data)) return false;
    }
  });
  if (stopped) return *stopped;
  return written;
}

Result<std::string> RegistryStore::GetValue(std::string_view keyPath, std::string_view name) const {
  SqliteStatement get(
      m_impl->db.get(),
      "SELECT v.data FROM registry_values v JOIN registry_keys k ON k.id = v.key_id "
      "WHERE k.folded = ?1 AND v.folded = ?2");
  get.BindBlob(1, ToLowerAscii(TrimKeyPath(keyPath)));
  get.BindBlob(2, ToLowerAscii(name));
  const int step = get.Step();
  if (step == SQLITE_ROW) return get.ColumnBlob(0);
  if (step != SQLITE_DONE) return m_impl->Failure("read");
  return Error{fmt::format("There is no value \"{}\" under {}", Describe(name),
                           Describe(TrimKeyPath(keyPath)))};
}

bool RegistryStore::HasValue(std::string_view keyPath, std::string_view name) const {
  return GetValue(keyPath, name).ok();
}

Status RegistryStore::DeleteValue(std::string_view keyPath, std::string_view name) {
  bool found = false;
  Status written = m_impl->InWriteTransaction([&] {
    SqliteStatement erase(m_impl->db.get(),
                          "DELETE FROM registry_values WHERE folded = ?2 AND key_id = "
                          "(SELECT id FROM registry_keys WHERE folded = ?1)");
    erase.BindBlob(1, ToLowerAscii(TrimKeyPath(keyPath)));
    erase.BindBlob(2, ToLowerAscii(name));
    if (erase.Step() != SQLITE_DONE) return false;
    found = sqlite3_changes(m_impl->db.get()) > 0;
    return true;
  });
  if (!written) return written;
  if (!found) {
    return Error{fmt::format("There is no value \"{}\" under {} to delete", Describe(name),
                             Describe(TrimKeyPath(keyPath)))};
  }
  return {};
}

Result<std::vector<std::string>> RegistryStore::EnumerateValueNames(
    std::string_view keyPath) const {
  auto values = EnumerateValues(keyPath);
  if (!values) return values.error();
  std::vector<std::string> names;
  names.reserve(values->size());
  for (auto& [name, data] : *values)
    names.push_back(std::move(name));
  return names;
}

Result<std::vector<std::pair<std::string, std::string>>> RegistryStore::EnumerateValues(
    std::string_view keyPath) const {
  const std::int64_t keyId = m_impl->FindKey(keyPath);
  if (keyId == 0) {
    return Error{fmt::format("There is no key {}", Describe(TrimKeyPath(keyPath)))};
  }
  SqliteStatement list(m_impl->db.get(),
                       "SELECT name, data FROM registry_values WHERE key_id = ?1 ORDER BY id");
  list.BindInt(1, keyId);
  std::vector<std::pair<std::string, std::string>> values;
  int step;
  while ((step = list.Step()) == SQLITE_ROW)
    values.emplace_back(list.ColumnBlob(0), list.ColumnBlob(1));
  if (step != SQLITE_DONE) return m_impl->Failure("read");
  return values;
}

bool RegistryStore::KeyExists(std::string_view keyPath) const {
  return m_impl->FindKey(keyPath) != 0;
}

Result<std::vector<std::string>> RegistryStore::EnumerateSubkeyNames(
    std::string_view keyPath) const {
  const std::string prefix = std::string(TrimKeyPath(keyPath)) + '\\';
  SqliteStatement list(m_impl->db.get(),
                       "SELECT path FROM registry_keys "
                       "WHERE substr(folded, 1, ?2) = ?1 ORDER BY id");
  list.BindBlob(1, ToLowerAscii(prefix));
  list.BindInt(2, static_cast<std::int64_t>(prefix.size()));
  std::vector<std::string> names;
  int step;
  while ((step = list.Step()) == SQLITE_ROW) {
    // A deeper key names its ancestor below `keyPath` too, as the registry would have it.
    const std::string path = list.ColumnBlob(0);
    std::string child = path.substr(prefix.size());
    child = child.substr(0, child.find('\\'));
    bool seen = child.empty();
    for (const std::string& name : names)
      seen = seen || EqualsIgnoreCase(name, child);
    if (!seen) names.push_back(std::move(child));
  }
  if (step != SQLITE_DONE) return m_impl->Failure("read");
  return names;
}

}  // namespace romsteward
