#include "ui/layout/layout_editor.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QCursor>
#include <QMouseEvent>
#include <QWidget>
#include <algorithm>

#include "ui/layout/layout_controls.h"

namespace romsteward::ui {

namespace {

// The smallest a control can be made, so that it can always be found again.
constexpr int kMinimumSide = 12;

}  // namespace

LayoutEditor::LayoutEditor(QWidget& window, std::function<QWidget*(QWidget*)> controlOf,
                           std::function<void(QPoint)> lockedMenu)
    : QObject(&window),
      m_window(window),
      m_controlOf(std::move(controlOf)),
      m_lockedMenu(std::move(lockedMenu)) {
  // Watching the application sees the inner widgets too (a list's viewport, a tab's page)
  // and widgets added to the window later.
  qApp->installEventFilter(this);
}

bool LayoutEditor::eventFilter(QObject* watched, QEvent* event) {
  const QEvent::Type type = event->type();
  const bool mouse = type == QEvent::MouseButtonPress || type == QEvent::MouseButtonDblClick ||
                     type == QEvent::MouseMove || type == QEvent::MouseButtonRelease;
  if (!mouse && type != QEvent::ContextMenu) return false;
  auto* widget = qobject_cast<QWidget*>(watched);
  if (!widget) return false;
  const bool ours = widget->window() == &m_window;

  if (m_dragging) {  // a drag under way owns the mouse until the right button comes up
    if (!mouse) return ours;
    const auto* drag = static_cast<QMouseEvent*>(event);
    // The button may come up elsewhere (a message box opened by the press): the drag ends.
    if ((type == QEvent::MouseButtonRelease && drag->button() == Qt::RightButton) ||
        (type == QEvent::MouseMove && !(drag->buttons() & Qt::RightButton))) {
      Release();
      return ours;
    }
    if (type == QEvent::MouseMove && ours && m_target) Drag(drag->globalPosition().toPoint());
    return ours;
  }
  if (!ours) return false;
  if (mouse && (m_locked || type == QEvent::MouseMove ||
                static_cast<QMouseEvent*>(event)->button() != Qt::RightButton))
    return false;
  QWidget* control = m_controlOf(widget);
  if (!control) return false;
  if (type == QEvent::ContextMenu) {
    if (m_locked) m_lockedMenu(static_cast<QContextMenuEvent*>(event)->globalPos());
    return true;  // unlocked, the right button belongs to the arrangement
  }
  if (type == QEvent::MouseButtonPress) {
    Press(control, static_cast<QMouseEvent*>(event)->globalPosition().toPoint());
    return false;  // the press still reaches the control: the list selects under the pointer
  }
  return true;  // a right double click or release must not reach the control
}

void LayoutEditor::Press(QWidget* control, QPoint global) {
  m_target = control;
  m_dragging = true;
  m_start = global;
  m_startGeometry = control->geometry();
  m_moved = false;
  const QPoint local = control->mapFromGlobal(global);
  m_resizing = local.x() >= control->width() - kGrip && local.y() >= control->height() - kGrip;
  QApplication::setOverrideCursor(m_resizing ? Qt::SizeFDiagCursor : Qt::SizeAllCursor);
}

void LayoutEditor::Drag(QPoint global) {
  const QPoint delta = global - m_start;
  if (!m_moved) {
    if (delta.manhattanLength() < QApplication::startDragDistance()) return;
    m_moved = true;
    DetachFromLayout(m_target);
  }
  const QWidget* container = m_target->parentWidget();
  QRect geometry = m_startGeometry;
  if (m_resizing) {
    // The lower-right corner follows the pointer, up to the container's edge.
    const int right = std::min(geometry.right() + delta.x(), container->width() - 1);
    const int bottom = std::min(geometry.bottom() + delta.y(), container->height() - 1);
    geometry.setRight(std::max(right, geometry.left() + kMinimumSide - 1));
    geometry.setBottom(std::max(bottom, geometry.top() + kMinimumSide - 1));
  } else {
    // The whole control stays inside its container (its top-left corner, when it is larger).
    const int x =
        std::clamp(geometry.x() + delta.x(), 0, std::max(0, container->width() - geometry.width()));
    const int y = std::clamp(geometry.y() + delta.y(), 0,
                             std::max(0, container->height() - geometry.height()));
    geometry.moveTo(x, y);
  }
  m_target->setGeometry(geometry);
}

void LayoutEditor::Release() {
  m_target = nullptr;
  m_dragging = false;
  QApplication::restoreOverrideCursor();
}

}  // namespace romsteward::ui
