// romsteward-tool repair: the copier-header and ROM size checks of a selection, with their
// repairs.
#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>
#include <ostream>

#include "cli/repair_host.h"
#include "cli/tool.h"
#include "core/cart/detect.h"
#include "core/cart/header_repair.h"
#include "core/cart/rom_size_check.h"
#include "core/common/binary_file.h"
#include "core/common/strings.h"
#include "core/settings/app_settings.h"

namespace romsteward::cli {

namespace {

struct RepairOptions {
  bool truncate = false;
  std::vector<std::string> files;
};

std::string_view OutcomeText(RepairOutcome outcome) {
  switch (outcome) {
    case RepairOutcome::Sound:
      return "sound";
    case RepairOutcome::Repaired:
      return "repaired";
    case RepairOutcome::LeftAsIs:
      return "damaged, left as it is";
    case RepairOutcome::Failed:
      return "not repaired (see above)";
  }
  return {};
}

int StatusOf(RepairOutcome outcome) {
  switch (outcome) {
    case RepairOutcome::Sound:
    case RepairOutcome::Repaired:
      return kExitOk;
    case RepairOutcome::LeftAsIs:
      return kExitFailure;
    case RepairOutcome::Failed:
      break;
  }
  return kExitError;
}

int RepairFile(const std::string& name, AppSettings& settings, Host& host, ToolContext& context) {
  const std::filesystem::path path = Utf8ToPath(name);
  Layout layout;
  {
    auto file = BinaryFile::Open(path);
    if (!file) {
      context.err << file.error().message << '\n';
      return kExitError;
    }
    layout = DetectRomFormat(*file);
  }
  if (layout == Layout::NoRom) {
    context.err << EscapeForDisplay(name) << " is not a cartridge image.\n";
    return kExitError;
  }
  // The order of a selection: copier headers first; the size is not checked for a later
  // volume, which has no cartridge header of its own.
  const std::string entry = PathToUtf8(path.filename());
  RepairOutcome outcome = CheckEmbeddedHeader(host, settings, path, entry);
  if (layout != Layout::SplitLater) outcome = std::max(outcome, CheckRomSize(host, path));
  context.out << EscapeForDisplay(name) << ": " << OutcomeText(outcome) << '\n';
  return StatusOf(outcome);
}

int RunRepair(const RepairOptions& options, ToolContext& context) {
  AppSettings* settings = context.SettingsOrReport();
  if (settings == nullptr) return kExitError;
  RepairHost host(context.host(), options.truncate, context.global.no);
  int status = kExitOk;
  for (const std::string& name : options.files)
    status = std::max(status, RepairFile(name, *settings, host, context));
  return status;
}

}  // namespace

void AddRepairCommand(CLI::App& app, ToolContext& context) {
  auto options = std::make_shared<RepairOptions>();
  CLI::App* command = app.add_subcommand(
      "repair", "Check copier headers and the ROM size, offering the repairs (see --help)");
  command->footer(
      "Without a terminal nothing changes unless --yes (fix copier headers and the header's "
      "ROM size) or --truncate (cut files longer than their header says).");
  command->add_flag("--truncate", options->truncate,
                    "Cut a file longer than its header says down to the header's size");
  command->add_option("files", options->files, "Image files")->required();
  command->callback([options, &context] { context.status = RunRepair(*options, context); });
}

}  // namespace romsteward::cli
