#pragma once

#include <QObject>
#include <QPoint>

#include "core/settings/interface_layout.h"

class QAction;
class QMenu;

namespace romsteward {
class AppSettings;
class Host;
}  // namespace romsteward

namespace romsteward::ui {

class LayoutEditor;
class MainWindow;

/// The window's arrangement and its lock: the Options menu's interface submenu (save
/// `mnu_savcont`, erase `mnu_delcont`, lock or unlock `mnu_lockcont`), moving and resizing
/// controls with the right mouse button, and Load, which applies the stored arrangement at
/// start and puts the lock into force.
class WindowLayout : public QObject {
  Q_OBJECT
public:
  WindowLayout(MainWindow& window, Host& host, AppSettings& settings);

  /// Sizes the window from `WF`/`HF`, places every control that has stored keys (once the
  /// window is shown, when it is not yet) and puts a stored lock into force: no arrangement
  /// editing, no saving or erasing it; with `genmenu` "1" the menu bar and the toolbar are
  /// disabled too. On a locked window the controls' context menu offers the unlock command.
  void Load();

  void Save();        ///< `mnu_savcont`
  void Erase();       ///< `mnu_delcont`
  void ToggleLock();  ///< `mnu_lockcont`

  /// Every control's rectangle and the window's size, as a save writes them.
  LayoutSnapshot Snapshot() const;

protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

private:
  void AddMenu();
  void Apply();
  void ShowLockedMenu(QPoint global);
  void ShowLockCaption();
  QWidget* ControlOf(QWidget* widget) const;

  MainWindow& m_window;
  Host& m_host;
  AppSettings& m_settings;
  LayoutEditor* m_editor = nullptr;
  QAction* m_save = nullptr;
  QAction* m_erase = nullptr;
  QAction* m_lock = nullptr;
  StoredLayout m_stored;
  bool m_menusLocked = false;
};

}  // namespace romsteward::ui
