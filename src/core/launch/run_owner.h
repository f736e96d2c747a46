#pragma once

#include <sys/types.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/common/result.h"
#include "core/settings/registry_store.h"

namespace romsteward {

/// A process as it can be recognised later: its pid and the time it started (clock ticks after
/// boot, /proc/PID/stat field 22), so that a pid handed on to another process does not count.
struct ProcessIdentity {
  pid_t pid = 0;
  std::uint64_t startTicks = 0;

  bool operator==(const ProcessIdentity&) const = default;
};

/// The identity of `pid` while it runs; nullopt once it is gone (or only a zombie).
std::optional<ProcessIdentity> IdentifyProcess(pid_t pid);
/// Whether the very process `identity` names still runs.
bool IsProcessAlive(const ProcessIdentity& identity);

/// The processes a run record answers to: the program that made it, and the emulator once it
/// started. Kept beside the record (in the subkey "Owner" of the record's key, under the same
/// value name), so that a second program opening the store leaves a live run alone and
/// recovers only the runs whose processes are all gone.
class RunOwners {
public:
  RunOwners(RegistryStore& store, std::string_view recordKey, std::string recordName);

  /// Names the calling process; written before the record itself.
  Status Claim();
  /// Adds `pid` (the emulator just started) to those the record answers to.
  Status Add(pid_t pid);
  /// Forgets the owners; done after the record is gone.
  void Release();

  /// Whether a process named for the record `name` under `recordKey` still runs. A record
  /// without owners was left by a program that ended (or by an older version of it).
  static bool Live(const RegistryStore& store, std::string_view recordKey, std::string_view name);

private:
  RegistryStore* m_store;
  std::string m_key;
  std::string m_name;
  std::vector<ProcessIdentity> m_owners;
};

}  // namespace romsteward
