#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/host/host.h"
#include "core/launch/installed_programs.h"

namespace romsteward {

class AppSettings;

/// The tabs of the emulator tab strip, numbered as `prefemu` stores them: the classic strip
/// reads Genecyst, GenEm, KGen; the Debian emulators follow.
enum class EmulatorTab : int { Genecyst = 0, GenEm = 1, KGen = 2, BlastEm = 3, Mednafen = 4 };

/// One emulator the launcher knows: where its path is kept and how it is located.
struct EmulatorProfile {
  std::string_view name;           ///< "GenEm", also the name `--emulator` takes (any case)
  EmulatorTab tab;                 ///< the tab that runs it (GenEmnew: the GenEm tab)
  std::string_view pathKey;        ///< section `Settings`
  std::string_view runnerKey;      ///< section `Settings`: the runner command, empty for none
  std::string_view locateCaption;  ///< "Search GenEm..."
  std::string_view locateItem;     ///< its menu item, `mnu_locateGen`
  std::string_view dialogTitle;    ///< "Locate GenEm.exe"
  FileFilter filter;               ///< "Executables|genem.exe"
  bool classic;                    ///< one of the four DOS-era emulators
};

/// GenEm, GenEmnew, Genecyst, KGen, then BlastEm and Mednafen.
std::span<const EmulatorProfile> EmulatorProfiles();
/// The profile named `name` (compared without regard to case).
const EmulatorProfile* FindEmulatorProfile(std::string_view name);
/// The profile a tab runs: the GenEm tab gives GenEmnew when `useGenNew`. Null for a number
/// that is no tab.
const EmulatorProfile* ProfileForTab(int tab, bool useGenNew);

/// The stored emulator path ("" when never located).
std::string EmulatorPath(const AppSettings& settings, const EmulatorProfile& profile);
/// The stored runner command split at blanks ("dosbox -fullscreen" gives two words).
std::vector<std::string> RunnerWords(const AppSettings& settings, const EmulatorProfile& profile);

/// "Search <name>...": a file dialog with the profile's title and filter; the choice is
/// written to its key at once, a cancelled dialog changes nothing. A DOS emulator without a
/// runner is then offered one installed in `folders` (SuggestRunner).
void LocateEmulator(Host& host, AppSettings& settings, const EmulatorProfile& profile,
                    const std::vector<std::filesystem::path>& folders = ProgramSearchFolders());

/// Whether an emulator is known: a path stored for GenEm, Genecyst, KGen, BlastEm or
/// Mednafen. GenEmnew alone is not enough: the GenEm tab runs it only with "Use GenNew".
bool AnyEmulatorKnown(const AppSettings& settings);

/// The first-run notice, shown while no emulator is known (AnyEmulatorKnown). True when it
/// was shown.
bool ShowFirstRunNotice(Host& host, const AppSettings& settings);
inline constexpr std::string_view kFirstRunNotice =
    "This is the first time you run Genesis Romsteward. Click on Options menu, item 'Search "
    "<emulator's name>' to specify the emulator's directory";

/// "Force another language": the countries any cartridge can be forced to.
inline constexpr std::string_view kForcedCountries[] = {"USA", "Europe", "Japan"};
std::vector<std::string> ForceAnotherLanguage();

}  // namespace romsteward
