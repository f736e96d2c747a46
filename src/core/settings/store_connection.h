#pragma once

#include <sqlite3.h>

#include <filesystem>
#include <memory>

namespace romsteward {

struct DatabaseCloser {
  void operator()(sqlite3* db) const { sqlite3_close_v2(db); }
};
using DatabaseHandle = std::unique_ptr<sqlite3, DatabaseCloser>;

/// How a settings file can be opened.
enum class StoreAccess {
  ReadWrite,
  /// The file or its folder cannot be written: reading still works, every write is refused.
  ReadOnly,
  /// Read-only in a folder where the store's journal files cannot exist either: nothing can
  /// change the file, so it is read without locks or journal files.
  Frozen,
};

/// Read-only when the file, or the folder it would need for its journal, is not writable
/// (a file or folder without any write permission bit counts as such for every user).
StoreAccess ChooseStoreAccess(const std::filesystem::path& file);

/// Opens the SQLite file `file`. An `inspection` connection never merges the journal into the
/// file when it closes, so a store found damaged keeps its files as they were. The result code
/// of the open.
int ConnectStore(const std::filesystem::path& file, StoreAccess access, bool inspection,
                 DatabaseHandle& db);

/// Which of the journal files ("-wal", "-shm") lay beside the store.
struct JournalFiles {
  bool wal = false;
  bool index = false;
};
JournalFiles FindJournalFiles(const std::filesystem::path& file);
/// Whether `file` is empty while its journal is not: the journal then holds writes whose file
/// was lost, and SQLite would delete it on opening.
bool JournalWithoutItsFile(const std::filesystem::path& file);
/// After a refused store was closed: removes the journal files that opening it added (an
/// empty journal and its index), so the store's folder is left as it was found.
void RemoveAddedJournalFiles(const std::filesystem::path& file, JournalFiles before);

}  // namespace romsteward
