#include "core/settings/option_commands.h"

#include <string>

namespace romsteward {

namespace {

// The section's key path below the root, as the deletions name it.
std::string SectionBelowRoot(std::string_view section) {
  std::string path = SectionKeyPath(section);
  return path.substr(kCurrentUserRoot.size() + 1);
}

bool ReportDeletion(Host& host, bool failed) {
  if (failed) host.ShowMessage(kDeleteSettingsError, MessageIcon::Critical, "");
  return !failed;
}

}  // namespace

Status DeleteSettingValue(RegistryStore& store, std::string_view rootKey, std::string_view keyPath,
                          std::string_view valueName) {
  std::string fullPath(rootKey);
  fullPath += '\\';
  fullPath += keyPath;
  return store.DeleteValue(fullPath, valueName);
}

bool DeleteCartridgeSettings(Host& host, AppSettings& settings, std::string_view entryText) {
  const std::string keyPath = SectionBelowRoot(kSectionCartridge);
  bool failed = false;
  for (std::string_view suffix : kCartridgeDeleteSuffixes) {
    const std::string name = std::string(entryText) + std::string(suffix);
    if (!DeleteSettingValue(settings.Store(), kCurrentUserRoot, keyPath, name)) failed = true;
  }
  return ReportDeletion(host, failed);
}

bool DeleteGeneralSettings(Host& host, AppSettings& settings) {
  const std::string keyPath = SectionBelowRoot(kSectionSettings);
  bool failed = false;
  for (std::string_view key : kGeneralDeleteKeys) {
    if (!DeleteSettingValue(settings.Store(), kCurrentUserRoot, keyPath, key)) failed = true;
  }
  return ReportDeletion(host, failed);
}

Status SaveOptionsBeforeLaunch(AppSettings& settings, const GeneralSettings& general,
                               const EmulatorOptions& options, std::string_view entryText) {
  if (!general.saveAllCartridges) return {};
  return SaveOptions(settings, OptionSection::Cartridge, options, general, entryText);
}

Status SaveOnClose(AppSettings& settings, const GeneralSettings& general,
                   const EmulatorOptions& options, std::string_view entryText,
                   WindowPosition position) {
  Status saved;
  if (general.saveOnExit) {
    saved = SaveOptions(
        settings, general.saveAllCartridges ? OptionSection::Cartridge : OptionSection::Settings,
        options, general, entryText);
  }
  // The position is written even when the options could not be.
  Status placed = settings.SaveSettings(
      kSectionSettings,
      {{"LaunchX", std::to_string(position.x)}, {"LaunchY", std::to_string(position.y)}});
  return saved ? placed : saved;
}

}  // namespace romsteward
