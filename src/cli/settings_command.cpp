// romsteward-tool settings: look at the settings store and mend it by hand.
#include <fmt/format.h>
#include <fmt/ranges.h>

#include <CLI/CLI.hpp>
#include <memory>
#include <optional>
#include <ostream>

#include "cli/tool.h"
#include "core/common/strings.h"
#include "core/settings/app_settings.h"

namespace romsteward::cli {

namespace {

struct SettingsOptions {
  std::string section;
  std::string key;
  std::string value;
  bool raw = false;
  bool escaped = false;
};

// The section as the application spells it. Only the application's own sections are
// accepted, so a misspelt name is refused instead of becoming a new section.
std::optional<std::string_view> KnownSection(ToolContext& context, std::string_view name) {
  for (std::string_view section : kSections) {
    if (EqualsIgnoreCase(section, name)) return section;
  }
  context.err << fmt::format("Unknown section \"{}\": the sections are {}\n",
                             EscapeForDisplay(name), fmt::join(kSections, ", "));
  context.status = kExitError;
  return std::nullopt;
}

void PrintValues(ToolContext& context,
                 const std::vector<std::pair<std::string, std::string>>& values) {
  for (const auto& [name, data] : values) {
    context.out << EscapeForDisplay(name) << '=' << EscapeExactly(data) << '\n';
  }
}

void RunList(const SettingsOptions& options, ToolContext& context) {
  std::optional<std::string_view> only;
  if (!options.section.empty() && !(only = KnownSection(context, options.section))) return;
  AppSettings* settings = context.SettingsOrReport();
  if (!settings) return;
  const RegistryStore& store = settings->Store();

  if (only) {
    // A section that was never written simply holds nothing.
    if (auto values = store.EnumerateValues(SectionKeyPath(*only))) PrintValues(context, *values);
    return;
  }
  auto sections = store.EnumerateSubkeyNames(SectionKeyPath(""));
  if (!sections) {
    context.err << sections.error().message << '\n';
    context.status = kExitError;
    return;
  }
  bool first = true;
  for (const std::string& section : *sections) {
    auto values = store.EnumerateValues(SectionKeyPath(section));
    if (!values || values->empty()) continue;
    context.out << (first ? "" : "\n") << '[' << EscapeForDisplay(section) << "]\n";
    PrintValues(context, *values);
    first = false;
  }
}

void RunGet(const SettingsOptions& options, ToolContext& context) {
  const auto section = KnownSection(context, options.section);
  if (!section) return;
  AppSettings* settings = context.SettingsOrReport();
  if (!settings) return;
  auto value = settings->Store().GetValue(SectionKeyPath(*section), options.key);
  if (!value) {
    context.err << fmt::format("{} holds no value \"{}\"\n", *section,
                               EscapeForDisplay(options.key));
    context.status = kExitFailure;
    return;
  }
  if (options.raw) {
    context.out << *value;
  } else {
    context.out << EscapeExactly(*value) << '\n';
  }
}

void RunSet(const SettingsOptions& options, ToolContext& context) {
  const auto section = KnownSection(context, options.section);
  if (!section) return;
  std::string value = options.value;
  if (options.escaped) {
    auto decoded = DecodeHexEscapes(options.value);
    if (!decoded) {
      context.err << decoded.error().message << '\n';
      context.status = kExitError;
      return;
    }
    value = std::move(decoded).value();
  }
  AppSettings* settings = context.SettingsOrReport();
  if (!settings) return;
  if (Status saved = settings->SaveSetting(*section, options.key, value); !saved) {
    context.err << saved.error().message << '\n';
    context.status = kExitError;
  }
}

void RunDelete(const SettingsOptions& options, ToolContext& context) {
  const auto section = KnownSection(context, options.section);
  if (!section) return;
  AppSettings* settings = context.SettingsOrReport();
  if (!settings) return;
  if (!settings->Store().HasValue(SectionKeyPath(*section), options.key)) {
    context.err << fmt::format("{} holds no value \"{}\"\n", *section,
                               EscapeForDisplay(options.key));
    context.status = kExitFailure;
    return;
  }
  if (Status deleted = settings->DeleteSetting(*section, options.key); !deleted) {
    context.err << deleted.error().message << '\n';
    context.status = kExitError;
  }
}

}  // namespace

void AddSettingsCommand(CLI::App& app, ToolContext& context) {
  auto options = std::make_shared<SettingsOptions>();
  CLI::App* settings = app.add_subcommand("settings", "Show and change the stored settings");
  settings->require_subcommand(1);
  const std::string sectionHelp = fmt::format("Section: {}", fmt::join(kSections, ", "));

  CLI::App* list = settings->add_subcommand("list", "Every value of a section, or of all");
  list->add_option("section", options->section, sectionHelp);
  list->callback([options, &context] { RunList(*options, context); });

  CLI::App* get = settings->add_subcommand("get", "One value, escaped where not printable");
  get->add_option("section", options->section, sectionHelp)->required();
  get->add_option("key", options->key, "Value name")->required();
  get->add_flag("--raw", options->raw, "The stored bytes exactly, without a line end");
  get->callback([options, &context] { RunGet(*options, context); });

  CLI::App* set = settings->add_subcommand("set", "Store a value");
  set->add_option("section", options->section, sectionHelp)->required();
  set->add_option("key", options->key, "Value name")->required();
  set->add_option("value", options->value, "The text to store")->required();
  set->add_flag("--escaped", options->escaped, "VALUE holds \\xNN escapes for any byte");
  set->callback([options, &context] { RunSet(*options, context); });

  CLI::App* erase = settings->add_subcommand("delete", "Delete a value");
  erase->add_option("section", options->section, sectionHelp)->required();
  erase->add_option("key", options->key, "Value name")->required();
  erase->callback([options, &context] { RunDelete(*options, context); });
}

}  // namespace romsteward::cli
