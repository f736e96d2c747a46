#pragma once

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <filesystem>
#include <string>

namespace romsteward::test {

/// Runs `sql` on the settings file through a second connection: triggers there make the
/// store's own writes fail (RAISE) or record them, without a fake store.
inline void RunOnStoreFile(const std::filesystem::path& file, const std::string& sql) {
  sqlite3* db = nullptr;
  ASSERT_EQ(sqlite3_open(file.c_str(), &db), SQLITE_OK);
  char* error = nullptr;
  const int ran = sqlite3_exec(db, sql.c_str(), nullptr, nullptr, &error);
  const std::string message = error ? error : "";
  sqlite3_free(error);
  sqlite3_close(db);
  ASSERT_EQ(ran, SQLITE_OK) << message;
}

/// Makes every write of the value `name` (any case) fail (the store keeps names as BLOBs); `event`
/// is INSERT, UPDATE or DELETE.
inline void FailStoreWrites(const std::filesystem::path& file, const std::string& event,
                            const std::string& name) {
  const std::string row = event == "DELETE" ? "OLD" : "NEW";
  RunOnStoreFile(file, "CREATE TRIGGER fail_" + event + " BEFORE " + event +
                           " ON registry_values WHEN CAST(" + row + ".folded AS TEXT) = lower('" +
                           name + "') BEGIN SELECT RAISE(ABORT, 'injected failure'); END;");
}

}  // namespace romsteward::test
