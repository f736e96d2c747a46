#pragma once

#include <QMargins>
#include <QPoint>
#include <QRect>

class QScreen;
class QWidget;

namespace romsteward::ui {

/// `frame` made no larger than `area` and moved the least it takes to lie inside it.
QRect FitInside(QRect frame, const QRect& area);

/// The screen that holds `point`, else the one `window` is on, else the primary one.
QScreen* ScreenFor(const QWidget& window, QPoint point);

/// The title bar and borders around `window`; before the window system has framed it
/// (before its first show) a title bar and thin borders are assumed.
QMargins FrameMargins(const QWidget& window);

/// Puts the top-left corner of `window`'s frame at `wanted`, or as near to it as keeps the
/// whole window on `screen` (by default the one that holds `wanted`), shrinking a window
/// that is larger than the screen.
void PlaceOnScreen(QWidget& window, QPoint wanted, const QScreen* screen = nullptr);

}  // namespace romsteward::ui
