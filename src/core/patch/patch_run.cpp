#include "core/patch/patch_run.h"

#include <charconv>
#include <optional>
#include <utility>

#include "core/common/binary_file.h"
#include "core/common/strings.h"
#include "core/patch/dynamic_patches.h"
#include "core/patch/patch_file_dialogs.h"
#include "core/settings/app_settings.h"

namespace romsteward {

namespace {

// The restore record: a first line "restore <size of the file before the run>", then for
// each patch a line "<offset> <new length> <old length>" followed by the old bytes
// themselves. Lengths go before the raw bytes, so any byte may appear in them.
constexpr std::string_view kRecordTag = "restore";

struct RestoreRecord {
  std::uint64_t originalSize = 0;
  std::vector<DynamicPatchRun::Patch> patches;
};

std::string RunKeyPath() {
  return SectionKeyPath(kSectionPatchRun);
}

std::string EncodeRecord(const RestoreRecord& record) {
  std::string data = std::string(kRecordTag) + " " + std::to_string(record.originalSize) + "\n";
  for (const auto& patch : record.patches) {
    data += std::to_string(patch.offset) + " " + std::to_string(patch.newLength) + " " +
            std::to_string(patch.oldBytes.size()) + "\n";
    data += patch.oldBytes;
  }
  return data;
}

class RecordReader {
public:
  explicit RecordReader(std::string_view data) : m_data(data) {}

  bool AtEnd() const { return m_data.empty(); }
  std::optional<std::uint64_t> Number(char after) {
    std::uint64_t value = 0;
    const auto [end, error] = std::from_chars(m_data.data(), m_data.data() + m_data.size(), value);
    if (error != std::errc{} || end == m_data.data() + m_data.size() || *end != after) {
      return std::nullopt;
    }
    m_data.remove_prefix(static_cast<std::size_t>(end - m_data.data()) + 1);
    return value;
  }
  bool Word(std::string_view word) {
    if (!m_data.starts_with(word)) return false;
    m_data.remove_prefix(word.size());
    return true;
  }
  std::optional<std::string> Bytes(std::uint64_t count) {
    if (m_data.size() < count) return std::nullopt;
    std::string bytes(m_data.substr(0, static_cast<std::size_t>(count)));
    m_data.remove_prefix(static_cast<std::size_t>(count));
    return bytes;
  }

private:
  std::string_view m_data;
};

std::optional<RestoreRecord> DecodeRecord(std::string_view data) {
  RecordReader in(data);
  RestoreRecord record;
  if (!in.Word(kRecordTag) || !in.Word(" ")) return std::nullopt;
  const auto size = in.Number('\n');
  if (!size) return std::nullopt;
  record.originalSize = *size;
  while (!in.AtEnd()) {
    const auto offset = in.Number(' ');
    const auto newLength = offset ? in.Number(' ') : std::nullopt;
    const auto oldLength = newLength ? in.Number('\n') : std::nullopt;
    auto oldBytes = oldLength ? in.Bytes(*oldLength) : std::nullopt;
    if (!oldBytes) return std::nullopt;
    record.patches.push_back({*offset, std::move(*oldBytes), static_cast<std::size_t>(*newLength)});
  }
  return record;
}

// Puts the old bytes back in the patches' order, then cuts off what the patches added
// beyond the file's former end.
Status RestoreFile(const std::filesystem::path& path, const RestoreRecord& record) {
  auto file = BinaryFile::Open(path, BinaryFile::Mode::ReadWrite);
  if (!file) return file.error();
  bool lengthened = false;
  for (const auto& patch : record.patches) {
    if (Status written = file->WriteAt(patch.offset, patch.oldBytes); !written) return written;
    lengthened = lengthened || patch.offset + patch.newLength > record.originalSize;
  }
  if (lengthened && file->Size() > record.originalSize) return file->Truncate(record.originalSize);
  return {};
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
                                       const std::filesystem::path& file) {
  DynamicPatchRun run(host, store, file);
  const auto values = PatchesForLaunch(store, listText);
  if (!values) {
    host.ShowMessage(kRegistryError, MessageIcon::Critical, kDefaultTitle);
    return run;
  }
  std::vector<std::string> newBytes;
  for (const auto& [name, data] : *values) {
    auto patch = DecodePatchValue(data);
    if (!patch) {
      host.ShowMessage(kMalformedPatch, MessageIcon::Critical, kDefaultTitle);
      continue;
    }
    run.m_patches.push_back(
        {patch->position - 1, std::move(patch->oldBytes), patch->newBytes.size()});
    newBytes.push_back(std::move(patch->newBytes));
  }
  if (run.m_patches.empty()) {
    run.m_applied = true;  // nothing to write, nothing to take back
    return run;
  }

  auto image = BinaryFile::Open(file, BinaryFile::Mode::ReadWrite);
  if (!image) {
    host.ShowMessage(image.error().message, MessageIcon::Critical, kDefaultTitle);
    run.m_patches.clear();
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
  for (std::size_t i = 0; i < newBytes.size(); ++i) {
    if (Status written = image->WriteAt(run.m_patches[i].offset, newBytes[i]); !written) {
      host.ShowMessage(written.error().message, MessageIcon::Critical, kDefaultTitle);
      break;
    }
  }
  return run;
}

void DynamicPatchRun::Restore() {
  if (!std::exchange(m_applied, false) || m_patches.empty()) return;
  if (Status restored = RestoreFile(m_file, {m_originalSize, m_patches}); !restored) {
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
