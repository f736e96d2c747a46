#include "cli/tool.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <filesystem>
#include <istream>
#include <ostream>
#include <sstream>

#include "cli/terminal_host.h"
#include "core/app/launch_command.h"
#include "core/common/strings.h"
#include "core/settings/app_settings.h"
#include "core/settings/registry_store.h"

namespace romsteward::cli {

namespace {

// The input of a run that has none: every read ends at once.
std::istream& NoInput() {
  static std::istringstream empty;
  empty.clear();
  return empty;
}

// A usage error names what was wrong and shows the short usage of the (sub)command being
// parsed, then exits 2 like every other bad input.
int ReportUsageError(const CLI::App& app, const CLI::ParseError& error,
                     const std::vector<std::string>& args, std::ostream& err) {
  const CLI::App* command = &app;
  std::string name = app.get_name();
  for (auto parsed = app.get_subcommands(); !parsed.empty(); parsed = command->get_subcommands()) {
    command = parsed.front();
    name += " " + command->get_name();
  }
  err << error.what() << '\n';
  // A file name or a value that starts with a dash reads as options; say how to give it.
  for (const std::string& arg : args) {
    if (arg.size() < 2 || arg[0] != '-' || arg == "--" || command->get_option_no_throw(arg))
      continue;
    std::error_code missing;
    const bool fileLike =
        arg.find('.') != std::string::npos || std::filesystem::exists(Utf8ToPath(arg), missing);
    // "-bar" is no option of ours (they are one letter after one dash): likely a value.
    const bool valueLike = arg.size() > 2 && arg[1] != '-';
    if (fileLike)
      err << "\"" << EscapeForDisplay(arg)
          << "\" was read as options; for a file of that name write "
          << "-- before it, or ./" << EscapeForDisplay(arg) << "\n";
    else if (valueLike)
      err << "\"" << EscapeForDisplay(arg)
          << "\" was read as options; for a value of that text write -- before it\n";
  }
  err << CLI::Formatter().make_usage(command, name) << "Run with --help for more information.\n";
  return kExitError;
}

}  // namespace

ToolContext::ToolContext(const ToolStreams& streams)
    : out(streams.out),
      err(streams.err),
      launch(streams.launch),
      m_in(streams.in),
      m_interactive(streams.interactive),
      m_showProgress(streams.showProgress),
      m_givenHost(streams.host) {}

ToolContext::ToolContext(std::ostream& outStream, std::ostream& errStream)
    : out(outStream), err(errStream), m_in(NoInput()) {}

ToolContext::~ToolContext() = default;

Host& ToolContext::host() {
  if (m_givenHost) return *m_givenHost;
  if (!m_ownHost) {
    // Made on first use: by then the global options have been parsed.
    TerminalHostOptions options;
    options.autoAnswer = global.yes  ? AutoAnswer::Yes
                         : global.no ? AutoAnswer::No
                                     : AutoAnswer::None;
    options.interactive = m_interactive;
    options.showProgress = m_showProgress;
    options.hideMaskedInput = m_interactive;
    m_ownHost = std::make_unique<TerminalHost>(m_in, err, options);
  }
  return *m_ownHost;
}

Result<AppSettings*> ToolContext::Settings() {
  if (m_settings) return m_settings.get();
  const std::filesystem::path file = global.settingsFile.empty() ? RegistryStore::DefaultLocation()
                                                                 : Utf8ToPath(global.settingsFile);
  auto store = RegistryStore::Open(file);
  if (!store) return store.error();
  m_store = std::move(store).value();
  m_settings = std::make_unique<AppSettings>(*m_store);
  // A launch killed before its clean-up is finished by the next start.
  RecoverInterruptedLaunches(host(), *m_store);
  return m_settings.get();
}

AppSettings* ToolContext::SettingsOrReport() {
  auto settings = Settings();
  if (settings) return *settings;
  err << settings.error().message << '\n';
  status = kExitError;
  return nullptr;
}

int RunTool(const std::vector<std::string>& args, const ToolStreams& streams) {
  ToolContext context(streams);
  CLI::App app{"Genesis Romsteward: cartridge image header tool", "romsteward-tool"};
  app.require_subcommand(1);
  app.set_version_flag("--version", "romsteward-tool 0.1.0");
  // Global options are also taken after the subcommand's name.
  app.fallthrough();
  app.add_option("--settings", context.global.settingsFile,
                 "Settings file (default: $ROMSTEWARD_SETTINGS, else "
                 "$XDG_CONFIG_HOME/romsteward/settings.sqlite3)");
  CLI::Option* yes = app.add_flag("--yes", context.global.yes, "Answer yes to every question");
  app.add_flag("--no", context.global.no, "Answer no to every question")->excludes(yes);

  AddInfoCommand(app, context);
  AddConvertCommand(app, context);
  AddDemoCommand(app, context);
  AddSettingsCommand(app, context);
  AddOptionsCommand(app, context);
  AddIpsCommand(app, context);
  AddPatchCommand(app, context);
  AddSplitCommand(app, context);
  AddJoinCommand(app, context);
  AddJoinFilesCommand(app, context);
  AddListCommand(app, context);
  AddReportCommand(app, context);
  AddChecksumCommand(app, context);
  AddRestoreChecksumCommand(app, context);
  AddRepairCommand(app, context);
  AddIdentifyCommand(app, context);
  AddRunCommand(app, context);
  AddEmulatorsCommand(app, context);
  AddHistoryCommand(app, context);
  AddFavoritesCommand(app, context);
  AddRegisterTypesCommand(app, context);

  std::vector<std::string> reversed(args.rbegin(), args.rend());  // CLI11 parses from the back
  try {
    app.parse(reversed);
  } catch (const CLI::ParseError& error) {
    if (error.get_exit_code() != static_cast<int>(CLI::ExitCodes::Success))
      return ReportUsageError(app, error, args, streams.err);
    return app.exit(error, streams.out, streams.err);
  }
  return context.status;
}

int RunTool(const std::vector<std::string>& args, std::ostream& out, std::ostream& err) {
  return RunTool(args, ToolStreams{NoInput(), out, err});
}

}  // namespace romsteward::cli
