#include "core/launch/emulator_runners.h"

#include <array>

#include "core/common/strings.h"
#include "core/host/app_title.h"
#include "core/host/host.h"
#include "core/launch/emulator_profiles.h"
#include "core/launch/installed_programs.h"
#include "core/settings/app_settings.h"

namespace romsteward {

namespace {

constexpr std::array<RunnerChoice, 2> kRunners = {{
    {"DOSBox", "dosbox", "dosbox -exit"},
    {"Wine", "wine", "wine"},
}};

}  // namespace

std::span<const RunnerChoice> RunnerChoices() {
  return kRunners;
}

std::vector<RunnerChoice> InstalledRunners(const std::vector<std::filesystem::path>& folders) {
  std::vector<RunnerChoice> installed;
  for (const RunnerChoice& runner : kRunners) {
    if (!FindInstalledProgram(runner.program, folders).empty()) installed.push_back(runner);
  }
  return installed;
}

std::string RunnerCommand(const AppSettings& settings, const EmulatorProfile& profile) {
  if (profile.runnerKey.empty()) return {};
  return settings.GetSetting(kSectionSettings, profile.runnerKey);
}

Status SetRunnerCommand(AppSettings& settings, const EmulatorProfile& profile,
                        std::string_view command) {
  if (profile.runnerKey.empty())
    return Error{std::string(profile.name) + " runs by itself: it takes no runner."};
  return settings.SaveSetting(kSectionSettings, profile.runnerKey, TrimBlanks(command));
}

std::string SuggestRunnerQuestion(const EmulatorProfile& profile, const RunnerChoice& runner) {
  return std::string(profile.name) +
         " is a DOS program, which Linux does not run by itself. Run it with " +
         std::string(runner.name) + " (\"" + std::string(runner.command) +
         "\")?\n\nThe Options menu's \"Emulator runners\" changes this at any time.";
}

bool SuggestRunner(Host& host, AppSettings& settings, const EmulatorProfile& profile,
                   const std::vector<std::filesystem::path>& folders) {
  if (!profile.classic || !RunnerCommand(settings, profile).empty()) return false;
  const std::vector<RunnerChoice> installed = InstalledRunners(folders);
  if (installed.empty()) return false;
  if (host.AskYesNo(SuggestRunnerQuestion(profile, installed.front()), MessageIcon::Question,
                    kAppTitle) != Answer::Yes)
    return false;
  if (Status saved = SetRunnerCommand(settings, profile, installed.front().command); !saved) {
    host.ShowMessage(saved.error().message, MessageIcon::Critical, kAppTitle);
    return false;
  }
  return true;
}

}  // namespace romsteward
