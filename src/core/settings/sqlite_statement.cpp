#include "core/settings/sqlite_statement.h"

namespace romsteward {

SqliteStatement::SqliteStatement(sqlite3* db, std::string_view sql) {
  m_prepareStatus =
      sqlite3_prepare_v2(db, sql.data(), static_cast<int>(sql.size()), &m_statement, nullptr);
}

SqliteStatement::~SqliteStatement() {
  sqlite3_finalize(m_statement);
}

void SqliteStatement::BindBlob(int index, std::string_view bytes) {
  // A zero-length blob must still bind as a blob, not as NULL: give SQLite a valid pointer.
  static const char kEmpty = 0;
  sqlite3_bind_blob64(m_statement, index, bytes.empty() ? &kEmpty : bytes.data(), bytes.size(),
                      SQLITE_TRANSIENT);
}

void SqliteStatement::BindInt(int index, std::int64_t value) {
  sqlite3_bind_int64(m_statement, index, value);
}

int SqliteStatement::Step() {
  if (m_prepareStatus != SQLITE_OK) return m_prepareStatus;
  return sqlite3_step(m_statement);
}

std::string SqliteStatement::ColumnBlob(int column) const {
  const void* data = sqlite3_column_blob(m_statement, column);
  const int size = sqlite3_column_bytes(m_statement, column);
  if (data == nullptr || size <= 0) return {};
  return std::string(static_cast<const char*>(data), static_cast<std::size_t>(size));
}

std::int64_t SqliteStatement::ColumnInt(int column) const {
  return sqlite3_column_int64(m_statement, column);
}

int ExecuteSql(sqlite3* db, const char* sql) {
  return sqlite3_exec(db, sql, nullptr, nullptr, nullptr);
}

}  // namespace romsteward
