// romsteward-tool restore-checksum: puts back the checksum that "checksum --fix --backup" kept.
#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <memory>
#include <ostream>

#include "cli/image_check.h"
#include "cli/tool.h"
#include "core/cart/checksum_commands.h"
#include "core/common/strings.h"
#include "core/settings/app_settings.h"

namespace romsteward::cli {

namespace {

int RunRestoreChecksum(const std::string& name, ToolContext& context) {
  AppSettings* settings = context.SettingsOrReport();
  if (settings == nullptr) return kExitError;
  const std::filesystem::path path = Utf8ToPath(name);
  const std::string entry = PathToUtf8(path.filename());
  const std::string shown = EscapeForDisplay(name);
  if (auto checked = CheckImage(name); !checked) {
    context.err << checked.error().message << '\n';
    return kExitError;
  }
  if (!HasChecksumBackup(*settings, entry)) {
    context.err << "No old checksum is kept for " << EscapeForDisplay(entry) << ".\n";
    return kExitFailure;
  }
  // Refused, and kept, when the backup was taken from another file of the same name.
  const auto restored = RestoreChecksumBackup(*settings, entry, path);
  if (!restored) {
    context.err << restored.error().message << '\n';
    return kExitError;
  }
  context.out << fmt::format("{}: checksum {:X} restored\n", shown, *restored);
  return kExitOk;
}

}  // namespace

void AddRestoreChecksumCommand(CLI::App& app, ToolContext& context) {
  auto file = std::make_shared<std::string>();
  CLI::App* command = app.add_subcommand(
      "restore-checksum", "Put back the checksum kept by checksum --fix --backup, and forget it");
  command->add_option("file", *file, "Image file")->required();
  command->callback([file, &context] { context.status = RunRestoreChecksum(*file, context); });
}

}  // namespace romsteward::cli
