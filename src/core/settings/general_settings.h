#pragma once

#include <optional>

#include "core/common/result.h"
#include "core/settings/app_settings.h"

namespace romsteward {

/// The general menu choices and checks of section `Settings`, read at start-up.
struct GeneralSettings {
  bool saveOnExit = false;         ///< savex (`mnu_save`, "Save Settings on E&xit")
  bool saveAllCartridges = false;  ///< cart (`mnu_savcart`, "Save Settings for All &Cartridges")
  bool minimizeInTray = false;     ///< tray ("Minimize in Tray")
  int sortBy = 0;                  ///< ordem: 0 "&Name", 1 "&Type"
  int show = 1;                    ///< show: 0 "&All files", 1 "&Rom files"
  int windowTitle = 0;             ///< title: 0 "Overseas name", 1 "Domestic name"

  bool operator==(const GeneralSettings&) const = default;
};

/// `savex`, `cart`, `tray`, `ordem`, `show`, `title`; a missing or unusable value gives
/// its default.
GeneralSettings LoadGeneralSettings(const AppSettings& settings);

/// "True" or "False", as Boolean menu states are stored.
std::string_view BooleanText(bool value);

/// "Save Settings on E&xit" toggled: the check is written at once.
Status SaveSaveOnExit(AppSettings& settings, bool checked);

/// The main window's position (`LaunchX`, `LaunchY`).
struct WindowPosition {
  int x = 0;
  int y = 0;
  bool operator==(const WindowPosition&) const = default;
};

/// The stored position; nullopt (centre the window) unless both values are usable.
std::optional<WindowPosition> LoadWindowPosition(const AppSettings& settings);
/// A position kept as the numbers `xKey`, `yKey` of section `Settings`; nullopt unless both
/// values are usable.
std::optional<WindowPosition> LoadPosition(const AppSettings& settings, std::string_view xKey,
                                           std::string_view yKey);

}  // namespace romsteward
