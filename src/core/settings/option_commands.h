#pragma once

#include <string_view>

#include "core/common/result.h"
#include "core/host/host.h"
#include "core/settings/emulator_options.h"
#include "core/settings/general_settings.h"

namespace romsteward {

/// The message both delete commands show when a value could not be deleted.
inline constexpr std::string_view kDeleteSettingsError =
    "There were errors deleting settings. Maybe some wasn't deleted at all.";

/// The value-name suffixes "&Delete Settings of This Cartridge" deletes, in its order.
/// `gnew`, `cystexc`, `cystsnd`, `cystskip`, `cystsync` and `ativapatch` stay behind.
inline constexpr std::string_view kCartridgeDeleteSuffixes[] = {
    ".frm",     ".fz80",        ".joy",    ".modex",       ".snd",     ".z80",
    ".cystdac", ".cystfakez80", ".cystfm", ".cystforcefm", ".cystFPU", ".cystTSC",
    ".cystz80", ".kfrm",        ".Ksnd",   ".prefemu"};

/// The values "Delete &General Settings" deletes from section `Settings`, in its order.
inline constexpr std::string_view kGeneralDeleteKeys[] = {
    "cart",    "cystdac",  "cystfakez80", "cystfm", "cystforcefm", "cystFPU", "cystTSC",
    "cystz80", "dir0",     "dir1",        "dir2",   "dir3",        "dir4",    "frm",
    "fz80",    "Genecyst", "Genem",       "Joy",    "kfrm",        "KGen",    "ksnd",
    "modex",   "ordem",    "prefemu",     "show",   "snd",         "z80"};

/// The root key of the current user's settings.
inline constexpr std::string_view kCurrentUserRoot = "HKEY_CURRENT_USER";

/// Deletes one value of the key `keyPath` under `rootKey`; a value that is not there fails.
Status DeleteSettingValue(RegistryStore& store, std::string_view rootKey, std::string_view keyPath,
                          std::string_view valueName);

/// "&Delete Settings of This Cartridge": deletes the listed option values of `entryText`,
/// going on after a failure; any failure (a value never saved counts) shows the critical
/// message once. True when every deletion succeeded.
bool DeleteCartridgeSettings(Host& host, AppSettings& settings, std::string_view entryText);

/// "Delete &General Settings": the same over the general values.
bool DeleteGeneralSettings(Host& host, AppSettings& settings);

/// Launching: with "Save Settings for All &Cartridges" checked, the cartridge's set is saved
/// before the emulator starts; otherwise nothing is written.
Status SaveOptionsBeforeLaunch(AppSettings& settings, const GeneralSettings& general,
                               const EmulatorOptions& options, std::string_view entryText);

/// Closing the main window: with "Save Settings on E&xit" checked, the cartridge's set when
/// "Save Settings for All &Cartridges" is checked too, else the general save; then, always,
/// the window's position.
Status SaveOnClose(AppSettings& settings, const GeneralSettings& general,
                   const EmulatorOptions& options, std::string_view entryText,
                   WindowPosition position);

}  // namespace romsteward
