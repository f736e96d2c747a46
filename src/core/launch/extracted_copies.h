#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "core/host/host.h"
#include "core/launch/run_owner.h"
#include "core/settings/registry_store.h"

namespace romsteward {

/// The section that names, for each run still going on, the copies extracted for it.
inline constexpr std::string_view kSectionExtractRun = "ExtractRun";

/// The archive members extracted into the temporary folder for one run, deleted when the
/// run is over. Like DynamicPatchRun, a record in the store names them before the first is
/// written, so a program killed during the run leaves nothing the next start cannot clear.
class ExtractedCopies {
public:
  /// Extracts `members` of `archive` into `folder`. On failure the user is told, whatever
  /// was written is gone again, and Files() is empty.
  static ExtractedCopies Extract(Host& host, RegistryStore& store,
                                 const std::filesystem::path& archive,
                                 const std::vector<std::string>& members,
                                 const std::filesystem::path& folder);

  ExtractedCopies(ExtractedCopies&& other) noexcept;
  ExtractedCopies& operator=(ExtractedCopies&&) = delete;
  ExtractedCopies(const ExtractedCopies&) = delete;
  ExtractedCopies& operator=(const ExtractedCopies&) = delete;
  /// Deletes them, if that has not been done yet.
  ~ExtractedCopies();

  /// The extracted files, in the order of the members; empty when extraction failed.
  const std::vector<std::filesystem::path>& Files() const { return m_files; }
  bool Ok() const { return !m_files.empty(); }
  /// Names the emulator started on the copies beside the record, so that no other program
  /// deletes them while it runs.
  void AddOwner(pid_t pid);
  /// Deletes the copies ("Error deleting from temporary directory!" when one stays) and the
  /// record. Does nothing the second time.
  void Delete();

private:
  ExtractedCopies(Host& host, RegistryStore& store, std::filesystem::path folder);

  Host* m_host;
  RegistryStore* m_store;
  std::filesystem::path m_folder;
  std::vector<std::string> m_members;
  std::vector<std::filesystem::path> m_files;
  std::string m_recordName;
  std::optional<RunOwners> m_owners;
};

inline constexpr std::string_view kTempDeleteError = "Error deleting from temporary directory!";

/// At start: deletes the copies a run that never ended (its program and its emulator are gone)
/// left in the temporary folder.
/// Returns how many copies were deleted.
std::size_t RecoverInterruptedExtractions(Host& host, RegistryStore& store);

}  // namespace romsteward
