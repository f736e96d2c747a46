#include "ui/screen_place.h"

#include <QGuiApplication>
#include <QScreen>
#include <QStyle>
#include <QWidget>
#include <algorithm>

namespace romsteward::ui {

namespace {

constexpr int kAssumedBorder = 4;

}  // namespace

QRect FitInside(QRect frame, const QRect& area) {
  frame.setSize(frame.size().boundedTo(area.size()));
  frame.moveLeft(std::clamp(frame.left(), area.left(), area.right() - frame.width() + 1));
  frame.moveTop(std::clamp(frame.top(), area.top(), area.bottom() - frame.height() + 1));
  return frame;
}

QScreen* ScreenFor(const QWidget& window, QPoint point) {
  if (QScreen* screen = QGuiApplication::screenAt(point)) return screen;
  if (QScreen* screen = window.screen()) return screen;
  return QGuiApplication::primaryScreen();
}

QMargins FrameMargins(const QWidget& window) {
  const QRect frame = window.frameGeometry();
  const QRect inner = window.geometry();
  if (frame != inner) {
    return {inner.left() - frame.left(), inner.top() - frame.top(), frame.right() - inner.right(),
            frame.bottom() - inner.bottom()};
  }
  const int title = window.style()->pixelMetric(QStyle::PM_TitleBarHeight);
  return {kAssumedBorder, title + kAssumedBorder, kAssumedBorder, kAssumedBorder};
}

void PlaceOnScreen(QWidget& window, QPoint wanted, const QScreen* screen) {
  if (!screen) screen = ScreenFor(window, wanted);
  if (!screen) {
    window.move(wanted);
    return;
  }
  const QMargins margins = FrameMargins(window);
  const QRect frame(wanted, window.size().grownBy(margins));
  const QRect fitted = FitInside(frame, screen->availableGeometry());
  if (fitted.size() != frame.size()) window.resize(fitted.size().shrunkBy(margins));
  window.move(fitted.topLeft());
}

}  // namespace romsteward::ui
