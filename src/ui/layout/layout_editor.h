#pragma once

#include <QObject>
#include <QPoint>
#include <QPointer>
#include <QRect>
#include <functional>

class QWidget;

namespace romsteward::ui {

/// Moving and resizing the window's controls with the right mouse button: pressed on a
/// control it drags the control, pressed near its lower-right corner it resizes it. The
/// control leaves its layout at the first move and stays inside its container. While locked
/// the right button does what it always does, and a control's context menu is handed to
/// `lockedMenu` instead (the way back in). Watches every widget of `window`.
class LayoutEditor : public QObject {
  Q_OBJECT
public:
  /// `controlOf` gives the control a widget belongs to (itself or an ancestor), or nullptr.
  LayoutEditor(QWidget& window, std::function<QWidget*(QWidget*)> controlOf,
               std::function<void(QPoint)> lockedMenu);

  void SetLocked(bool locked) { m_locked = locked; }
  bool Locked() const { return m_locked; }

  /// How far from the lower-right corner a press resizes instead of moving.
  static constexpr int kGrip = 8;

protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

private:
  void Press(QWidget* control, QPoint global);
  void Drag(QPoint global);
  void Release();

  QWidget& m_window;
  std::function<QWidget*(QWidget*)> m_controlOf;
  std::function<void(QPoint)> m_lockedMenu;
  bool m_locked = false;
  QPointer<QWidget> m_target;
  QPoint m_start;
  QRect m_startGeometry;
  bool m_dragging = false;
  bool m_resizing = false;
  bool m_moved = false;
};

}  // namespace romsteward::ui
