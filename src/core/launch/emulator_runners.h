#pragma once

#include <filesystem>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/common/result.h"

namespace romsteward {

class AppSettings;
class Host;
struct EmulatorProfile;

/// A program that runs the DOS-era emulators on Linux, placed before the emulator's path.
struct RunnerChoice {
  std::string_view name;     ///< "DOSBox"
  std::string_view program;  ///< looked for among the installed programs: "dosbox"
  std::string_view command;  ///< what the runner key gets: "dosbox -exit"
};

/// DOSBox first: the classic emulators are DOS programs, which Wine hands over to it anyway.
std::span<const RunnerChoice> RunnerChoices();

/// The runners of RunnerChoices installed in `folders`, in that order.
std::vector<RunnerChoice> InstalledRunners(const std::vector<std::filesystem::path>& folders);

/// The profile's runner command as stored ("" for none, and for a profile without runner).
std::string RunnerCommand(const AppSettings& settings, const EmulatorProfile& profile);
/// Stores the profile's runner command; blanks alone store none.
Status SetRunnerCommand(AppSettings& settings, const EmulatorProfile& profile,
                        std::string_view command);

/// For a classic profile that has no runner yet: offers the first installed runner with a
/// yes/no question and stores it on Yes. True when a runner was stored.
bool SuggestRunner(Host& host, AppSettings& settings, const EmulatorProfile& profile,
                   const std::vector<std::filesystem::path>& folders);
/// The question SuggestRunner asks.
std::string SuggestRunnerQuestion(const EmulatorProfile& profile, const RunnerChoice& runner);

}  // namespace romsteward
