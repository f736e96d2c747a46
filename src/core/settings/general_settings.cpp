#include "core/settings/general_settings.h"

#include <string>

#include "core/settings/stored_values.h"

namespace romsteward {

namespace {

bool ReadBoolean(const AppSettings& settings, std::string_view key, bool fallback) {
  return StoredBoolean(settings.GetSetting(kSectionSettings, key)).value_or(fallback);
}

// A menu choice: the index of one of `count` items, else the default.
int ReadChoice(const AppSettings& settings, std::string_view key, int count, int fallback) {
  const std::optional<int> value = StoredNumber(settings.GetSetting(kSectionSettings, key));
  return value && *value >= 0 && *value < count ? *value : fallback;
}

}  // namespace

GeneralSettings LoadGeneralSettings(const AppSettings& settings) {
  const GeneralSettings defaults;
  GeneralSettings general;
  general.saveOnExit = ReadBoolean(settings, "savex", defaults.saveOnExit);
  general.saveAllCartridges = ReadBoolean(settings, "cart", defaults.saveAllCartridges);
  general.minimizeInTray = ReadBoolean(settings, "tray", defaults.minimizeInTray);
  general.sortBy = ReadChoice(settings, "ordem", 2, defaults.sortBy);
  general.show = ReadChoice(settings, "show", 2, defaults.show);
  general.windowTitle = ReadChoice(settings, "title", 2, defaults.windowTitle);
  return general;
}

std::string_view BooleanText(bool value) {
  return value ? "True" : "False";
}

Status SaveSaveOnExit(AppSettings& settings, bool checked) {
  return settings.SaveSetting(kSectionSettings, "savex", BooleanText(checked));
}

std::optional<WindowPosition> LoadWindowPosition(const AppSettings& settings) {
  return LoadPosition(settings, "LaunchX", "LaunchY");
}

std::optional<WindowPosition> LoadPosition(const AppSettings& settings, std::string_view xKey,
                                           std::string_view yKey) {
  const std::optional<int> x = StoredNumber(settings.GetSetting(kSectionSettings, xKey));
  const std::optional<int> y = StoredNumber(settings.GetSetting(kSectionSettings, yKey));
  if (!x || !y) return std::nullopt;
  return WindowPosition{*x, *y};
}

}  // namespace romsteward
