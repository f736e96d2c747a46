#include "core/patch/patch_run.h"

#include <fmt/format.h>

#include <optional>
#include <utility>

#include "core/common/binary_file.h"
#include "core/common/file_identity.h"
#include "core/common/strings.h"
#include "core/patch/dynamic_patches.h"
#include "core/patch/patch_file_dialogs.h"
#include "core/patch/restore_record.h"
#include "core/settings/app_settings.h"

namespace romsteward {

namespace {

std::string RunKeyPath() {
  return SectionKeyPath(kSectionPatchRun);
}

std::string NotPatchedAnyMore(const std::string& shown) {
  return shown +
         " no longer holds what the emulator run wrote into it (it was replaced or changed "
         "since), so the dynamic patches' old bytes were not written back.";
}

// Whether the file at `path` is still the one the record's run patched; a file that cannot be
// read is left to the restore, which reports it.
bool StillPatched(const std::filesystem::path& path, const RestoreRecord& record) {
  const auto file = BinaryFile::Open(path);
  return !file || HoldsTheRun(*file, record);
}

// Why the patch `name` must not be written into `file`, or nullopt when it may: its old bytes
// were read from another file, or the file no longer holds them, so putting them back after the
// run would change it for good. A copy extracted for the run is checked by its bytes alone.
std::optional<std::string> WhyNotTakenFrom(const RegistryStore& store, std::string_view name,
                                           const PatchValue& patch, const BinaryFile& image,
                                           const std::filesystem::path& file, PatchTarget target) {
  if (target == PatchTarget::Image) {
    if (const auto source = PatchSource(store, name); source && !IsSameFile(*source, file))
      return "made from " + EscapeForDisplay(*source);
  }
  if (image.ReadAt(patch.position - 1, patch.newBytes.size()) != patch.oldBytes)
    return "the bytes it would put back are not those the file holds there";
  return std::nullopt;
}

std::string RefusalMessage(const std::filesystem::path& file,
                           const std::vector<std::string>& refused) {
  constexpr std::size_t kShown = 10;
  std::string text = "These dynamic patches were not applied to " +
                     EscapeForDisplay(PathToUtf8(file)) +
                     ", as their old bytes were not taken from it:";
  for (std::size_t i = 0; i < refused.size() && i < kShown; ++i)
    text += "\n" + refused[i];
  if (refused.size() > kShown) text += fmt::format("\n... and {} more", refused.size() - kShown);
  return text;
}

std::string RecordName(const std::filesystem::path& file) {
  std::error_code error;
  const auto absolute = std::filesystem::absolute(file, error);
  return PathToUtf8(error ? file : absolute);
}

}  // namespace

DynamicPatchRun::DynamicPatchRun(Host& host, RegistryStore& store, std::filesystem::path file)
    : m_host(&host), m_store(&store), m_file(std::move(file)) {}

DynamicPatchRun::DynamicPatchRun(DynamicPatchRun&& other) noexcept
    : m_host(other.m_host),
      m_store(other.m_store),
      m_file(std::move(other.m_file)),
      m_originalSize(other.m_originalSize),
      m_patches(std::move(other.m_patches)),
      m_owners(std::move(other.m_owners)),
      m_applied(std::exchange(other.m_applied, false)) {}

DynamicPatchRun::~DynamicPatchRun() {
  Restore();
}

DynamicPatchRun DynamicPatchRun::Apply(Host& host, RegistryStore& store, std::string_view listText,
                                       const std::filesystem::path& file, PatchTarget target) {
  DynamicPatchRun run(host, store, file);
  const auto values = PatchesForLaunch(store, listText);
  if (!values) {
    host.ShowMessage(kRegistryError, MessageIcon::Critical, kDefaultTitle);
    return run;
  }
  std::vector<std::pair<std::string, PatchValue>> candidates;
  for (const auto& [name, data] : *values) {
    auto patch = DecodePatchValue(data);
    if (!patch) {
      host.ShowMessage(kMalformedPatch, MessageIcon::Critical, kDefaultTitle);
      continue;
    }
    candidates.emplace_back(name, std::move(*patch));
  }
  if (candidates.empty()) {
    run.m_applied = true;  // nothing to write, nothing to take back
    return run;
  }

  auto image = BinaryFile::Open(file, BinaryFile::Mode::ReadWrite);
  if (!image) {
    host.ShowMessage(image.error().message, MessageIcon::Critical, kDefaultTitle);
    return run;
  }
  std::vector<std::string> refused;
  for (auto& [name, patch] : candidates) {
    if (auto why = WhyNotTakenFrom(store, name, patch, *image, file, target)) {
      refused.push_back(EscapeForDisplay(name) + ": " + *why);
      continue;
    }
    run.m_patches.push_back({patch.position - 1, std::move(patch.oldBytes), patch.newBytes.size(),
                             std::move(patch.newBytes)});
  }
  if (!refused.empty()) {
    host.ShowMessage(RefusalMessage(file, refused), MessageIcon::Exclamation, kDefaultTitle);
  }
  if (run.m_patches.empty()) {
    run.m_applied = true;
    return run;
  }
  run.m_originalSize = image->Size();
  // The record goes first: if the program dies from here on, the next start finds it. Its
  // owner goes before it, so no other program takes a live run for a dead one.
  run.m_owners.emplace(store, RunKeyPath(), RecordName(file));
  if (!run.m_owners->Claim() ||
      !store.SetValue(RunKeyPath(), RecordName(file),
                      EncodeRecord({run.m_originalSize, run.m_patches}))) {
    run.m_owners->Release();
    host.ShowMessage(kRegistryError, MessageIcon::Critical, kDefaultTitle);
    run.m_patches.clear();
    return run;
  }
  run.m_applied = true;
  for (const RunPatch& patch : run.m_patches) {
    if (Status written = image->WriteAt(patch.offset, patch.newBytes); !written) {
      host.ShowMessage(written.error().message, MessageIcon::Critical, kDefaultTitle);
      break;
    }
  }
  return run;
}

void DynamicPatchRun::Restore() {
  if (!std::exchange(m_applied, false) || m_patches.empty()) return;
  const RestoreRecord record{m_originalSize, m_patches};
  if (!StillPatched(m_file, record)) {
    m_host->ShowMessage(NotPatchedAnyMore(EscapeForDisplay(PathToUtf8(m_file))),
                        MessageIcon::Exclamation, kDefaultTitle);
  } else if (Status restored = RestoreFile(m_file, record); !restored) {
    m_host->ShowMessage(restored.error().message + "\nThe dynamic patches could not be taken off " +
                            PathToUtf8(m_file) + "; the next start will try again.",
                        MessageIcon::Critical, kDefaultTitle);
    // Given up on here: the next start may take it over at once.
    if (m_owners) m_owners->Release();
    return;
  }
  if (!m_store->DeleteValue(RunKeyPath(), RecordName(m_file))) {
    m_host->ShowMessage(kRegistryError, MessageIcon::Critical, kDefaultTitle);
  } else if (m_owners) {
    m_owners->Release();
  }
}

void DynamicPatchRun::AddOwner(pid_t pid) {
  if (m_applied && m_owners && !m_patches.empty()) (void)m_owners->Add(pid);
}

std::size_t RecoverInterruptedPatchRuns(Host& host, RegistryStore& store) {
  const auto records = store.EnumerateValues(RunKeyPath());
  if (!records) return 0;  // no run was ever recorded
  std::size_t restored = 0;
  for (const auto& [name, data] : *records) {
    // Another program's run still going on: its own end takes the patches off.
    if (RunOwners::Live(store, RunKeyPath(), name)) continue;
    const std::string shown = EscapeForDisplay(name);
    const auto record = DecodeRecord(data);
    std::error_code error;
    if (!record) {
      host.ShowMessage("The record of an emulator run on " + shown +
                           " is damaged, so its dynamic patches could not be taken off. Check "
                           "the image against a good copy.",
                       MessageIcon::Exclamation, kDefaultTitle);
    } else if (!std::filesystem::exists(Utf8ToPath(name), error)) {
      host.ShowMessage(
          "The program ended during an emulator run with dynamic patches applied "
          "to " +
              shown + ", which no longer exists. Nothing was restored.",
          MessageIcon::Exclamation, kDefaultTitle);
    } else if (!StillPatched(Utf8ToPath(name), *record)) {
      host.ShowMessage(
          "The program ended during an emulator run with dynamic patches applied "
          "to " +
              shown + ". " + NotPatchedAnyMore(shown),
          MessageIcon::Exclamation, kDefaultTitle);
    } else if (Status put = RestoreFile(Utf8ToPath(name), *record); !put) {
      host.ShowMessage(put.error().message + "\nThe dynamic patches applied to " + shown +
                           " before the program ended could not be taken off; the next start "
                           "will try again.",
                       MessageIcon::Critical, kDefaultTitle);
      continue;
    } else {
      host.ShowMessage(
          "The program ended during an emulator run with dynamic patches applied "
          "to " +
              shown + ". Its original bytes have been put back.",
          MessageIcon::Information, kDefaultTitle);
      ++restored;
    }
    if (!store.DeleteValue(RunKeyPath(), name)) {
      host.ShowMessage(kRegistryError, MessageIcon::Critical, kDefaultTitle);
    } else {
      RunOwners(store, RunKeyPath(), name).Release();
    }
  }
  return restored;
}

}  // namespace romsteward
