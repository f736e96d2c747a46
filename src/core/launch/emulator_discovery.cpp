#include "core/launch/emulator_discovery.h"

#include "core/host/app_title.h"
#include "core/host/host.h"
#include "core/launch/emulator_profiles.h"
#include "core/launch/emulator_runners.h"
#include "core/launch/installed_programs.h"
#include "core/settings/app_settings.h"

namespace romsteward {

namespace {

// The first profile found is what every game without options of its own starts in.
Status MakeGeneralChoice(AppSettings& settings, const EmulatorProfile& profile) {
  if (Status saved = settings.SaveSetting(kSectionSettings, "prefemu",
                                          std::to_string(static_cast<int>(profile.tab)));
      !saved)
    return saved;
  if (profile.tab != EmulatorTab::GenEm) return {};
  return settings.SaveSetting(kSectionSettings, "gnew", profile.name == "GenEmnew" ? "1" : "0");
}

}  // namespace

FoundEmulators WelcomeEmulators(Host& host, AppSettings& settings,
                                const std::vector<std::filesystem::path>& folders) {
  FoundEmulators found;
  if (AnyEmulatorKnown(settings)) return found;
  std::string list;
  for (const EmulatorProfile& profile : EmulatorProfiles()) {
    if (!settings.GetSetting(kSectionSettings, profile.pathKey).empty()) continue;
    const std::string path = FindInstalledProgram(profile.filter.patterns, folders);
    if (path.empty()) continue;
    if (Status saved = settings.SaveSetting(kSectionSettings, profile.pathKey, path); !saved) {
      host.ShowMessage(saved.error().message, MessageIcon::Critical, kAppTitle);
      continue;
    }
    found.names.emplace_back(profile.name);
    list += "\n" + std::string(profile.name) + ": " + path;
  }
  if (!found.names.empty()) {
    const EmulatorProfile& first = *FindEmulatorProfile(found.names.front());
    if (Status chosen = MakeGeneralChoice(settings, first); !chosen)
      host.ShowMessage(chosen.error().message, MessageIcon::Critical, kAppTitle);
    host.ShowMessage("Genesis Romsteward found these emulators installed:" + list + "\n\n" +
                         found.names.front() +
                         " is now the emulator for every game without settings of its own; "
                         "choose another on the emulator tabs. 'Search <emulator's name>' in "
                         "the Options menu's 'Directories' submenu changes a path.",
                     MessageIcon::Information, kAppTitle);
    for (const std::string& name : found.names)
      SuggestRunner(host, settings, *FindEmulatorProfile(name), folders);
  }
  ShowFirstRunNotice(host, settings);
  return found;
}

}  // namespace romsteward
