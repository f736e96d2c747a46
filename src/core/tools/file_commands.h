#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/common/result.h"
#include "core/host/host.h"
#include "core/tools/file_operations.h"

namespace romsteward {

/// What the ROM list needs to do after a file command.
struct ListUpdate {
  bool refresh = false;
  /// Delete: the selected entry's file is gone.
  bool removeSelected = false;
  /// Copy and rename: where the image now is, for whoever keeps data per image.
  std::string newPath;
};

/// Where an archive member is unpacked to before it is copied; the archive support supplies
/// it.
class ArchiveExtractor {
public:
  virtual ~ArchiveExtractor() = default;
  /// Unpacks `member` of `archive` into a temporary file and returns its path, or an error
  /// fit to show.
  virtual Result<std::filesystem::path> ExtractToTemporary(const std::filesystem::path& archive,
                                                           std::string_view member) = 0;
};

/// "Copy...": asks for the destination file and copies the selected image there. When the
/// list shows an archive (`archive` given, `place` the archive), the member is unpacked
/// first and the unpacked file moved to the destination.
ListUpdate CopyRom(Host& host, FileOperations& operations, std::string_view place,
                   std::string_view listText, ArchiveExtractor* archive = nullptr);

/// "Move...": asks for a folder and moves the selected image into it.
ListUpdate MoveRom(Host& host, FileOperations& operations, std::string_view romDirectory,
                   std::string_view listText);

/// "Delete...": deletes the selected image (for good when Shift is held).
ListUpdate DeleteRom(Host& host, FileOperations& operations, std::string_view romDirectory,
                     std::string_view listText);

/// "&Rename...": asks for the new name, refuses characters a file name cannot hold, renames.
ListUpdate RenameRom(Host& host, FileOperations& operations, std::string_view romDirectory,
                     std::string_view listText);

/// Files dropped on the ROM list: copied into the ROM directory, moved when Shift is held.
/// `dropped` is nullopt when what was dropped is not a list of files.
ListUpdate DropOnRomList(Host& host, FileOperations& operations, std::string_view romDirectory,
                         const std::optional<std::vector<std::string>>& dropped);

/// The first of \ / * ? " < > | (in that order) that `name` holds; the colon is let through.
std::optional<char> ForbiddenNameCharacter(std::string_view name);

}  // namespace romsteward
