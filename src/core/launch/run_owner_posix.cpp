#include <unistd.h>

#include <charconv>
#include <fstream>
#include <sstream>

#include "core/launch/run_owner.h"

namespace romsteward {

namespace {

std::string OwnerKey(std::string_view recordKey) {
  return std::string(recordKey) + "\\Owner";
}

// One "pid start" line per process.
std::string Encode(const std::vector<ProcessIdentity>& owners) {
  std::string data;
  for (const auto& owner : owners)
    data += std::to_string(owner.pid) + " " + std::to_string(owner.startTicks) + "\n";
  return data;
}

std::vector<ProcessIdentity> Decode(std::string_view data) {
  std::vector<ProcessIdentity> owners;
  std::istringstream in{std::string(data)};
  ProcessIdentity owner;
  while (in >> owner.pid >> owner.startTicks)
    owners.push_back(owner);
  return owners;
}

}  // namespace

std::optional<ProcessIdentity> IdentifyProcess(pid_t pid) {
  if (pid <= 0) return std::nullopt;
  std::ifstream file("/proc/" + std::to_string(pid) + "/stat");
  std::string stat;
  if (!std::getline(file, stat)) return std::nullopt;
  // The name (field 2) is in parentheses and may hold blanks and parentheses itself: the
  // fields are counted from its closing one, which is the last in the line.
  const auto close = stat.rfind(')');
  if (close == std::string::npos) return std::nullopt;
  std::istringstream fields(stat.substr(close + 1));
  std::string state;
  fields >> state;  // field 3
  if (state == "Z" || state == "X") return std::nullopt;
  std::string field;
  for (int number = 4; number < 22 && fields >> field; ++number) {
  }
  std::uint64_t start = 0;
  if (!(fields >> start)) return std::nullopt;  // field 22
  return ProcessIdentity{pid, start};
}

bool IsProcessAlive(const ProcessIdentity& identity) {
  const auto now = IdentifyProcess(identity.pid);
  return now && *now == identity;
}

RunOwners::RunOwners(RegistryStore& store, std::string_view recordKey, std::string recordName)
    : m_store(&store), m_key(OwnerKey(recordKey)), m_name(std::move(recordName)) {}

Status RunOwners::Claim() {
  m_owners.clear();
  if (const auto self = IdentifyProcess(getpid())) m_owners.push_back(*self);
  return m_store->SetValue(m_key, m_name, Encode(m_owners));
}

Status RunOwners::Add(pid_t pid) {
  const auto identity = IdentifyProcess(pid);
  if (!identity) return {};  // already gone: nothing to wait for
  m_owners.push_back(*identity);
  return m_store->SetValue(m_key, m_name, Encode(m_owners));
}

void RunOwners::Release() {
  if (m_store->HasValue(m_key, m_name)) (void)m_store->DeleteValue(m_key, m_name);
}

bool RunOwners::Live(const RegistryStore& store, std::string_view recordKey,
                     std::string_view name) {
  const auto data = store.GetValue(OwnerKey(recordKey), name);
  if (!data) return false;
  for (const auto& owner : Decode(*data))
    if (IsProcessAlive(owner)) return true;
  return false;
}

}  // namespace romsteward
