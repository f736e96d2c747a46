// romsteward-tool list: the ROM list of a directory or ZIP archive, as the window shows it.
#include <CLI/CLI.hpp>
#include <memory>
#include <ostream>

#include "cli/json_output.h"
#include "cli/rom_place.h"
#include "cli/tool.h"

namespace romsteward::cli {

namespace {

struct ListOptions {
  bool all = false;
  bool json = false;
  std::string sort = "name";
  std::string place;
};

void RunList(const ListOptions& options, ToolContext& context) {
  const auto model =
      OpenPlace(context, options.place, options.all ? ListFilter::AllFiles : ListFilter::RomFiles,
                options.sort == "type" ? SortOrder::Type : SortOrder::Name);
  if (!model) return;
  if (options.json) {
    Json entries = Json::array();
    for (const std::string& entry : model->Entries())
      entries.push_back(JsonText(entry));
    PrintJson(context.out, {{"place", JsonText(model->Diret())},
                            {"archive", model->IsZipListing()},
                            {"entries", entries},
                            {"count", model->Entries().size()}});
    return;
  }
  for (const std::string& entry : model->Entries())
    context.out << PrintableName(entry) << '\n';
  context.out << model->Texts().txtFiles << '\n';
}

}  // namespace

void AddListCommand(CLI::App& app, ToolContext& context) {
  auto options = std::make_shared<ListOptions>();
  CLI::App* command =
      app.add_subcommand("list", "List the images of a directory or ZIP archive, then the count");
  command->add_flag("--all", options->all, "Every file, not only .bin, .smd, .md and .1");
  command
      ->add_option("--sort", options->sort,
                   "Order of a directory's list (an archive keeps its own)")
      ->check(CLI::IsMember({"name", "type"}))
      ->capture_default_str();
  command->add_flag("--json", options->json, "One JSON object: the place and its entries");
  command->add_option("place", options->place, "A directory or a ZIP archive")->required();
  command->callback([options, &context] { RunList(*options, context); });
}

}  // namespace romsteward::cli
