#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/common/result.h"

namespace romsteward {

class AppSettings;
class ExtractedCopies;
class Host;

inline constexpr std::string_view kNewFavoriteTitle = "New Favorite Game";
inline constexpr std::string_view kNewFavoritePrompt =
    "Type the text you wish to see in 'Favorites' menu";
inline constexpr std::string_view kRemoveFavoritesTitle = "Remove items from favorite menu";
inline constexpr std::string_view kFavoriteNotFound = "Rom not found, remove favorite from menu?";
inline constexpr std::string_view kSplitInZip = "You can't run splitted files stored in a ZIP";
inline constexpr std::string_view kRomDoesNotExist = "The specified ROM doesn't exist!";
/// Marks an archived favorite: archive path, this, member name. No ordinary path holds it.
inline constexpr std::string_view kArchiveSeparator = "\\\\";

/// "Are you sure you want to remove '" + title + "' from the favorites menu?"
std::string RemoveFavoriteQuestion(std::string_view title);

/// What a favorite points at: `diret` joined with `entry`, or for a member of the archive
/// `diret` the archive, kArchiveSeparator and the member.
std::string FavoriteLocation(std::string_view diret, bool zipListing, std::string_view entry);

/// The titles of section `FAVORITE` in the menu's order: the ROM list's name order (case
/// and blanks ignored). Empty when the section is missing or empty.
std::vector<std::string> FavoriteTitles(const AppSettings& settings);
/// The location saved under `title`; empty when there is none.
std::string FavoriteLocationOf(const AppSettings& settings, std::string_view title);
/// Saves `title` = `location`; a title that exists in any letter case is replaced.
Status SaveFavorite(AppSettings& settings, std::string_view title, std::string_view location);
/// Deletes the value named `title`; a title that is not there fails.
Status DeleteFavorite(AppSettings& settings, std::string_view title);

/// An archived location taken apart, when the part before kArchiveSeparator is a ZIP file.
struct ArchivedLocation {
  std::string archive;
  std::string member;
};
std::optional<ArchivedLocation> SplitArchivedLocation(std::string_view location);

/// Whether the image of `location` is there: the file, or the member of the archive.
bool FavoriteImageExists(std::string_view location);

/// The image a favorite runs. Missing: the image (or its archive member) is not there, so
/// the favorite is offered for removal. Refused: a message was shown and nothing runs.
struct FavoriteImage {
  enum class State { Ready, Missing, Refused } state = State::Missing;
  std::string path;  ///< Ready: the image to hand to RunImagePath
  /// Ready or Refused: the copy made in the temporary folder, recorded so that a killed
  /// program leaves nothing; deleted by its Delete or when the last holder lets it go.
  std::shared_ptr<ExtractedCopies> copy;
};

/// Finds or extracts the image of `location`. An archived one needs a usable temporary
/// folder (kTempFolderMissing otherwise) and is refused when it is the first volume of a
/// split set (kSplitInZip); an extraction that fails for another reason than a missing
/// member shows that reason.
FavoriteImage PrepareFavoriteImage(Host& host, AppSettings& settings, std::string_view location);

}  // namespace romsteward
