#pragma once

#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

#include "core/app/launch_step.h"
#include "core/common/result.h"

namespace CLI {
class App;
}

namespace romsteward {
class AppSettings;
class Host;
class RegistryStore;
}  // namespace romsteward

namespace romsteward::cli {

/// Exit statuses shared by every subcommand.
inline constexpr int kExitOk = 0;
inline constexpr int kExitFailure = 1;  ///< the command ran and found a problem
inline constexpr int kExitError = 2;    ///< bad input: an unreadable file, a refused write

/// Where the tool talks to. main() passes the standard streams and what it knows of the
/// terminal; the tests pass string streams (and may pass their own Host).
struct ToolStreams {
  std::istream& in;
  std::ostream& out;
  std::ostream& err;
  /// Standard input and standard error are a terminal: questions are asked there.
  bool interactive = false;
  /// Standard error is a terminal: progress is drawn there.
  bool showProgress = false;
  /// When set, every prompt goes here instead of to the terminal.
  Host* host = nullptr;
  /// When set, launches go here instead of to the terminal's launch command (tests).
  LaunchStep launch = {};
};

/// The options every subcommand accepts.
struct GlobalOptions {
  std::string settingsFile;  ///< --settings FILE
  bool yes = false;          ///< --yes: every question is answered yes
  bool no = false;           ///< --no: every question is answered no
};

/// What a subcommand needs of its surroundings: streams, the Host for every prompt and
/// message, and the settings store, opened on first use.
class ToolContext {
public:
  explicit ToolContext(const ToolStreams& streams);
  ToolContext(std::ostream& out, std::ostream& err);
  ~ToolContext();
  ToolContext(const ToolContext&) = delete;
  ToolContext& operator=(const ToolContext&) = delete;

  std::ostream& out;
  std::ostream& err;
  int status = kExitOk;
  GlobalOptions global;
  /// The launch step the caller gave; empty for the terminal's own.
  LaunchStep launch;

  /// The Host for prompts and messages (a TerminalHost unless the caller gave one).
  Host& host();
  /// The application's settings: --settings FILE, else $ROMSTEWARD_SETTINGS, else the
  /// default location. An unreadable store is an Error naming the file and the reason.
  Result<AppSettings*> Settings();
  /// Settings(), or nullptr after printing why and setting `status` to kExitError.
  AppSettings* SettingsOrReport();

private:
  std::istream& m_in;
  bool m_interactive = false;
  bool m_showProgress = false;
  Host* m_givenHost = nullptr;
  std::unique_ptr<Host> m_ownHost;
  std::unique_ptr<RegistryStore> m_store;
  std::unique_ptr<AppSettings> m_settings;
};

/// Runs romsteward-tool with `args` (without the program name) and returns its exit status.
int RunTool(const std::vector<std::string>& args, const ToolStreams& streams);
/// The same with no input and no terminal: every question gets its safe answer.
int RunTool(const std::vector<std::string>& args, std::ostream& out, std::ostream& err);

// One registration function per subcommand; each parses its own options.
void AddInfoCommand(CLI::App& app, ToolContext& context);
void AddConvertCommand(CLI::App& app, ToolContext& context);
void AddDemoCommand(CLI::App& app, ToolContext& context);
void AddSettingsCommand(CLI::App& app, ToolContext& context);
void AddOptionsCommand(CLI::App& app, ToolContext& context);
void AddIpsCommand(CLI::App& app, ToolContext& context);
void AddPatchCommand(CLI::App& app, ToolContext& context);
void AddSplitCommand(CLI::App& app, ToolContext& context);
void AddJoinCommand(CLI::App& app, ToolContext& context);
void AddJoinFilesCommand(CLI::App& app, ToolContext& context);
void AddListCommand(CLI::App& app, ToolContext& context);
void AddReportCommand(CLI::App& app, ToolContext& context);
void AddChecksumCommand(CLI::App& app, ToolContext& context);
void AddRestoreChecksumCommand(CLI::App& app, ToolContext& context);
void AddRepairCommand(CLI::App& app, ToolContext& context);
void AddIdentifyCommand(CLI::App& app, ToolContext& context);
void AddRunCommand(CLI::App& app, ToolContext& context);
void AddEmulatorsCommand(CLI::App& app, ToolContext& context);
void AddHistoryCommand(CLI::App& app, ToolContext& context);
void AddFavoritesCommand(CLI::App& app, ToolContext& context);
void AddRegisterTypesCommand(CLI::App& app, ToolContext& context);

}  // namespace romsteward::cli
