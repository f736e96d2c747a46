#include "core/app/launch_command.h"

#include <csignal>
#include <cstdio>
#include <cstring>

#include "core/cart/detect.h"
#include "core/common/atomic_file.h"
#include "core/common/strings.h"
#include "core/common/wildcard.h"
#include "core/host/app_title.h"
#include "core/launch/extracted_copies.h"
#include "core/launch/play_history.h"
#include "core/launch/posix_process.h"
#include "core/launch/running_emulators.h"
#include "core/launch/shell_words.h"
#include "core/launch/temp_folder.h"
#include "core/launch/zip_archive.h"
#include "core/patch/patch_run.h"
#include "core/settings/app_settings.h"
#include "core/settings/option_commands.h"

namespace romsteward {

namespace {

// The members of a split set stored in an archive: the first volume, then "stem.2",
// "stem.3" ... as long as the archive holds them.
std::vector<std::string> SplitSetMembers(const std::filesystem::path& archive,
                                         const std::string& first) {
  std::vector<std::string> members{first};
  const auto dot = first.rfind('.');
  if (dot == std::string::npos) return members;
  const auto listing = ListZipEntries(archive, kAllFilesMask);
  if (!listing) return members;
  for (int volume = 2;; ++volume) {
    const std::string wanted = first.substr(0, dot + 1) + std::to_string(volume);
    bool found = false;
    for (const auto& name : listing->names)
      found = found || EqualsIgnoreCase(name, wanted);
    if (!found) break;
    members.push_back(wanted);
  }
  return members;
}

std::vector<std::string> ConfiguredEmulatorPaths(const AppSettings& settings) {
  std::vector<std::string> paths;
  for (const auto& profile : EmulatorProfiles()) {
    std::string path = settings.GetSetting(kSectionSettings, profile.pathKey);
    if (!path.empty()) paths.push_back(std::move(path));
  }
  return paths;
}

std::string LastWords(const ProcessOutcome& outcome) {
  return outcome.stderrTail.empty()
             ? std::string()
             : "\n\nWhat it wrote last (standard error):\n" + outcome.stderrTail;
}

// An emulator that ran and ended badly is not a failed start: the note is ours, not the
// classic launcher's error.
std::string EndedBadlyNote(const ProcessOutcome& outcome) {
  std::string how = outcome.signal != 0
                        ? "was ended by signal " + std::to_string(outcome.signal) + " (" +
                              strsignal(outcome.signal) + ")"
                        : "ended with exit status " + std::to_string(outcome.exitStatus);
  return std::string(kEndedBadlyPrefix) + how + "." + LastWords(outcome);
}

}  // namespace

std::string EmulatorNotFoundMessage(std::string_view emulatorName) {
  return "The emulator couldn't be found. Click on 'Options' menu, 'Directory' submenu and "
         "'Search " +
         std::string(emulatorName) + "' item to find it.";
}

LaunchCommand::LaunchCommand(Host& host, AppSettings& settings, DetachedStarter& starter)
    : m_host(host), m_settings(settings), m_starter(starter) {}

LaunchCommand::~LaunchCommand() {
  CleanUp();
}

std::optional<EmulatorCommand> LaunchCommand::Begin(const LaunchRequest& request) {
  if (m_begun) return std::nullopt;
  m_begun = true;
  auto command = Prepare(request, false);
  if (!command) {
    CleanUp();
    m_completed = true;
  }
  return command;
}

std::optional<EmulatorCommand> LaunchCommand::DryRun(const LaunchRequest& request) {
  return Prepare(request, true);
}

std::optional<EmulatorCommand> LaunchCommand::Prepare(const LaunchRequest& request, bool dryRun) {
  const auto critical = [this](std::string_view text) {
    m_host.ShowMessage(text, MessageIcon::Critical, kAppTitle);
    return std::nullopt;
  };
  const EmulatorOptions& options = request.options;
  const int tab = options.preferredEmulator;
  const EmulatorProfile* profile = ProfileForTab(tab, options.useGenNew);
  // A calibration plays no cartridge: it has no history.
  m_entryText = request.calibrate ? std::string() : request.entryText;
  // An open quote in the extra command line stops the launch before anything is prepared
  // (Genecyst's goes into gen.ini as typed).
  if (!request.calibrate && tab != static_cast<int>(EmulatorTab::Genecyst)) {
    if (auto words = SplitShellWords(request.extraCommandLine); !words)
      return critical(words.error().message);
  }

  if (!request.calibrate) {
    if (request.entryText.empty()) return critical(kSelectARom);

    if (request.zipListing) {
      const auto folder = UsableTemporaryFolder(m_settings);
      if (!folder) return critical(kTempFolderMissing);
      const auto archive = Utf8ToPath(request.diret);
      if (dryRun) {
        m_romPath = *folder / Utf8ToPath(request.entryText);
      } else {
        auto copies =
            ExtractedCopies::Extract(m_host, m_settings.Store(), archive,
                                     SplitSetMembers(archive, request.entryText), *folder);
        if (!copies.Ok()) return std::nullopt;
        m_romPath = copies.Files().front();
        m_copies = std::make_unique<ExtractedCopies>(std::move(copies));
      }
    } else {
      m_romPath = Utf8ToPath(JoinDirName(request.diret, request.entryText));
    }
    // The emulator runs in its own folder: a path relative to ours would name nothing there.
    std::error_code ignored;
    if (const auto absolute = std::filesystem::absolute(m_romPath, ignored); !ignored)
      m_romPath = absolute.lexically_normal();

    Layout layout = Layout::NoRom;
    if (dryRun && request.zipListing) {
      layout = DetectRomFormat(nullptr, request.entryText);
    } else {
      // What cannot be read (gone, or a path longer than the system takes) is no reason to
      // hand it to the default program as a file that is no image.
      auto file = BinaryFile::Open(m_romPath);
      if (!file) return critical(file.error().message);
      layout = DetectRomFormat(*file);
    }
    const bool split = IsSplitVolume(layout);
    const bool classicSplitTab = tab == static_cast<int>(EmulatorTab::KGen) ||
                                 tab == static_cast<int>(EmulatorTab::Genecyst);
    if (split && !classicSplitTab) return critical(kSplitNeedsKGenOrGenecyst);
    if (layout == Layout::Md && tab != static_cast<int>(EmulatorTab::GenEm))
      return critical(kMdNeedsGenEm);

    if (layout == Layout::NoRom) {
      const ProcessSpec open{std::string(kOpenWithDefaultProgram), {PathToUtf8(m_romPath)}, {}, {}};
      if (dryRun) return EmulatorCommand{open, PathToUtf8(m_romPath), {}, std::nullopt};
      if (!m_starter.StartDetached(open)) critical(kAssociatedProgramError);
      return std::nullopt;
    }
    if (split && (layout == Layout::SplitLater ||
                  !MatchesMask(FileExtension(PathToUtf8(m_romPath.filename())), "1*")))
      return critical(kRunFirstVolume);

    if (!dryRun) {
      if (Status saved =
              SaveOptionsBeforeLaunch(m_settings, request.general, options, request.entryText);
          !saved) {
        critical(saved.error().message);
      }
      if (options.activateDynamicPatch) {
        m_patches = std::make_unique<DynamicPatchRun>(DynamicPatchRun::Apply(
            m_host, m_settings.Store(), request.entryText, m_romPath,
            request.zipListing ? PatchTarget::ExtractedCopy : PatchTarget::Image));
        if (!m_patches->Applied()) return std::nullopt;
      }
      if ((request.ownEmulatorRunning || IsEmulatorRunning(ConfiguredEmulatorPaths(m_settings))) &&
          m_host.AskYesNo(kEmulatorRunning, MessageIcon::Question, kAppTitle) != Answer::Yes)
        return std::nullopt;
    }
  }

  if (!profile) return critical(kThirdTab);
  CompositionInput input;
  input.profile = profile;
  input.emulatorPath = EmulatorPath(m_settings, *profile);
  input.runner = RunnerWords(m_settings, *profile);
  input.romPath = request.calibrate ? std::string() : PathToUtf8(m_romPath);
  input.options = options;
  input.country = request.country;
  input.extra = request.extraCommandLine;
  std::error_code error;
  if (input.emulatorPath.empty() ||
      !std::filesystem::is_regular_file(Utf8ToPath(input.emulatorPath), error)) {
    return critical(EmulatorNotFoundMessage(profile->name));
  }

  EmulatorCommand command = ComposeEmulatorCommand(input);
  if (!dryRun && command.genIniText) {
    if (Status written = WriteFileAtomically(command.genIniPath, *command.genIniText); !written)
      return critical(written.error().message);
  }
  if (!dryRun) m_started = std::time(nullptr);
  return command;
}

void LaunchCommand::Started(pid_t pid) {
  if (m_patches) m_patches->AddOwner(pid);
  if (m_copies) m_copies->AddOwner(pid);
}

void LaunchCommand::Complete(const ProcessOutcome& outcome) {
  if (!m_begun || m_completed) return;
  m_completed = true;
  m_succeeded = outcome.Succeeded();
  m_ran = outcome.started;
  if (!outcome.started) {
    m_host.ShowMessage(
        std::string(kErrorRunningEmulator) + "\n\n" + outcome.startError + LastWords(outcome),
        MessageIcon::Critical, kAppTitle);
  } else if (!m_succeeded && !outcome.endedOnRequest) {
    m_host.ShowMessage(EndedBadlyNote(outcome), MessageIcon::Exclamation, kAppTitle);
  }
  CleanUp();
  if (outcome.started && !m_entryText.empty()) {
    if (Status recorded = RecordPlay(m_settings, m_entryText, m_started, outcome.seconds);
        !recorded)
      m_host.ShowMessage(recorded.error().message, MessageIcon::Critical, kAppTitle);
  }
}

void LaunchCommand::CleanUp() {
  // The patches first: in an archive's case they were written to the copy.
  if (m_patches) m_patches->Restore();
  if (m_copies) m_copies->Delete();
  m_copies.reset();
  m_patches.reset();
}

void RecoverInterruptedLaunches(Host& host, RegistryStore& store) {
  RecoverInterruptedPatchRuns(host, store);
  RecoverInterruptedExtractions(host, store);
}

bool RunAndWait(LaunchCommand& launch, PosixProcessRunner& runner, const LaunchRequest& request) {
  const auto command = launch.Begin(request);
  if (!command) return false;
  launch.Complete(runner.Run(command->process, [&launch](pid_t pid) { launch.Started(pid); }));
  return launch.Succeeded();
}

}  // namespace romsteward
