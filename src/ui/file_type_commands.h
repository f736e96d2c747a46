#pragma once

class QWidget;

namespace romsteward::ui {

/// "Register file types" of the Options menu: this program opens the four image types.
void RegisterFileTypesForThisProgram(QWidget* parent);
/// Takes that registration away again.
void RemoveFileTypeRegistration(QWidget* parent);

}  // namespace romsteward::ui
