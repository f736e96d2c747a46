#pragma once

#include "core/tools/file_system_operations.h"

namespace romsteward::ui {

/// The desktop's file operations: a delete marked for the trash goes to the freedesktop
/// trash (after the question a file manager would ask); everything else, a permanent delete
/// included, is the file system's own.
class TrashFileOperations : public FileOperations {
public:
  FileOperationResult Run(const FileOperationRequest& request, Host& host) override;

private:
  FileSystemOperations m_fileSystem;
};

}  // namespace romsteward::ui
