#include "core/launch/emulator_profiles.h"

#include <array>
#include <cstdlib>

#include "core/common/strings.h"
#include "core/host/app_title.h"
#include "core/launch/command_line.h"
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

// Debian installs its emulators here, which is not on every PATH.
constexpr std::string_view kGamesFolder = "/usr/games";

std::string InstalledProgram(std::string_view name) {
  std::vector<std::string> folders{std::string(kGamesFolder)};
  if (const char* path = std::getenv("PATH")) {
    std::string_view rest(path);
    while (!rest.empty()) {
      const auto colon = rest.find(':');
      folders.emplace_back(rest.substr(0, colon));
      rest = colon == std::string_view::npos ? std::string_view{} : rest.substr(colon + 1);
    }
  }
  std::error_code error;
  for (const auto& folder : folders) {
    if (folder.empty()) continue;
    const auto candidate = Utf8ToPath(folder) / Utf8ToPath(name);
    if (std::filesystem::is_regular_file(candidate, error)) return PathToUtf8(candidate);
  }
  return {};
}

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
  if (path.empty() && !profile.classic) path = InstalledProgram(profile.filter.patterns);
  return path;
}

std::vector<std::string> RunnerWords(const AppSettings& settings, const EmulatorProfile& profile) {
  if (profile.runnerKey.empty()) return {};
  return SplitAtBlanks(settings.GetSetting(kSectionSettings, profile.runnerKey));
}

void LocateEmulator(Host& host, AppSettings& settings, const EmulatorProfile& profile) {
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
  if (Status saved = settings.SaveSetting(kSectionSettings, profile.pathKey, *chosen); !saved)
    host.ShowMessage(saved.error().message, MessageIcon::Critical, kAppTitle);
}

bool ShowFirstRunNotice(Host& host, const AppSettings& settings) {
  for (std::string_view key : {"Genem", "Genecyst", "KGen"}) {
    if (!settings.GetSetting(kSectionSettings, key).empty()) return false;
  }
  host.ShowMessage(kFirstRunNotice, MessageIcon::Information, kAppTitle);
  return true;
}

std::vector<std::string> ForceAnotherLanguage() {
  return {std::begin(kForcedCountries), std::end(kForcedCountries)};
}

}  // namespace romsteward
