// romsteward-tool favorites: the titles of the Favorites menu, listed, added, removed, run.
#include <CLI/CLI.hpp>
#include <memory>
#include <nlohmann/json.hpp>
#include <ostream>

#include "cli/rom_place.h"
#include "cli/terminal_launch.h"
#include "cli/tool.h"
#include "core/app/main_window_model.h"
#include "core/common/strings.h"
#include "core/launch/zip_archive.h"
#include "core/library/favorites.h"
#include "core/library/place.h"
#include "core/settings/app_settings.h"

namespace romsteward::cli {

namespace {

struct FavoritesOptions {
  bool json = false;
  std::string title;
  std::string file;
};

void Fail(ToolContext& context, std::string_view message) {
  context.err << message << '\n';
  context.status = kExitError;
}

bool HasFavorite(const AppSettings& settings, std::string_view title) {
  return settings.Store().HasValue(SectionKeyPath(kSectionFavorite), title);
}

std::string NoSuchFavorite(std::string_view title) {
  return "No favorite is titled '" + PrintableName(title) + "'.";
}

void RunList(const FavoritesOptions& options, ToolContext& context) {
  const AppSettings* settings = context.SettingsOrReport();
  if (!settings) return;
  nlohmann::ordered_json all = nlohmann::ordered_json::array();
  for (const std::string& title : FavoriteTitles(*settings)) {
    const std::string location = FavoriteLocationOf(*settings, title);
    const bool found = FavoriteImageExists(location);
    if (options.json) {
      all.push_back({{"title", Latin1FallbackToUtf8(title)},
                     {"location", Latin1FallbackToUtf8(location)},
                     {"archived", SplitArchivedLocation(location).has_value()},
                     {"found", found}});
    } else {
      context.out << PrintableName(title) << '\t' << PrintableName(location)
                  << (found ? "" : "\t(not found)") << '\n';
    }
  }
  if (options.json) context.out << all.dump(2) << '\n';
}

// FILE as a favorite keeps it: an absolute path, or ARCHIVE\\MEMBER for a member of a ZIP
// archive. Empty, with the reason told, when FILE is no image that can be found.
std::string LocationOf(std::string_view file, ToolContext& context) {
  if (IsRemotePath(file)) {
    Fail(context, kUncRefused);
    return {};
  }
  const auto absolute = [](std::string_view path) {
    std::error_code error;
    const std::filesystem::path full = std::filesystem::absolute(Utf8ToPath(path), error);
    return error ? std::string(path) : PathToUtf8(full);
  };
  if (auto archived = SplitArchivedLocation(file)) {
    const std::string location =
        absolute(archived->archive) + std::string(kArchiveSeparator) + archived->member;
    if (FavoriteImageExists(location)) return location;
    Fail(context, "The ZIP archive " + PrintableName(archived->archive) + " holds no member \"" +
                      PrintableName(archived->member) + "\".");
    return {};
  }
  if (!PathExists(file, PathKind::File)) {
    Fail(context, "No such file: " + PrintableName(file));
    return {};
  }
  return absolute(file);
}

void RunAdd(const FavoritesOptions& options, ToolContext& context) {
  if (TrimBlanks(options.title).empty()) return Fail(context, "A favorite needs a title.");
  const std::string location = LocationOf(options.file, context);
  if (location.empty()) return;
  AppSettings* settings = context.SettingsOrReport();
  if (!settings) return;
  const bool replaced = HasFavorite(*settings, options.title);
  if (Status saved = SaveFavorite(*settings, options.title, location); !saved)
    return Fail(context, saved.error().message);
  context.out << (replaced ? "Replaced '" : "Added '") << PrintableName(options.title)
              << "': " << PrintableName(location) << '\n';
}

void RunRemove(const FavoritesOptions& options, ToolContext& context) {
  AppSettings* settings = context.SettingsOrReport();
  if (!settings) return;
  if (!HasFavorite(*settings, options.title)) return Fail(context, NoSuchFavorite(options.title));
  if (Status deleted = DeleteFavorite(*settings, options.title); !deleted)
    return Fail(context, deleted.error().message);
  context.out << "Removed '" << PrintableName(options.title) << "'\n";
}

// As a click on the title in the Favorites menu: a dead favorite is offered for removal.
void RunFavorite(const FavoritesOptions& options, ToolContext& context) {
  AppSettings* settings = context.SettingsOrReport();
  if (!settings) return;
  if (!HasFavorite(*settings, options.title)) return Fail(context, NoSuchFavorite(options.title));
  MainWindowModel model(context.host(), *settings);
  const LaunchStep launch = context.launch ? context.launch : TerminalLaunchStep(context);
  bool launched = false;
  model.SetLaunchStep([&](MainWindowModel& window, std::function<void()> done) {
    launched = true;
    launch(window, std::move(done));
  });
  model.LoadFavoritesMenu();
  model.RunFavorite(options.title);
  // Whatever stopped the run was told through the host.
  if (!launched && context.status == kExitOk) context.status = kExitFailure;
}

}  // namespace

void AddFavoritesCommand(CLI::App& app, ToolContext& context) {
  auto options = std::make_shared<FavoritesOptions>();
  CLI::App* command = app.add_subcommand("favorites", "The Favorites menu: list, add, remove, run");
  command->require_subcommand(1);

  CLI::App* list = command->add_subcommand("list", "The favorites in menu order: title, location");
  list->add_flag("--json", options->json, "One JSON array of objects, one per favorite");
  list->callback([options, &context] { RunList(*options, context); });

  CLI::App* add = command->add_subcommand(
      "add", "Save FILE under TITLE (a title that exists in any letter case is replaced)");
  add->add_option("title", options->title, "The menu caption")->required();
  add->add_option("file", options->file,
                  "An image, or ARCHIVE.zip\\\\MEMBER for a member of a ZIP archive")
      ->required();
  add->callback([options, &context] { RunAdd(*options, context); });

  CLI::App* remove = command->add_subcommand("remove", "Delete the favorite TITLE");
  remove->add_option("title", options->title, "The menu caption")->required();
  remove->callback([options, &context] { RunRemove(*options, context); });

  CLI::App* run = command->add_subcommand(
      "run",
      "Run the favorite TITLE with its saved options (an archived one from a temporary copy)");
  run->add_option("title", options->title, "The menu caption")->required();
  run->callback([options, &context] { RunFavorite(*options, context); });
}

}  // namespace romsteward::cli
