#pragma once

#include <sys/types.h>

#include <ctime>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/launch/command_line.h"
#include "core/launch/process_runner.h"
#include "core/settings/emulator_options.h"
#include "core/settings/general_settings.h"

namespace romsteward {

class AppSettings;
class DynamicPatchRun;
class ExtractedCopies;
class Host;
class PosixProcessRunner;
class RegistryStore;

/// What "Run this game!" launches: the window's place, selection and option controls.
struct LaunchRequest {
  std::string diret;        ///< the place: a directory, or an archive when `zipListing`
  bool zipListing = false;  ///< the list shows an archive's members ("ZIP file")
  std::string entryText;    ///< the selected entry's text; empty when nothing is selected
  EmulatorOptions options;  ///< the option controls; `preferredEmulator` is the tab
  std::string country;      ///< the text of "Country:"
  std::string extraCommandLine;
  GeneralSettings general;  ///< "Save Settings for All &Cartridges" among them
  /// "Calibrate Joystick": the tab's emulator with " -calib" alone, no ROM, no checks.
  bool calibrate = false;
  /// The caller already has an emulator of its own running (the desktop program's child,
  /// whatever its executable): asks the "already running" question like a found one.
  bool ownEmulatorRunning = false;
};

/// The launch messages.
inline constexpr std::string_view kSelectARom = "Please, select a ROM";
inline constexpr std::string_view kSplitNeedsKGenOrGenecyst =
    "You can only run splitted ROMs with KGen or Genecyst";
inline constexpr std::string_view kMdNeedsGenEm = "You can only run MDs with GenEm";
inline constexpr std::string_view kAssociatedProgramError = "Error calling associated program!";
inline constexpr std::string_view kRunFirstVolume =
    "You need to run a splitted rom by its first volume!";
inline constexpr std::string_view kEmulatorRunning =
    "An emulator is already running! Are you sure you want to continue?\r\n"
    "(the system may get too slow)";
inline constexpr std::string_view kThirdTab =
    "I don't know how you made appear a thirth emulator tab, but you did! Contact the author!";
/// Only for an emulator that could not be started.
inline constexpr std::string_view kErrorRunningEmulator = "Error running emulator!";
/// Our own note on an emulator that started and ended with a failure status or a signal.
inline constexpr std::string_view kEndedBadlyPrefix =
    "Note from Genesis Romsteward: the emulator started, ran and ";
/// The program that opens a file with the desktop's default program.
inline constexpr std::string_view kOpenWithDefaultProgram = "xdg-open";

/// "The emulator couldn't be found. ... 'Search <name>' item to find it."
std::string EmulatorNotFoundMessage(std::string_view emulatorName);

/// One launch, in two halves so that nothing blocks inside the model: Begin makes the checks
/// and prepares the image (extraction, dynamic patches, `gen.ini`) and returns the process
/// to start; the caller starts it (QProcess in the desktop program, PosixProcessRunner in
/// the terminal tool) and calls Complete when it has ended, or could not start. Complete,
/// or the destructor when Complete is never called, takes the preparation back: the patched
/// bytes restored, the extracted copies deleted. A killed program leaves records that
/// RecoverInterruptedLaunches clears at the next start.
class LaunchCommand {
public:
  /// `starter` opens non-image files with the desktop's default program.
  LaunchCommand(Host& host, AppSettings& settings, DetachedStarter& starter);
  ~LaunchCommand();
  LaunchCommand(const LaunchCommand&) = delete;
  LaunchCommand& operator=(const LaunchCommand&) = delete;

  /// The checks in their order, then the preparation. nullopt when the launch stopped (the
  /// user was told why, or said no) or when there is nothing to wait for (a file that is no
  /// image was handed to the default program).
  std::optional<EmulatorCommand> Begin(const LaunchRequest& request);

  /// What Begin would start, with nothing prepared or written: no extraction (the path is
  /// where the copy would go), no patch, no `gen.ini`, no saved options, no question; for a
  /// file that is no image, the default program's start. A check that fails is told through
  /// the Host as in Begin, an emulator not located yet among them.
  std::optional<EmulatorCommand> DryRun(const LaunchRequest& request);

  /// The emulator started as `pid`: named beside the run's records, so that another program
  /// opening the store meanwhile leaves the run alone, and so does the next start while the
  /// emulator outlives us.
  void Started(pid_t pid);

  /// After the emulator ended: "Error running emulator!" (with the reason) when it could not
  /// start; our own note with its exit status or signal and the last lines of its standard
  /// error when it ran and ended badly (not when ended on request); the extracted copies
  /// deleted, the patches taken off, the play history updated. Once only.
  void Complete(const ProcessOutcome& outcome);

  /// Whether Complete saw a run that exited with 0.
  bool Succeeded() const { return m_succeeded; }
  /// Whether the emulator started at all: it may have saved games however it ended.
  bool Ran() const { return m_ran; }
  /// The image the emulator was given (the extracted copy in an archive's case).
  const std::filesystem::path& RomPath() const { return m_romPath; }

private:
  std::optional<EmulatorCommand> Prepare(const LaunchRequest& request, bool dryRun);
  void CleanUp();

  Host& m_host;
  AppSettings& m_settings;
  DetachedStarter& m_starter;
  std::string m_entryText;
  std::filesystem::path m_romPath;
  std::unique_ptr<ExtractedCopies> m_copies;
  std::unique_ptr<DynamicPatchRun> m_patches;
  std::time_t m_started = 0;
  bool m_begun = false;
  bool m_completed = false;
  bool m_succeeded = false;
  bool m_ran = false;
};

/// What either program does first: puts back the images a killed run left patched, then
/// deletes the copies it left extracted.
void RecoverInterruptedLaunches(Host& host, RegistryStore& store);

/// The terminal tool's launch: Begin, start, wait, Complete. True when the emulator ran and
/// exited with 0.
bool RunAndWait(LaunchCommand& launch, PosixProcessRunner& runner, const LaunchRequest& request);

}  // namespace romsteward
