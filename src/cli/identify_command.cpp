// romsteward-tool identify: which game of a DAT file each image is, by CRC32 and SHA-1 of its
// ROM data; optionally renames matched images to the DAT's names.
#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <memory>
#include <ostream>

#include "cli/json_output.h"
#include "cli/tool.h"
#include "core/common/strings.h"
#include "core/host/host.h"
#include "core/identify/chosen_dat.h"
#include "core/identify/dat_rename.h"
#include "core/identify/identify.h"
#include "core/settings/app_settings.h"

namespace romsteward::cli {

namespace {

struct IdentifyOptions {
  std::string dat;
  bool json = false;
  bool rename = false;
  bool remember = false;
  std::vector<std::string> places;
};

std::string_view StatusText(const IdentifiedImage& image) {
  return image.match ? "matched" : image.hashes ? "unknown" : "error";
}

Json ImageJson(const IdentifiedImage& image) {
  Json volumes = Json::array();
  for (const auto& later : image.laterVolumes)
    volumes.push_back(JsonText(PathToUtf8(later)));
  const RomHashes* hashes = image.hashes ? &*image.hashes : nullptr;
  const DatMatch* match = image.match ? &*image.match : nullptr;
  return {
      {"file", JsonText(image.shown)},
      {"member", image.member.empty() ? Json(nullptr) : JsonText(image.member)},
      {"status", StatusText(image)},
      {"layout", hashes ? Json(std::string(LayoutCode(image.layout))) : Json(nullptr)},
      {"laterVolumes", volumes},
      {"size", hashes ? Json(hashes->size) : Json(nullptr)},
      {"crc32", hashes ? Json(Crc32Text(hashes->crc32)) : Json(nullptr)},
      {"sha1", hashes ? Json(hashes->sha1) : Json(nullptr)},
      {"game", match ? Json(match->game) : Json(nullptr)},
      {"rom", match ? Json(match->rom) : Json(nullptr)},
      {"matchedBy", match ? Json(match->matchedBy) : Json(nullptr)},
      {"error", image.problem.empty() ? Json(nullptr) : JsonText(image.problem)},
  };
}

void PrintText(std::ostream& out, const std::vector<IdentifiedImage>& images) {
  std::size_t matched = 0;
  std::size_t unknown = 0;
  for (const IdentifiedImage& image : images) {
    const std::string shown = EscapeForDisplay(image.shown, false);
    if (image.match) {
      ++matched;
      out << fmt::format("{}: {} ({})\n", shown, EscapeForDisplay(image.match->game, false),
                         image.match->matchedBy);
    } else if (image.hashes) {
      ++unknown;
      out << shown << ": unknown\n";
    } else {
      out << shown << ": not identified\n";
    }
  }
  out << fmt::format("{} matched, {} unknown, {} not identified\n", matched, unknown,
                     images.size() - matched - unknown);
}

int Rename(const std::vector<IdentifiedImage>& images, ToolContext& context) {
  const RenamePlan plan = PlanDatRenames(images);
  for (const std::string& skipped : plan.skipped)
    context.out << "Not renamed: " << EscapeForDisplay(skipped, false) << '\n';
  if (plan.steps.empty()) {
    context.out << "Nothing to rename\n";
    return kExitOk;
  }
  context.out << "Would rename:\n";
  for (const RenameStep& step : plan.steps)
    context.out << fmt::format("  {} -> {}\n", EscapeForDisplay(PathToUtf8(step.from), false),
                               EscapeForDisplay(PathToUtf8(step.to.filename()), false));
  const std::string question = fmt::format("Rename {} file{} as listed?", plan.steps.size(),
                                           plan.steps.size() == 1 ? "" : "s");
  if (context.host().AskYesNo(question, MessageIcon::Question, {}) != Answer::Yes) {
    context.out << "Nothing renamed\n";
    return kExitOk;
  }
  const std::vector<std::string> failures = ApplyRenames(plan);
  for (const std::string& failure : failures)
    context.err << failure << '\n';
  context.out << fmt::format("Renamed {} file{}\n", plan.steps.size() - failures.size(),
                             plan.steps.size() - failures.size() == 1 ? "" : "s");
  return failures.empty() ? kExitOk : kExitError;
}

int RunIdentify(const IdentifyOptions& options, ToolContext& context) {
  std::string datFile = options.dat;
  if (datFile.empty() || options.remember) {
    AppSettings* settings = context.SettingsOrReport();
    if (!settings) return kExitError;
    if (datFile.empty()) datFile = ChosenDatFile(*settings);
    if (datFile.empty()) {
      context.err << "No DAT file: name one with --dat FILE (--remember keeps it)\n";
      return kExitError;
    }
  }
  auto dat = ReadDatFile(Utf8ToPath(datFile));
  if (!dat) {
    context.err << dat.error().message << '\n';
    return kExitError;
  }
  if (options.remember) {
    if (Status saved = SaveChosenDatFile(*context.SettingsOrReport(), Utf8ToPath(datFile));
        !saved) {
      context.err << saved.error().message << '\n';
      return kExitError;
    }
  }
  for (const std::string& problem : dat->problems)
    context.err << EscapeForDisplay(datFile, false) << ": " << problem << '\n';

  const DatIndex index(*dat);
  std::vector<IdentifiedImage> images = CollectImages(options.places);
  IdentifyImages(images, index, &context.host());

  int status = kExitOk;
  for (const IdentifiedImage& image : images) {
    if (!image.problem.empty()) context.err << EscapeForDisplay(image.problem, false) << '\n';
    status = std::max(status, image.match ? kExitOk : image.hashes ? kExitFailure : kExitError);
  }
  if (options.json) {
    Json problems = Json::array();
    for (const std::string& problem : dat->problems)
      problems.push_back(JsonText(problem));
    Json list = Json::array();
    for (const IdentifiedImage& image : images)
      list.push_back(ImageJson(image));
    PrintJson(context.out, {{"dat",
                             {{"file", JsonText(datFile)},
                              {"name", JsonText(dat->name)},
                              {"description", JsonText(dat->description)},
                              {"version", JsonText(dat->version)},
                              {"games", dat->games.size()},
                              {"problems", problems}}},
                            {"images", list}});
    return status;
  }
  PrintText(context.out, images);
  if (options.rename) status = std::max(status, Rename(images, context));
  return status;
}

}  // namespace

void AddIdentifyCommand(CLI::App& app, ToolContext& context) {
  auto options = std::make_shared<IdentifyOptions>();
  CLI::App* command = app.add_subcommand(
      "identify",
      "Name images from a DAT file by CRC32 and SHA-1; exit 1 if any is unknown, 2 if any "
      "cannot be read");
  command->add_option("--dat", options->dat,
                      "Logiqx XML DAT file (default: the one kept with --remember)");
  command->add_flag("--remember", options->remember,
                    "Keep the DAT file in the settings for later runs, the panel and reports");
  CLI::Option* json =
      command->add_flag("--json", options->json, "One JSON object: the DAT and every image");
  command
      ->add_flag("--rename", options->rename,
                 "Then rename matched images to their DAT names, after a listing and a question")
      ->excludes(json);
  command->add_option("places", options->places, "Image files, directories and ZIP archives")
      ->required();
  command->callback([options, &context] { context.status = RunIdentify(*options, context); });
}

}  // namespace romsteward::cli
