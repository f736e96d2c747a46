// romsteward-tool ips: create an IPS patch between two images, or apply one in place.
#include <CLI/CLI.hpp>
#include <memory>
#include <ostream>

#include "cli/tool.h"
#include "core/common/strings.h"
#include "core/patch/ips_apply.h"
#include "core/patch/ips_create.h"

namespace romsteward::cli {

namespace {

struct IpsOptions {
  std::string unchanged;
  std::string changed;
  std::string output;
  std::string patch;
  std::string image;
};

int RunCreate(const IpsOptions& options, ToolContext& context) {
  const std::string output =
      options.output.empty() ? DefaultIpsName(options.changed) : options.output;
  const auto created =
      CreateIpsFile(Utf8ToPath(options.unchanged), Utf8ToPath(options.changed), Utf8ToPath(output));
  if (!created) {
    context.err << created.error().message << '\n';
    if (created.error().message == kIpsSizeMismatch)
      context.err << EscapeForDisplay(options.unchanged) << " and "
                  << EscapeForDisplay(options.changed)
                  << " differ in length; no patch was written.\n";
    return kExitError;
  }
  context.out << "IPS file generated.\n"
              << EscapeForDisplay(output) << ": " << created->records << " record"
              << (created->records == 1 ? "" : "s") << ", " << created->bytes.size() << " bytes\n";
  return kExitOk;
}

int RunApply(const IpsOptions& options, ToolContext& context) {
  const auto applied = ApplyIpsFile(Utf8ToPath(options.patch), Utf8ToPath(options.image));
  if (!applied) {
    context.err << applied.error().message << '\n';
    return kExitError;
  }
  if (!applied->damage.empty()) {
    context.err << applied->damage << '\n';
    return kExitError;
  }
  context.out << "IPS file applyed.\n"
              << EscapeForDisplay(options.image) << ": " << applied->records << " record"
              << (applied->records == 1 ? "" : "s") << " written\n";
  return kExitOk;
}

}  // namespace

void AddIpsCommand(CLI::App& app, ToolContext& context) {
  auto options = std::make_shared<IpsOptions>();
  CLI::App* ips = app.add_subcommand("ips", "Create or apply IPS patches");
  ips->require_subcommand(1);

  CLI::App* create =
      ips->add_subcommand("create", "Write the differences of two images of equal size");
  create->add_option("unchanged", options->unchanged, "The original image")->required();
  create->add_option("changed", options->changed, "The changed image")->required();
  create->add_option("-o,--output", options->output,
                     "Patch file (default: CHANGED with .ips for its extension); an existing "
                     "longer file keeps its tail after the end marker");
  create->callback([options, &context] { context.status = RunCreate(*options, context); });

  CLI::App* apply = ips->add_subcommand("apply", "Write a patch's records into an image in place");
  apply->add_option("patch", options->patch, "The IPS file")->required();
  apply->add_option("image", options->image, "The image to patch")->required();
  apply->callback([options, &context] { context.status = RunApply(*options, context); });
}

}  // namespace romsteward::cli
