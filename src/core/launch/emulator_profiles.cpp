#include "core/launch/emulator_profiles.h"

#include <array>

#include "core/common/strings.h"
#include "core/host/app_title.h"
#include "core/launch/command_line.h"
#include "core/launch/emulator_runners.h"
#include "core/launch/installed_programs.h"
#include "core/launch/shell_words.h"
#include "core/settings/app_settings.h"

namespace romsteward {

namespace {

const std::array<EmulatorProfile, 6> kProfiles = {{
    {"GenEm",
     EmulatorTab::GenEm,
     "Genem",
     "Genemrun",
     "Search GenEm...",
     "mnu_locateGen",
     "Locate GenEm.exe",
     {"Executables", "genem.exe"},
     true},
    {"GenEmnew",
     EmulatorTab::GenEm,
     "Genemnew",
     "Genemnewrun",
     "Search GenEmnew...",
     "mnu_locatenew",
     "Locate GenEmnew.exe",
     {"Executables", "gennew.exe"},
     true},
    {"Genecyst",
     EmulatorTab::Genecyst,
     "Genecyst",
     "Genecystrun",
     "Search Genecyst...",
     "mnu_locateGenecyst",
     "Locate genecyst.exe",
     {"Executables", "genecyst.exe"},
     true},
    {"KGen",
     EmulatorTab::KGen,
     "KGen",
     "KGenrun",
     "Search KGen...",
     "mnu_locateKGen",
     "Locate KGen.exe",
     {"Executables", "kgen.exe"},
     true},
    {"BlastEm",
     EmulatorTab::BlastEm,
     "BlastEm",
     "",
     "Search BlastEm...",
     "mnu_locateBlastEm",
     "Locate blastem",
     {"Executables", "blastem"},
     false},
    {"Mednafen",
     EmulatorTab::Mednafen,
     "Mednafen",
     "",
     "Search Mednafen...",
     "mnu_locateMednafen",
     "Locate mednafen",
     {"Executables", "mednafen"},
     false},
}};

}  // namespace

std::span<const EmulatorProfile> EmulatorProfiles() {
  return kProfiles;
}

const EmulatorProfile* FindEmulatorProfile(std::string_view name) {
  for (const auto& profile : kProfiles) {
    if (EqualsIgnoreCase(profile.name, name)) return &profile;
  }
  return nullptr;
}

const EmulatorProfile* ProfileForTab(int tab, bool useGenNew) {
  switch (tab) {
    case static_cast<int>(EmulatorTab::GenEm):
      return FindEmulatorProfile(useGenNew ? "GenEmnew" : "GenEm");
    case static_cast<int>(EmulatorTab::KGen):
      return FindEmulatorProfile("KGen");
    case static_cast<int>(EmulatorTab::Genecyst):
      return FindEmulatorProfile("Genecyst");
    case static_cast<int>(EmulatorTab::BlastEm):
      return FindEmulatorProfile("BlastEm");
    case static_cast<int>(EmulatorTab::Mednafen):
      return FindEmulatorProfile("Mednafen");
    default:
      return nullptr;
  }
}

std::string EmulatorPath(const AppSettings& settings, const EmulatorProfile& profile) {
  std::string path = settings.GetSetting(kSectionSettings, profile.pathKey);
  // The Debian emulators need no locating when they are installed where Debian puts them.
  if (path.empty() && !profile.classic)
    path = FindInstalledProgram(profile.filter.patterns, ProgramSearchFolders());
  return path;
}

std::vector<std::string> RunnerWords(const AppSettings& settings, const EmulatorProfile& profile) {
  if (profile.runnerKey.empty()) return {};
  const std::string command = settings.GetSetting(kSectionSettings, profile.runnerKey);
  // Quoted like the extra command line, so a runner's path may hold blanks.
  auto words = SplitShellWords(command);
  return words ? std::move(*words) : SplitAtBlanks(command);
}

void LocateEmulator(Host& host, AppSettings& settings, const EmulatorProfile& profile,
                    const std::vector<std::filesystem::path>& folders) {
  FileDialog dialog;
  dialog.title = profile.dialogTitle;
  dialog.filters = {profile.filter};
  // Where the emulator was last found, else where Debian installs games.
  const std::filesystem::path known =
      Utf8ToPath(settings.GetSetting(kSectionSettings, profile.pathKey)).parent_path();
  std::error_code error;
  dialog.initialDir = !known.empty() && std::filesystem::is_directory(known, error)
                          ? PathToUtf8(known)
                          : std::string(kGamesFolder);
  const auto chosen = host.ChooseOpenFile(dialog);
  if (!chosen || chosen->empty()) return;
  if (Status saved = settings.SaveSetting(kSectionSettings, profile.pathKey, *chosen); !saved) {
    host.ShowMessage(saved.error().message, MessageIcon::Critical, kAppTitle);
    return;
  }
  SuggestRunner(host, settings, profile, folders);
}

bool AnyEmulatorKnown(const AppSettings& settings) {
  for (const EmulatorProfile& profile : EmulatorProfiles()) {
    if (profile.name != "GenEmnew" &&
        !settings.GetSetting(kSectionSettings, profile.pathKey).empty())
      return true;
  }
  return false;
}

bool ShowFirstRunNotice(Host& host, const AppSettings& settings) {
  if (AnyEmulatorKnown(settings)) return false;
  host.ShowMessage(kFirstRunNotice, MessageIcon::Information, kAppTitle);
  return true;
}

std::vector<std::string> ForceAnotherLanguage() {
  return {std::begin(kForcedCountries), std::end(kForcedCountries)};
}

}  // namespace romsteward
