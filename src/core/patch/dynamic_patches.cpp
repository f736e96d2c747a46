#include "core/patch/dynamic_patches.h"

#include "core/common/file_identity.h"
#include "core/common/strings.h"
#include "core/settings/app_settings.h"

namespace romsteward {

namespace {

constexpr char kFieldSeparator = '|';

std::optional<std::uint64_t> ParsePosition(std::string_view text) {
  if (text.empty() || text.size() > 15) return std::nullopt;
  std::uint64_t position = 0;
  for (char c : text) {
    if (c < '0' || c > '9') return std::nullopt;
    position = position * 10 + static_cast<std::uint64_t>(c - '0');
  }
  if (position == 0) return std::nullopt;
  return position;
}

}  // namespace

std::string PatchKeyPath() {
  return SectionKeyPath(kSectionPatch);
}

std::optional<std::string> PatchSource(const RegistryStore& store, std::string_view valueName) {
  auto source = store.GetValue(SectionKeyPath(kSectionPatchSource), valueName);
  if (!source) return std::nullopt;
  return std::move(source).value();
}

std::string PatchValueName(std::string_view listText, std::string_view patchName) {
  std::string name(listText);
  name += kFieldSeparator;
  name += patchName;
  return name;
}

std::string EncodePatchValue(const PatchValue& value) {
  std::string data = std::to_string(value.position);
  data += kFieldSeparator;
  data += value.newBytes;
  data += kFieldSeparator;
  data += value.oldBytes;
  return data;
}

std::optional<PatchValue> DecodePatchValue(std::string_view data) {
  const auto first = data.find(kFieldSeparator);
  if (first == std::string_view::npos) return std::nullopt;
  const auto position = ParsePosition(data.substr(0, first));
  if (!position) return std::nullopt;
  const std::string_view rest = data.substr(first + 1);
  // The new bytes are never fewer than the old, so the separator lies at or after the middle.
  const std::size_t split = rest.find(kFieldSeparator, rest.empty() ? 0 : (rest.size() - 1) / 2);
  if (split == std::string_view::npos) return std::nullopt;
  return PatchValue{*position, std::string(rest.substr(0, split)),
                    std::string(rest.substr(split + 1))};
}

std::vector<RegistryStore::ValueWrite> PatchWrites(std::string_view listText,
                                                   std::string_view patchName,
                                                   const PatchValue& value,
                                                   const std::filesystem::path& source) {
  const std::string name = PatchValueName(listText, patchName);
  return {{PatchKeyPath(), name, EncodePatchValue(value)},
          {SectionKeyPath(kSectionPatchSource), name, FileIdentity(source)}};
}

Status StorePatch(RegistryStore& store, std::string_view listText, std::string_view patchName,
                  const PatchValue& value, const std::filesystem::path& source) {
  return store.SetValuesOfKeys(PatchWrites(listText, patchName, value, source));
}

bool HasDynamicPatches(const RegistryStore& store, std::string_view listText) {
  const auto names = store.EnumerateValueNames(PatchKeyPath());
  if (!names) return false;
  for (const std::string& name : *names) {
    if (name.starts_with(listText)) return true;
  }
  return false;
}

std::vector<std::string> ListDynamicPatchNames(const RegistryStore& store,
                                               std::string_view listText) {
  std::vector<std::string> patches;
  const auto names = store.EnumerateValueNames(PatchKeyPath());
  if (!names) return patches;
  for (const std::string& name : *names) {
    if (name.empty()) break;
    const auto separator = name.find(kFieldSeparator);
    if (separator == std::string::npos) continue;
    if (EqualsIgnoreCase(std::string_view(name).substr(0, separator), listText)) {
      patches.push_back(name.substr(separator + 1));
    }
  }
  return patches;
}

Result<std::vector<std::pair<std::string, std::string>>> PatchesForLaunch(
    const RegistryStore& store, std::string_view listText) {
  std::vector<std::pair<std::string, std::string>> kept;
  if (!store.KeyExists(PatchKeyPath())) return kept;  // no patch was ever stored
  auto values = store.EnumerateValues(PatchKeyPath());
  if (!values) return values.error();
  for (auto& value : *values) {
    if (value.first.starts_with(listText)) kept.push_back(std::move(value));
  }
  return kept;
}

Status RemoveDynamicPatch(RegistryStore& store, std::string_view listText,
                          std::string_view patchName) {
  const std::string name = PatchValueName(ToUpperAscii(listText), patchName);
  if (Status deleted = store.DeleteValue(PatchKeyPath(), name); !deleted) return deleted;
  // A patch stored before sources were recorded has none to delete.
  const std::string sources = SectionKeyPath(kSectionPatchSource);
  if (store.HasValue(sources, name)) return store.DeleteValue(sources, name);
  return {};
}

}  // namespace romsteward
