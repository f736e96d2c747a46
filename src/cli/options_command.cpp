// romsteward-tool options: the emulator option set of a cartridge or the general one, shown,
// saved and deleted as the options menu does.
#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <memory>
#include <optional>
#include <ostream>

#include "cli/tool.h"
#include "core/common/strings.h"
#include "core/settings/app_settings.h"
#include "core/settings/emulator_options.h"
#include "core/settings/option_commands.h"

namespace romsteward::cli {

namespace {

struct OptionsOptions {
  std::optional<std::string> cartridge;
  std::vector<std::string> assignments;
};

// "Activate dynamic patch" is enabled for a cartridge that has patches: a value name of the
// PATCH key starts with its listed name (case counts, as in the selection).
bool PatchEnabled(const AppSettings& settings, const std::optional<std::string>& cartridge) {
  if (!cartridge) return true;
  auto names = settings.Store().EnumerateValueNames(SectionKeyPath(kSectionPatch));
  if (!names) return false;
  for (const std::string& name : *names) {
    if (name.starts_with(*cartridge)) return true;
  }
  return false;
}

// The options the main window would show: the cartridge's own set, or the general one.
EmulatorOptions ShownOptions(ToolContext& context, const AppSettings& settings,
                             const OptionsOptions& options) {
  EmulatorOptions shown;
  const bool patchEnabled = PatchEnabled(settings, options.cartridge);
  if (!options.cartridge) {
    LoadDefaultOptions(settings, patchEnabled, shown);
  } else if (!LoadCartridgeOptions(settings, *options.cartridge, patchEnabled, shown)) {
    context.err << fmt::format(
        "{} has no complete option set of its own: the general options "
        "apply\n",
        EscapeForDisplay(*options.cartridge));
    LoadDefaultOptions(settings, patchEnabled, shown);
  }
  return shown;
}

void RunShow(const OptionsOptions& options, ToolContext& context) {
  AppSettings* settings = context.SettingsOrReport();
  if (!settings) return;
  const EmulatorOptions shown = ShownOptions(context, *settings, options);
  for (std::string_view key : OptionKeys()) {
    context.out << key << '=' << OptionText(shown, key).value_or("") << '\n';
  }
}

void RunSave(const OptionsOptions& options, ToolContext& context) {
  AppSettings* settings = context.SettingsOrReport();
  if (!settings) return;
  EmulatorOptions changed = ShownOptions(context, *settings, options);
  for (const std::string& assignment : options.assignments) {
    const auto equals = assignment.find('=');
    const std::string key = assignment.substr(0, equals);
    if (equals == std::string::npos ||
        !SetOptionFromText(changed, key, assignment.substr(equals + 1))) {
      context.err << fmt::format(
          "\"{}\" is not KEY=VALUE with a known option key and a value it can take; nothing was "
          "saved. The keys: {}\n",
          EscapeForDisplay(assignment), fmt::join(OptionKeys(), ", "));
      context.status = kExitError;
      return;
    }
  }
  const Status saved = options.cartridge ? SaveOptions(*settings, OptionSection::Cartridge, changed,
                                                       {}, *options.cartridge)
                                         : SaveOptions(*settings, OptionSection::Settings, changed,
                                                       LoadGeneralSettings(*settings), "");
  if (!saved) {
    context.err << saved.error().message << '\n';
    context.status = kExitError;
  }
}

void RunDelete(const OptionsOptions& options, ToolContext& context) {
  AppSettings* settings = context.SettingsOrReport();
  if (!settings) return;
  const bool clean = options.cartridge
                         ? DeleteCartridgeSettings(context.host(), *settings, *options.cartridge)
                         : DeleteGeneralSettings(context.host(), *settings);
  if (!clean) context.status = kExitFailure;
}

}  // namespace

void AddOptionsCommand(CLI::App& app, ToolContext& context) {
  auto options = std::make_shared<OptionsOptions>();
  CLI::App* command =
      app.add_subcommand("options", "The emulator options of a cartridge or the general ones");
  command->require_subcommand(1);
  const auto addCartridge = [&options](CLI::App* sub) {
    sub->add_option("--cartridge", options->cartridge,
                    "The cartridge's name as listed (SONIC.BIN); without it, the general set");
  };

  CLI::App* show = command->add_subcommand("show", "The options the main window would show");
  addCartridge(show);
  show->callback([options, &context] { RunShow(*options, context); });

  CLI::App* save = command->add_subcommand("save", "Save the shown options, with changes");
  addCartridge(save);
  save->add_option("changes", options->assignments, "KEY=VALUE, as stored (frm=3, Joy=0)");
  save->callback([options, &context] { RunSave(*options, context); });

  CLI::App* erase = command->add_subcommand("delete", "Delete a cartridge's or the general set");
  addCartridge(erase);
  erase->callback([options, &context] { RunDelete(*options, context); });
}

}  // namespace romsteward::cli
