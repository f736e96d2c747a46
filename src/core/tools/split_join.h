#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "core/common/result.h"
#include "core/host/host.h"

namespace romsteward {

/// How a tool command ended, for the caller's list refresh and exit status. Every message
/// has already been shown through the Host.
enum class CommandResult {
  Done,
  Cancelled,  ///< a dialog was cancelled or a question answered No; nothing more was done
  Failed,     ///< refused or failed; the message said why and no half-written file was left
};

/// Shows `error` in a critical message box and reports the command as failed.
inline CommandResult ShowFailure(Host& host, const Error& error) {
  host.ShowMessage(error.message, MessageIcon::Critical, {});
  return CommandResult::Failed;
}

/// One megabit in bytes; split sizes are whole megabits.
inline constexpr std::uint64_t kMegabitBytes = 131072;

/// The volumes' common name: the image's path up to and including the last point of its
/// file name ("/roms/GAME." for "/roms/GAME.smd" or "/roms/GAME.2"); a file name without a
/// point gets one, so its volumes are GAME.1, GAME.2 ...
std::string SplitVolumeBase(const std::filesystem::path& image);

/// "&Split ROM...": asks the size with the split size chooser, then splits (SplitImage).
CommandResult SplitRom(Host& host, const std::filesystem::path& image);

/// Cuts the data after `image`'s 512-byte copier header into volumes of `megabits` each,
/// named SplitVolumeBase + 1, 2, ..., each with its own copier header. Existing volumes are
/// asked about (Yes deletes them); the last volume, when short and not asked about, is
/// written over in place: its old bytes past the new end stay. A size of zero or less ends
/// silently. The list is not refreshed afterwards.
CommandResult SplitImage(Host& host, const std::filesystem::path& image, int megabits);

/// "&Join ROMs": joins the set `anyVolume` belongs to (volumes 1, 2, ... up to the first
/// gap) into SplitVolumeBase + "smd", the first volume whole and the others without their
/// copier headers, then sets the joined file's block count and clears its split byte.
/// An existing target is asked about first. On Done the list wants refreshing.
CommandResult JoinRom(Host& host, const std::filesystem::path& anyVolume);

/// "Join Files...": asks for a destination and the files to append (starting in
/// `romDirectory`), then JoinFilesInto. On Done the list wants refreshing.
CommandResult JoinFiles(Host& host, std::string_view romDirectory);

/// Writes `files`, whole and in the order given, one after the other into `destination`
/// (replaced whole at the end, never left half-written). No header is changed.
CommandResult JoinFilesInto(Host& host, const std::filesystem::path& destination,
                            const std::vector<std::string>& files);

}  // namespace romsteward
