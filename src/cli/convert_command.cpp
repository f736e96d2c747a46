// romsteward-tool convert: an image in another copier layout, as a new file.
#include <CLI/CLI.hpp>
#include <map>
#include <memory>
#include <ostream>

#include "cli/tool.h"
#include "core/cart/convert.h"
#include "core/common/strings.h"

namespace romsteward::cli {

namespace {

struct ConvertOptions {
  Layout to = Layout::Bin;
  std::string file;
  std::string output;
  bool force = false;
};

int RunConvert(const ConvertOptions& options, ToolContext& context) {
  const auto source = Utf8ToPath(options.file);
  const auto output = options.output.empty() ? DefaultConvertOutput(source, options.to)
                                             : Utf8ToPath(options.output);
  if (Status converted = ConvertImage(source, options.to, output, options.force); !converted) {
    // One line whatever the names hold, as every command prints them.
    context.err << EscapeForDisplay(converted.error().message, false) << '\n';
    return kExitError;
  }
  context.out << "Wrote " << EscapeForDisplay(PathToUtf8(output)) << " ("
              << FormatDescription(options.to) << ")\n";
  return kExitOk;
}

}  // namespace

void AddConvertCommand(CLI::App& app, ToolContext& context) {
  auto options = std::make_shared<ConvertOptions>();
  CLI::App* command = app.add_subcommand(
      "convert", "Write an image in another layout; the output's extension fits the layout");
  const std::map<std::string, Layout> layouts{
      {"bin", Layout::Bin}, {"smd", Layout::Smd}, {"md", Layout::Md}};
  command->add_option("--to", options->to, "Layout to convert to: bin, smd or md")
      ->required()
      ->transform(CLI::CheckedTransformer(layouts, CLI::ignore_case));
  command->add_option("file", options->file, "Image to convert")->required();
  command->add_option("-o,--output", options->output, "Output file (default: FILE renamed)");
  command->add_flag("--force", options->force, "Replace an existing output file");
  command->callback([options, &context] { context.status = RunConvert(*options, context); });
}

}  // namespace romsteward::cli
