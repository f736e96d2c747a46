#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "core/common/result.h"

namespace romsteward {

inline constexpr std::string_view kNoSavedGames = "No saved games";
inline constexpr std::string_view kGenecystState = "Genecyst State";
inline constexpr std::string_view kGenecystSnapshots = "Genecyst Snapshots:";
inline constexpr std::string_view kGenEmState = "GenEm State";
inline constexpr std::string_view kKGenState = "KGen State";
inline constexpr std::string_view kKGenSnapshots = "KGen Snapshots:";
inline constexpr std::string_view kSnapshotPrefix = " - ";
inline constexpr std::string_view kBlastEmBatterySave = "BlastEm Battery Save";
inline constexpr std::string_view kBlastEmStates = "BlastEm States:";
inline constexpr std::string_view kMednafenBatterySave = "Mednafen Battery Save";
inline constexpr std::string_view kMednafenStates = "Mednafen States:";

/// Where the Debian emulators keep their files: BlastEm's user folder
/// (`$HOME/.local/share/blastem`) and Mednafen's base folder (`$MEDNAFEN_HOME`, else
/// `$HOME/.mednafen`), from the environment.
std::filesystem::path BlastEmSaveFolder();
std::filesystem::path MednafenFolder();

/// The saved-games list (`JogosSalvos`) of the image at `romPath`: the states and snapshots
/// the three emulators keep for it, found by name. `kgenExecutable` is the configured KGen
/// path, whose directory holds KGen's files. Names are matched without regard to case, as
/// the emulators' own file systems did. BlastEm's and Mednafen's battery saves and states of
/// the image follow the classic entries. "No saved games" alone when nothing is found.
std::vector<std::string> JogosSalvos(const std::filesystem::path& romPath,
                                     std::string_view kgenExecutable);

/// The file that entry `index` of `entries` (a list made by JogosSalvos) stands for. A heading
/// gives the error "You can't Delete a file type".
Result<std::filesystem::path> SavedGameFile(const std::vector<std::string>& entries,
                                            std::size_t index, const std::filesystem::path& romPath,
                                            std::string_view kgenExecutable);

}  // namespace romsteward
