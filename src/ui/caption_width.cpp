#include "ui/caption_width.h"

#include <QApplication>
#include <QBoxLayout>
#include <QDialog>
#include <QFontMetrics>

namespace romsteward::ui {

namespace {

// Window managers centre the caption, so the room of the buttons (the window menu, minimize,
// maximize, close, with their padding) counts on both sides.
constexpr int kTitleBarSides = 2 * 104;

}  // namespace

int CaptionWidth(const QString& title) {
  // Title bars commonly draw in bold.
  QFont font = QApplication::font("QMdiSubWindowTitleBar");
  font.setBold(true);
  return QFontMetrics(font).horizontalAdvance(title) + kTitleBarSides;
}

void WidenToCaption(QDialog& dialog) {
  const int width = CaptionWidth(dialog.windowTitle());
  // A box layout sizes the dialog, a fixed-size one included: a strut widens it from within.
  if (auto* box = qobject_cast<QVBoxLayout*>(dialog.layout())) {
    box->addStrut(width);
  } else {
    dialog.setMinimumWidth(std::max(dialog.minimumWidth(), width));
  }
}

}  // namespace romsteward::ui
