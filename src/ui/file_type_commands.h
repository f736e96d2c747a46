#pragma once

#include <span>

#include "core/settings/file_types.h"

class QMenu;
class QWidget;

namespace romsteward::ui {

/// The Options menu's "Register file types" submenu (one item per image type, then all four)
/// and "Remove file-type registration"; the messages appear over `window`.
void AddFileTypeMenu(QMenu* options, QWidget* window);
/// This program becomes the desktop's opener for `types`.
void RegisterFileTypesForThisProgram(QWidget* window, std::span<const FileTypeEntry> types);
/// Takes that registration away again.
void RemoveFileTypeRegistration(QWidget* window);

}  // namespace romsteward::ui
