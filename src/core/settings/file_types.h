#pragma once

#include <filesystem>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/common/result.h"

namespace romsteward {

/// The type the shared MIME database already gives Genesis images, by their headers.
inline constexpr std::string_view kGenesisRomType = "application/x-genesis-rom";

/// One image type the desktop can be told to open with the program.
struct FileTypeEntry {
  std::string_view control;    ///< the menu item's name
  std::string_view caption;    ///< its caption
  std::string_view extension;  ///< the file names' extension, as `--type` takes it
  /// The type the desktop knows such images by: kGenesisRomType for every layout, so
  /// choosing any of them makes the program the opener of all four.
  std::string_view mimeType;
};

/// The four layouts: binary, interleaved, the first volume of a split set, game doctor.
std::span<const FileTypeEntry> FileTypes();

/// Where a registration goes and what it opens the images with.
struct FileTypePlaces {
  std::filesystem::path dataHome;    ///< $XDG_DATA_HOME: applications/ and mime/
  std::filesystem::path configHome;  ///< $XDG_CONFIG_HOME: mimeapps.list, for the default
  std::filesystem::path program;     ///< the desktop program, started with the image's path
};

/// The XDG base folders from the environment (or their defaults under $HOME) and `program`.
Result<FileTypePlaces> DefaultFileTypePlaces(const std::filesystem::path& program);

inline constexpr std::string_view kDesktopFileName = "romsteward.desktop";
inline constexpr std::string_view kMimePackageFileName = "romsteward.xml";

/// The shared-mime-info package that adds to kGenesisRomType what the system's database
/// misses: the game doctor layout's header, and header rules strong enough to be asked
/// before a file's name. It declares no file-name pattern, so no other file changes type.
std::string MimePackageXml();
/// The desktop entry that opens those types with `program`; an Error for a path a desktop
/// entry cannot hold (a line break).
Result<std::string> DesktopEntry(const std::filesystem::path& program);

/// What a registration or removal did besides writing or deleting its files: one line per
/// desktop tool that was missing or failed. The files are in place either way.
struct FileTypeReport {
  std::vector<std::string> notes;
};

/// Writes the desktop entry and the MIME package, then runs update-mime-database and makes
/// the program the default for the types of `types` with `xdg-mime default` where
/// installed. Refuses a program that does not exist or cannot be run. Registering again
/// writes the same files; defaults set earlier for other types stay.
Result<FileTypeReport> RegisterFileTypes(const FileTypePlaces& places,
                                         std::span<const FileTypeEntry> types = FileTypes());
/// The type registered for `extension` ("bin", "smd", "1", "md"), if any.
const FileTypeEntry* FindFileType(std::string_view extension);
/// Deletes both files, takes the program out of mimeapps.list (other programs named there
/// for the same type stay) and brings the MIME database up to date. Nothing registered is
/// not an error.
Result<FileTypeReport> RemoveFileTypes(const FileTypePlaces& places);

}  // namespace romsteward
