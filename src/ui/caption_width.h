#pragma once

class QDialog;
class QString;

namespace romsteward::ui {

/// The width a title bar needs to show `title` whole beside the window system's buttons.
int CaptionWidth(const QString& title);

/// Makes `dialog` at least as wide as its caption needs, so that no window manager cuts it
/// ("Select split s..."). Call once its layout is set.
void WidenToCaption(QDialog& dialog);

}  // namespace romsteward::ui
