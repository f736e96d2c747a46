// romsteward-tool split: an SMD image cut into numbered volumes beside it.
#include <CLI/CLI.hpp>
#include <memory>
#include <ostream>

#include "cli/exit_status.h"
#include "cli/image_check.h"
#include "cli/tool.h"
#include "core/cart/detect.h"
#include "core/common/strings.h"
#include "core/host/host.h"
#include "core/tools/split_join.h"
#include "core/tools/split_size_chooser.h"

namespace romsteward::cli {

namespace {

struct SplitOptions {
  int megabits = 0;
  std::string file;
};

int RunSplit(const SplitOptions& options, ToolContext& context) {
  const auto image = Utf8ToPath(options.file);
  std::uint8_t romSize = 0;
  {
    auto file = BinaryFile::Open(image);
    if (!file) {
      context.err << file.error().message << '\n';
      return kExitError;
    }
    // The volumes copy the data after a 512-byte copier header as it lies, so anything but
    // a whole SMD image would come out broken.
    const Layout layout = DetectRomFormat(*file);
    if (auto checked = CheckImage(options.file); layout == Layout::Smd && !checked) {
      context.err << checked.error().message << '\n';
      return kExitError;
    }
    if (layout != Layout::Smd) {
      context.err << options.file << ": only a whole SMD image can be split, this is "
                  << FormatDescription(layout) << " (convert --to smd first)\n";
      return kExitError;
    }
    romSize = RomSizeMbit(*file, options.file, layout);
  }

  // The size passes the chooser's own rule, as if typed into its custom field.
  SplitSizeChooser chooser(romSize);
  chooser.SetCustomText(std::to_string(options.megabits));
  const Result<int> accepted = chooser.Accept();
  if (!accepted) {
    context.host().ShowMessage(accepted.error().message, MessageIcon::Critical, {});
    return kExitError;
  }
  if (*accepted <= 0) {
    context.err << "The split size must be at least 1 megabit\n";
    return kExitError;
  }
  return ExitStatusFor(SplitImage(context.host(), image, *accepted));
}

}  // namespace

void AddSplitCommand(CLI::App& app, ToolContext& context) {
  auto options = std::make_shared<SplitOptions>();
  CLI::App* command = app.add_subcommand(
      "split", "Cut an SMD image into volumes FILE's-name.1, .2, ... of a size in megabits");
  command->add_option("--size", options->megabits, "Size of each volume in megabits (1-32)")
      ->required();
  command->add_option("file", options->file, "SMD image to split")->required();
  command->callback([options, &context] { context.status = RunSplit(*options, context); });
}

}  // namespace romsteward::cli
