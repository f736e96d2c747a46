#pragma once

#include <string_view>

class QWidget;

namespace romsteward::ui {

class MainWindow;

/// The widget that stands for a numbered control of the arrangement, or nullptr when the
/// window has none. Buttons, the list and the check boxes are themselves; the frame-skip
/// sliders are their rows (the slider with its "Display every N th frame" labels); the four
/// panels are the window's own: Picture1 "ROM information", Picture2 the emulator tab strip,
/// Picture3 the country and command-line rows, Picture5 the row of "Run this game!".
QWidget* LayoutWidget(const MainWindow& window, std::string_view name);

/// Takes `control` out of its layout manager so that it keeps its place whatever the layout
/// does; a blank of the control's size stays behind, so the other controls keep theirs.
void DetachFromLayout(QWidget* control);

/// Gives the pages of tab strips that are not shown the size and arrangement they would have,
/// so that every control's geometry is current before it is read or compared.
void SettleHiddenPages(QWidget* root);

}  // namespace romsteward::ui
