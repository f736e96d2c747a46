#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace romsteward {

/// One prepared SQLite statement, finalized with the object. Text and blobs are bound and
/// read as byte strings, so any byte (0x00 included) goes through unchanged.
class SqliteStatement {
public:
  SqliteStatement(sqlite3* db, std::string_view sql);
  ~SqliteStatement();
  SqliteStatement(const SqliteStatement&) = delete;
  SqliteStatement& operator=(const SqliteStatement&) = delete;

  /// SQLITE_OK when the statement was prepared.
  int PrepareStatus() const { return m_prepareStatus; }

  /// Parameters are numbered from 1, as SQLite numbers them.
  void BindBlob(int index, std::string_view bytes);
  void BindInt(int index, std::int64_t value);

  /// SQLITE_ROW, SQLITE_DONE or an error code.
  int Step();

  std::string ColumnBlob(int column) const;
  std::int64_t ColumnInt(int column) const;

private:
  sqlite3_stmt* m_statement = nullptr;
  int m_prepareStatus = SQLITE_ERROR;
};

/// Runs statements that take no parameters and return no rows; SQLITE_OK or the error code.
int ExecuteSql(sqlite3* db, const char* sql);

}  // namespace romsteward
