// romsteward-tool emulators: the emulator profiles, where each is, and the runners.
#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <memory>
#include <nlohmann/json.hpp>
#include <ostream>

#include "cli/tool.h"
#include "core/common/strings.h"
#include "core/launch/emulator_profiles.h"
#include "core/settings/app_settings.h"

namespace romsteward::cli {

namespace {

struct EmulatorsOptions {
  bool json = false;
  std::string name;
  std::string value;
};

const EmulatorProfile* ProfileOrReport(ToolContext& context, const std::string& name) {
  if (const EmulatorProfile* profile = FindEmulatorProfile(name)) return profile;
  std::vector<std::string> names;
  for (const auto& profile : EmulatorProfiles())
    names.emplace_back(profile.name);
  context.err << fmt::format("No emulator is called \"{}\". The emulators: {}\n",
                             EscapeForDisplay(name), fmt::join(names, ", "));
  context.status = kExitError;
  return nullptr;
}

void RunList(const EmulatorsOptions& options, ToolContext& context) {
  AppSettings* settings = context.SettingsOrReport();
  if (!settings) return;
  nlohmann::ordered_json all = nlohmann::ordered_json::array();
  for (const auto& profile : EmulatorProfiles()) {
    const std::string path = EmulatorPath(*settings, profile);
    std::error_code error;
    const bool found = !path.empty() && std::filesystem::is_regular_file(Utf8ToPath(path), error);
    const std::string runner =
        profile.runnerKey.empty() ? "" : settings->GetSetting(kSectionSettings, profile.runnerKey);
    if (options.json) {
      all.push_back({{"name", profile.name},
                     {"tab", static_cast<int>(profile.tab)},
                     {"classic", profile.classic},
                     {"pathKey", profile.pathKey},
                     {"path", path},
                     {"found", found},
                     {"runnerKey", profile.runnerKey},
                     {"runner", runner}});
      continue;
    }
    context.out << fmt::format("{:<9} tab {}  {}{}{}\n", profile.name,
                               static_cast<int>(profile.tab), path.empty() ? "(not located)" : path,
                               path.empty() || found ? "" : " (missing)",
                               runner.empty() ? "" : "  runner: " + runner);
  }
  if (options.json) context.out << all.dump(2) << '\n';
}

void RunLocate(const EmulatorsOptions& options, ToolContext& context) {
  const EmulatorProfile* profile = ProfileOrReport(context, options.name);
  AppSettings* settings = profile ? context.SettingsOrReport() : nullptr;
  if (!settings) return;
  const auto path = Utf8ToPath(options.value);
  std::error_code error;
  // The locate dialog accepts only the emulator's own executable name.
  if (!std::filesystem::is_regular_file(path, error) ||
      !EqualsIgnoreCase(PathToUtf8(path.filename()), profile->filter.patterns)) {
    context.err << fmt::format("{} is not an existing file named {}\n",
                               EscapeForDisplay(options.value), profile->filter.patterns);
    context.status = kExitError;
    return;
  }
  const auto absolute = std::filesystem::absolute(path, error);
  if (Status saved = settings->SaveSetting(kSectionSettings, profile->pathKey,
                                           PathToUtf8(error ? path : absolute));
      !saved) {
    context.err << saved.error().message << '\n';
    context.status = kExitError;
  }
}

void RunRunner(const EmulatorsOptions& options, ToolContext& context) {
  const EmulatorProfile* profile = ProfileOrReport(context, options.name);
  AppSettings* settings = profile ? context.SettingsOrReport() : nullptr;
  if (!settings) return;
  if (profile->runnerKey.empty()) {
    context.err << fmt::format("{} runs natively and takes no runner\n", profile->name);
    context.status = kExitError;
    return;
  }
  const Status saved =
      options.value.empty()
          ? settings->SaveSetting(kSectionSettings, profile->runnerKey, "")
          : settings->SaveSetting(kSectionSettings, profile->runnerKey, options.value);
  if (!saved) {
    context.err << saved.error().message << '\n';
    context.status = kExitError;
  }
}

}  // namespace

void AddEmulatorsCommand(CLI::App& app, ToolContext& context) {
  auto options = std::make_shared<EmulatorsOptions>();
  CLI::App* command = app.add_subcommand("emulators", "The emulators, their paths and runners");
  command->require_subcommand(1);

  CLI::App* list = command->add_subcommand("list", "Each emulator, its path and its runner");
  list->add_flag("--json", options->json, "One JSON array of objects, one per emulator");
  list->callback([options, &context] { RunList(*options, context); });

  CLI::App* locate = command->add_subcommand("locate", "Set where an emulator is (Search ...)");
  locate->add_option("NAME", options->name, "The emulator")->required();
  locate->add_option("PATH", options->value, "Its executable")->required();
  locate->callback([options, &context] { RunLocate(*options, context); });

  CLI::App* runner = command->add_subcommand(
      "runner", "Set the command a classic emulator runs under (dosbox, wine); empty: none");
  runner->add_option("NAME", options->name, "The emulator")->required();
  runner->add_option("COMMAND", options->value, "The runner and its own arguments")->required();
  runner->callback([options, &context] { RunRunner(*options, context); });
}

}  // namespace romsteward::cli
