#include "core/tools/file_commands.h"

#include <system_error>

#include "core/common/strings.h"
#include "core/tools/file_system_operations.h"

namespace romsteward {

namespace {

namespace fs = std::filesystem;

bool SameFolder(const fs::path& a, const fs::path& b) {
  if (a.lexically_normal() == b.lexically_normal()) return true;
  std::error_code error;
  return fs::equivalent(a, b, error);
}

fs::path FolderOf(std::string_view path) {
  return Utf8ToPath(path).parent_path();
}

std::string WithSeparator(std::string_view folder) {
  std::string text(folder);
  if (!text.empty() && text.back() != fs::path::preferred_separator)
    text += fs::path::preferred_separator;
  return text;
}

ListUpdate CopyArchiveMember(Host& host, ArchiveExtractor& archive, std::string_view place,
                             std::string_view member, const std::string& destination) {
  auto extracted = archive.ExtractToTemporary(Utf8ToPath(place), member);
  if (!extracted) {
    host.ShowMessage(extracted.error().message, MessageIcon::Critical, {});
    return {};
  }
  if (Status moved = MoveFileReplacing(*extracted, Utf8ToPath(destination)); !moved) {
    std::error_code ignored;
    fs::remove(*extracted, ignored);
    host.ShowMessage(moved.error().message, MessageIcon::Critical, {});
    return {};
  }
  return {.refresh = false, .removeSelected = false, .newPath = destination};
}

}  // namespace

std::optional<char> ForbiddenNameCharacter(std::string_view name) {
  for (const char c : std::string_view("\\/*?\"<>|"))
    if (name.find(c) != std::string_view::npos) return c;
  return std::nullopt;
}

ListUpdate CopyRom(Host& host, FileOperations& operations, std::string_view place,
                   std::string_view listText, ArchiveExtractor* archive) {
  const std::string extension(FileExtension(listText));
  // A name without an extension would make the pattern "*.", which matches nothing useful.
  const FileFilter filter =
      extension.empty() ? FileFilter{"All files", "*"} : FileFilter{extension, "*." + extension};
  const FileDialog dialog{"Choose the destination file",
                          {filter},
                          archive != nullptr ? PathToUtf8(FolderOf(place)) : std::string(place),
                          std::string(listText)};
  const std::optional<std::string> destination = host.ChooseSaveFile(dialog);
  if (!destination || destination->empty()) return {};

  if (archive != nullptr) return CopyArchiveMember(host, *archive, place, listText, *destination);

  const std::string source = JoinDirName(place, listText);
  if (!CopyBoxCommDialog(host, operations, {source}, *destination, "copy")) return {};
  // A copy made beside the original is a new entry of the list.
  return {.refresh = SameFolder(FolderOf(*destination), Utf8ToPath(place)),
          .removeSelected = false,
          .newPath = *destination};
}

ListUpdate MoveRom(Host& host, FileOperations& operations, std::string_view romDirectory,
                   std::string_view listText) {
  const std::optional<std::string> folder =
      host.ChooseFolder("Choose the destination directory", romDirectory);
  if (!folder || folder->empty()) return {};
  const std::string destination = WithSeparator(*folder) + std::string(listText);
  CopyBoxCommDialog(host, operations, {JoinDirName(romDirectory, listText)}, destination, "move");
  return {.refresh = !SameFolder(Utf8ToPath(*folder), Utf8ToPath(romDirectory)),
          .removeSelected = false,
          .newPath = {}};
}

ListUpdate DeleteRom(Host& host, FileOperations& operations, std::string_view romDirectory,
                     std::string_view listText) {
  const std::string file = JoinDirName(romDirectory, listText);
  CopyBoxCommDialog(host, operations, {file}, {}, "del");
  std::error_code error;
  const bool gone = !fs::exists(fs::symlink_status(Utf8ToPath(file), error));
  return {.refresh = gone, .removeSelected = gone, .newPath = {}};
}

ListUpdate RenameRom(Host& host, FileOperations& operations, std::string_view romDirectory,
                     std::string_view listText) {
  const std::optional<std::string> name =
      host.AskText("Type the new file name", "Rename", listText, false);
  if (!name || name->empty()) return {};
  if (const std::optional<char> forbidden = ForbiddenNameCharacter(*name)) {
    host.ShowMessage(
        std::string("Valid Windows95 filenames can't contain the ") + *forbidden + " character",
        MessageIcon::None, {});
    return {};
  }
  const std::string destination = JoinDirName(romDirectory, *name);
  if (!CopyBoxCommDialog(host, operations, {JoinDirName(romDirectory, listText)}, destination,
                         "ren"))
    return {};
  return {.refresh = true, .removeSelected = false, .newPath = destination};
}

ListUpdate DropOnRomList(Host& host, FileOperations& operations, std::string_view romDirectory,
                         const std::optional<std::vector<std::string>>& dropped) {
  if (!dropped) {
    host.ShowMessage("You can only drop files! Action cancelled.", MessageIcon::None, {});
    return {};
  }
  std::vector<std::string> sources;
  for (const std::string& path : *dropped)
    sources.emplace_back(TrimBlanks(path));
  const std::string_view verb = host.IsShiftHeld() ? "move" : "copy";
  CopyBoxCommDialog(host, operations, sources, romDirectory, verb);
  return {.refresh = true, .removeSelected = false, .newPath = {}};
}

}  // namespace romsteward
