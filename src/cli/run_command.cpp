// romsteward-tool run: launches an image as "Run this game!" does, or shows what would start.
#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <memory>
#include <optional>
#include <ostream>

#include "cli/rom_place.h"
#include "cli/tool.h"
#include "core/app/launch_command.h"
#include "core/common/strings.h"
#include "core/launch/emulator_profiles.h"
#include "core/launch/posix_process.h"

namespace romsteward::cli {

namespace {

struct RunOptions {
  std::string file;
  std::optional<std::string> emulator;
  std::optional<std::string> country;
  std::string extra;
  bool dryRun = false;
};

// FILE is an image path, or an archive's path, "\\" and a member's name.
std::pair<std::string, std::string> PlaceAndEntry(const std::string& file) {
  if (const auto separator = file.find("\\\\"); separator != std::string::npos)
    return {file.substr(0, separator), file.substr(separator + 2)};
  const auto path = Utf8ToPath(file);
  std::string place = PathToUtf8(path.parent_path());
  return {place.empty() ? "." : place, PathToUtf8(path.filename())};
}

std::optional<std::size_t> EntryIndex(const std::vector<std::string>& entries,
                                      const std::string& name) {
  for (std::size_t i = 0; i < entries.size(); ++i) {
    if (entries[i] == name) return i;
  }
  for (std::size_t i = 0; i < entries.size(); ++i) {
    if (EqualsIgnoreCase(entries[i], name)) return i;
  }
  return std::nullopt;
}

void PrintCommand(std::ostream& out, const EmulatorCommand& command) {
  out << "program " << command.process.program << '\n';
  for (const auto& argument : command.process.arguments)
    out << "argument " << argument << '\n';
  out << "directory " << PathToUtf8(command.process.workingDirectory) << '\n';
  for (const auto& [name, value] : command.process.environment)
    out << "environment " << name << '=' << value << '\n';
  if (command.genIniText) {
    out << "gen.ini " << PathToUtf8(command.genIniPath) << '\n' << *command.genIniText << '\n';
  }
}

void Run(const RunOptions& options, ToolContext& context) {
  const EmulatorProfile* profile = nullptr;
  if (options.emulator) {
    profile = FindEmulatorProfile(*options.emulator);
    if (!profile) {
      std::string names;
      for (const auto& known : EmulatorProfiles())
        names += (names.empty() ? "" : ", ") + std::string(known.name);
      context.err << fmt::format("No emulator is called \"{}\". The emulators: {}\n",
                                 EscapeForDisplay(*options.emulator), names);
      context.status = kExitError;
      return;
    }
  }
  const auto [place, entry] = PlaceAndEntry(options.file);
  auto model = OpenPlace(context, place, ListFilter::AllFiles, SortOrder::Name);
  if (!model) return;
  const auto index = EntryIndex(model->Entries(), entry);
  if (!index) {
    context.err << fmt::format("{} is not in the list of {}\n", PrintableName(entry),
                               PrintableName(place));
    context.status = kExitError;
    return;
  }
  model->Select(*index);  // the cartridge's saved options, or the general ones

  LaunchRequest request = model->LaunchRequestForSelection();
  if (profile) {
    request.options.preferredEmulator = static_cast<int>(profile->tab);
    if (profile->tab == EmulatorTab::GenEm) request.options.useGenNew = profile->name == "GenEmnew";
  }
  if (options.country) request.country = *options.country;
  request.extraCommandLine = options.extra;

  AppSettings* settings = context.SettingsOrReport();
  if (!settings) return;
  PosixProcessRunner runner;
  LaunchCommand launch(context.host(), *settings, runner);
  if (options.dryRun) {
    // A check that stops the launch stops its dry run the same way.
    const auto command = launch.DryRun(request);
    if (!command) {
      context.status = kExitFailure;
      return;
    }
    PrintCommand(context.out, *command);
    return;
  }
  if (!RunAndWait(launch, runner, request)) context.status = kExitFailure;
}

}  // namespace

void AddRunCommand(CLI::App& app, ToolContext& context) {
  auto options = std::make_shared<RunOptions>();
  CLI::App* command = app.add_subcommand(
      "run", "Start an image in an emulator with its saved options (or the general ones) and wait");
  command->add_option("--emulator", options->emulator,
                      "GenEm, GenEmnew, KGen, Genecyst, BlastEm or Mednafen; default: the "
                      "preferred one");
  command->add_option("--country", options->country,
                      "The country to run it as (USA, Europe, Japan)");
  command->add_option("--extra", options->extra, "The additional command line");
  command->add_flag("--dry-run", options->dryRun,
                    "Print the program, each argument, the working directory and gen.ini "
                    "instead of starting anything");
  command->add_option("FILE", options->file, "The image, or ARCHIVE\\\\MEMBER")->required();
  command->callback([options, &context] { Run(*options, context); });
}

}  // namespace romsteward::cli
