#include "core/launch/extracted_copies.h"

#include <utility>

#include "core/common/strings.h"
#include "core/host/app_title.h"
#include "core/launch/zip_archive.h"
#include "core/patch/dynamic_patches.h"
#include "core/settings/app_settings.h"

namespace romsteward {

namespace {

std::string RunKeyPath() {
  return SectionKeyPath(kSectionExtractRun);
}

// The record names the copies one per line; a file name holds no line end that an archive
// member name could give it, as such names are refused before extraction.
std::string EncodeFiles(const std::vector<std::filesystem::path>& files) {
  std::string data;
  for (const auto& file : files)
    data += PathToUtf8(file) + "\n";
  return data;
}

std::vector<std::filesystem::path> DecodeFiles(std::string_view data) {
  std::vector<std::filesystem::path> files;
  while (!data.empty()) {
    const auto end = data.find('\n');
    if (end == std::string_view::npos) break;
    if (end > 0) files.push_back(Utf8ToPath(data.substr(0, end)));
    data.remove_prefix(end + 1);
  }
  return files;
}

bool RemoveIfThere(const std::filesystem::path& file) {
  std::error_code error;
  std::filesystem::remove(file, error);
  return !error && !std::filesystem::exists(file, error);
}

}  // namespace

ExtractedCopies::ExtractedCopies(Host& host, RegistryStore& store, std::filesystem::path folder)
    : m_host(&host), m_store(&store), m_folder(std::move(folder)) {}

ExtractedCopies::ExtractedCopies(ExtractedCopies&& other) noexcept
    : m_host(other.m_host),
      m_store(other.m_store),
      m_folder(std::move(other.m_folder)),
      m_members(std::move(other.m_members)),
      m_files(std::move(other.m_files)),
      m_recordName(std::exchange(other.m_recordName, {})),
      m_owners(std::move(other.m_owners)) {}

ExtractedCopies::~ExtractedCopies() {
  Delete();
}

ExtractedCopies ExtractedCopies::Extract(Host& host, RegistryStore& store,
                                         const std::filesystem::path& archive,
                                         const std::vector<std::string>& members,
                                         const std::filesystem::path& folder) {
  ExtractedCopies copies(host, store, folder);
  std::vector<std::filesystem::path> planned;
  for (const auto& member : members) {
    if (const std::string reason = UnsafeMemberNameReason(member); !reason.empty()) {
      host.ShowMessage(reason, MessageIcon::Critical, kAppTitle);
      return copies;
    }
    std::error_code error;
    const auto absolute = std::filesystem::absolute(folder / Utf8ToPath(member), error);
    planned.push_back(error ? folder / Utf8ToPath(member) : absolute);
  }
  if (planned.empty()) return copies;
  // The record goes first: if the program dies from here on, the next start finds it.
  const std::string recordName = PathToUtf8(planned.front());
  copies.m_owners.emplace(store, RunKeyPath(), recordName);
  if (!copies.m_owners->Claim() ||
      !store.SetValue(RunKeyPath(), recordName, EncodeFiles(planned))) {
    copies.m_owners->Release();
    host.ShowMessage(kRegistryError, MessageIcon::Critical, kAppTitle);
    return copies;
  }
  copies.m_recordName = recordName;
  copies.m_members = members;
  auto extracted = ExtractZipMembers(archive, members, folder);
  if (!extracted) {
    host.ShowMessage(extracted.error().message, MessageIcon::Critical, kAppTitle);
    for (const auto& file : planned)
      RemoveIfThere(file);
    copies.m_members.clear();
    if (store.DeleteValue(RunKeyPath(), recordName)) {
      copies.m_recordName.clear();
      copies.m_owners->Release();
    }
    return copies;
  }
  copies.m_files = std::move(*extracted);
  return copies;
}

void ExtractedCopies::Delete() {
  if (m_recordName.empty()) return;
  bool allGone = true;
  for (const auto& member : m_members) {
    allGone = RemoveExtractedMember(m_folder, member).ok() && allGone;
  }
  if (!allGone) {
    // The record stays, so the next start tries again; it may take it over at once.
    m_host->ShowMessage(kTempDeleteError, MessageIcon::Critical, kAppTitle);
    if (m_owners) m_owners->Release();
  } else if (!m_store->DeleteValue(RunKeyPath(), m_recordName)) {
    m_host->ShowMessage(kRegistryError, MessageIcon::Critical, kAppTitle);
  } else if (m_owners) {
    m_owners->Release();
  }
  m_recordName.clear();
  m_members.clear();
  m_files.clear();
}

void ExtractedCopies::AddOwner(pid_t pid) {
  if (!m_recordName.empty() && m_owners) (void)m_owners->Add(pid);
}

std::size_t RecoverInterruptedExtractions(Host& host, RegistryStore& store) {
  const auto records = store.EnumerateValues(RunKeyPath());
  if (!records) return 0;  // no run was ever recorded
  std::size_t deleted = 0;
  for (const auto& [name, data] : *records) {
    // Another program's run still going on: its own end deletes the copies.
    if (RunOwners::Live(store, RunKeyPath(), name)) continue;
    bool allGone = true;
    for (const auto& file : DecodeFiles(data)) {
      std::error_code error;
      if (!std::filesystem::exists(file, error)) continue;
      if (RemoveIfThere(file)) {
        ++deleted;
      } else {
        allGone = false;
      }
    }
    if (!allGone) {
      host.ShowMessage(kTempDeleteError, MessageIcon::Critical, kAppTitle);
    } else if (!store.DeleteValue(RunKeyPath(), name)) {
      host.ShowMessage(kRegistryError, MessageIcon::Critical, kAppTitle);
    } else {
      RunOwners(store, RunKeyPath(), name).Release();
    }
  }
  return deleted;
}

}  // namespace romsteward
