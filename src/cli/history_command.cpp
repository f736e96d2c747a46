// romsteward-tool history: when each cartridge last ran and how long it was played.
#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <ostream>

#include "cli/rom_place.h"
#include "cli/tool.h"
#include "core/common/strings.h"
#include "core/launch/play_history.h"

namespace romsteward::cli {

namespace {

struct HistoryOptions {
  std::optional<std::string> file;
  bool json = false;
};

void Run(const HistoryOptions& options, ToolContext& context) {
  AppSettings* settings = context.SettingsOrReport();
  if (!settings) return;
  std::vector<PlayRecord> records;
  if (options.file) {
    // Cartridges are known by their list entry: the file's name.
    const std::string entry = PathToUtf8(Utf8ToPath(*options.file).filename());
    if (auto record = PlayHistory(*settings, entry)) records.push_back(std::move(*record));
  } else {
    records = AllPlayHistory(*settings);
  }
  if (options.json) {
    nlohmann::ordered_json all = nlohmann::ordered_json::array();
    for (const auto& record : records) {
      all.push_back({{"name", Latin1FallbackToUtf8(record.entry)},
                     {"lastRun", FormatRunTime(record.lastRun)},
                     {"lastRunEpoch", record.lastRun},
                     {"playSeconds", record.playTime}});
    }
    context.out << all.dump(2) << '\n';
    return;
  }
  if (records.empty()) {
    context.out << (options.file ? "Never run\n" : "No cartridge has been run\n");
    return;
  }
  for (const auto& record : records) {
    context.out << fmt::format("{}  last run {} UTC, played {}\n", PrintableName(record.entry),
                               FormatRunTime(record.lastRun), FormatPlayTime(record.playTime));
  }
}

}  // namespace

void AddHistoryCommand(CLI::App& app, ToolContext& context) {
  auto options = std::make_shared<HistoryOptions>();
  CLI::App* command =
      app.add_subcommand("history", "When cartridges last ran and how long they were played");
  command->add_option("FILE", options->file, "One cartridge; without it, all of them");
  command->add_flag("--json", options->json, "One JSON array of objects, one per cartridge");
  command->callback([options, &context] { Run(*options, context); });
}

}  // namespace romsteward::cli
