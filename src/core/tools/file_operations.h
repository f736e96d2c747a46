#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/host/host.h"

namespace romsteward {

/// The four things the file commands do to image files.
enum class FileVerb { Copy, Delete, Move, Rename };

/// "copy", "del", "move" or "ren" in any letter case; any other word is no operation.
std::optional<FileVerb> ParseFileVerb(std::string_view verb);

/// "Copying a to b", "Deleting a", "Moving a to b", "Renaming a to b": the title of the
/// operation's progress.
std::string DescribeFileOperation(FileVerb verb, std::string_view source,
                                  std::string_view destination);

/// One request to the file operations.
struct FileOperationRequest {
  FileVerb verb = FileVerb::Copy;
  std::vector<std::filesystem::path> sources;
  /// The target file, or a folder that takes each source under its own name. Empty for
  /// Delete.
  std::filesystem::path destination;
  /// Delete only: into the trash, so the user can take it back; false when Shift was held.
  bool toTrash = false;
  std::string description;
};

/// What went wrong, in the classes the messages tell apart.
enum class FileOpCode {
  Ok,
  WriteError,    ///< the disk is full or refused a write ("Error writing to disc!")
  Cancelled,     ///< the user stopped it: a cancelled progress, a No to replacing or deleting
  AccessDenied,  ///< no permission to read the source or change the target
  TargetExists,  ///< the target exists and cannot be replaced (a folder, or a rename)
  SameFile,      ///< source and target are the same file
  NotFound,      ///< the source is missing or is not a file
  Failed,        ///< anything else the system refused
};

struct FileOperationResult {
  FileOpCode code = FileOpCode::Ok;
  /// Stopped part way by the user rather than by the system.
  bool aborted = false;
  /// The source being worked on when it stopped.
  std::filesystem::path failedSource;
  /// The system's own words, for logs and the terminal.
  std::string reason;

  bool ok() const { return code == FileOpCode::Ok; }
};

/// The copy, move, rename and delete underneath the file commands. The core supplies a
/// file-system implementation (FileSystemOperations); the desktop program supplies its own
/// for delete, with the desktop's trash. An implementation asks through `host` before it
/// replaces or deletes a file, shows progress for long copies, and never leaves a partial
/// target behind, cancelled or failed.
class FileOperations {
public:
  virtual ~FileOperations() = default;
  virtual FileOperationResult Run(const FileOperationRequest& request, Host& host) = 0;
};

/// The one routine behind every file command (`CopyBoxCommDialog`): turns `verb` into a
/// request (an unknown verb does nothing), refuses a move onto itself or into a folder the
/// source already lies in (silently), marks a delete for the trash unless Shift is held,
/// runs it and shows the messages of a failure. True on success.
bool CopyBoxCommDialog(Host& host, FileOperations& operations,
                       const std::vector<std::string>& sources, std::string_view destination,
                       std::string_view verb);

}  // namespace romsteward
