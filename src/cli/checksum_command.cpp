// romsteward-tool checksum: whether each image's stored checksum is right, and the fix.
#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <memory>
#include <ostream>

#include "cli/image_check.h"
#include "cli/json_output.h"
#include "cli/tool.h"
#include "core/cart/checksum_commands.h"
#include "core/common/binary_file.h"
#include "core/common/strings.h"
#include "core/settings/app_settings.h"

namespace romsteward::cli {

namespace {

struct ChecksumOptions {
  bool fix = false;
  bool backup = false;
  bool json = false;
  std::vector<std::string> files;
};

// Checks one file and fixes it when asked; returns the file's exit status. The text goes to
// `out`, the same facts to `record` (docs/json.md).
int CheckFile(const std::string& name, const ChecksumOptions& options, AppSettings* settings,
              ToolContext& context, std::ostream& out, Json& record) {
  const std::filesystem::path path = Utf8ToPath(name);
  const std::string shown = EscapeForDisplay(name);
  record = {{"file", JsonText(name)}, {"layout", nullptr},  {"stored", nullptr},
            {"computed", nullptr},    {"correct", nullptr}, {"fixed", false},
            {"error", nullptr}};
  const auto fail = [&](const std::string& message) {
    context.err << message << '\n';
    record["error"] = JsonText(message);
    return kExitError;
  };
  // Cut short before its header, an image would be summed and "fixed" like a whole one.
  if (auto checked = CheckImage(name); !checked) return fail(checked.error().message);
  auto state = ReadChecksumState(path, &context.host());
  if (!state) return fail(state.error().message);
  if (state->layout == Layout::NoRom || state->layout == Layout::SplitLater) {
    return fail(shown + (state->layout == Layout::NoRom
                             ? " is not a cartridge image."
                             : " is a later volume of a split set; check its first volume."));
  }
  record["layout"] = std::string(LayoutCode(state->layout));
  record["stored"] = state->stored;
  record["computed"] = state->computed;
  record["correct"] = state->Correct();

  std::string line =
      fmt::format("{}: {} (stored {:X}, computed {:X})", shown,
                  state->Correct() ? "correct" : "wrong", state->stored, state->computed);
  if (state->Correct() || !options.fix) {
    out << line << '\n';
    return state->Correct() ? kExitOk : kExitFailure;
  }
  // Checked before the backup, so no value is kept for a write that cannot happen.
  if (!IsWritableByUser(path)) {
    out << line << ", read-only: not fixed\n";
    record["error"] = "read-only: not fixed";
    return kExitError;
  }
  // The backup is named as the program's list names the image: by its file name.
  const std::string entry = PathToUtf8(path.filename());
  if (settings != nullptr) {
    if (Status kept = KeepChecksumBackup(*settings, entry, path, state->stored, state->computed);
        !kept) {
      out << line << ": not fixed\n";
      return fail("Cannot keep the old checksum of " + shown + ": " + kept.error().message);
    }
  }
  if (Status written = WriteChecksum(path, state->computed); !written) {
    out << line << ": not fixed\n";
    return fail(written.error().message);
  }
  record["fixed"] = true;
  out << line << (settings != nullptr ? ", fixed, old value kept\n" : ", fixed\n");
  return kExitOk;
}

int RunChecksum(const ChecksumOptions& options, ToolContext& context) {
  AppSettings* settings = nullptr;
  if (options.backup && (settings = context.SettingsOrReport()) == nullptr) return kExitError;
  int status = kExitOk;
  std::ostream none(nullptr);  // --json: the text lines go nowhere
  Json all = Json::array();
  for (const std::string& name : options.files) {
    Json record;
    status = std::max(status, CheckFile(name, options, settings, context,
                                        options.json ? none : context.out, record));
    all.push_back(std::move(record));
  }
  if (options.json) PrintJson(context.out, all);
  return status;
}

}  // namespace

void AddChecksumCommand(CLI::App& app, ToolContext& context) {
  auto options = std::make_shared<ChecksumOptions>();
  CLI::App* command = app.add_subcommand(
      "checksum", "Tell whether each image's stored checksum is correct; exit 1 if any is wrong");
  CLI::Option* fix =
      command->add_flag("--fix", options->fix, "Write the computed checksum into wrong images");
  command
      ->add_flag("--backup", options->backup,
                 "Keep the old checksum in the settings first (restore-checksum puts it back)")
      ->needs(fix);
  command->add_flag("--json", options->json, "One JSON array of objects, one per file");
  command->add_option("files", options->files, "Image files")->required();
  command->callback([options, &context] { context.status = RunChecksum(*options, context); });
}

}  // namespace romsteward::cli
