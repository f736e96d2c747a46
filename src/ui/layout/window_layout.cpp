#include "ui/layout/window_layout.h"

#include <QAction>
#include <QEvent>
#include <QMenu>
#include <QMenuBar>
#include <QToolBar>
#include <algorithm>
#include <vector>

#include "core/settings/app_settings.h"
#include "core/settings/interface_lock.h"
#include "ui/layout/layout_controls.h"
#include "ui/layout/layout_editor.h"
#include "ui/main_window.h"
#include "ui/qt_text.h"

namespace romsteward::ui {

WindowLayout::WindowLayout(MainWindow& window, Host& host, AppSettings& settings)
    : QObject(&window), m_window(window), m_host(host), m_settings(settings) {
  setObjectName("windowLayout");
  m_editor = new LayoutEditor(
      window, [this](QWidget* widget) { return ControlOf(widget); },
      [this](QPoint global) { ShowLockedMenu(global); });
  AddMenu();
}

void WindowLayout::AddMenu() {
  auto* menu = new QMenu("&Interface settings", &m_window);
  menu->setObjectName("mnu_interface");
  m_save = menu->addAction("&Save interface settings");
  m_save->setObjectName("mnu_savcont");
  m_erase = menu->addAction("&Erase interface settings");
  m_erase->setObjectName("mnu_delcont");
  menu->addSeparator();
  m_lock = menu->addAction(QString());
  m_lock->setObjectName("mnu_lockcont");
  connect(m_save, &QAction::triggered, this, &WindowLayout::Save);
  connect(m_erase, &QAction::triggered, this, &WindowLayout::Erase);
  connect(m_lock, &QAction::triggered, this, &WindowLayout::ToggleLock);
  ShowLockCaption();

  // In the Options menu, before the file-type registration (or last when that is gone).
  const QList<QMenu*> menus = m_window.findChildren<QMenu*>();
  const auto options = std::find_if(menus.begin(), menus.end(), [](const QMenu* each) {
    return each->title() == QStringLiteral("&Options");
  });
  if (options == menus.end()) return;
  const QList<QAction*> items = (*options)->actions();
  const auto before = std::find_if(items.begin(), items.end(), [](const QAction* item) {
    return item->objectName() == QStringLiteral("mnu_regtypes");
  });
  QAction* const place = before == items.end() ? nullptr : *before;
  (*options)->insertMenu(place, menu);
  (*options)->insertSeparator(place);
}

void WindowLayout::Load() {
  const InterfaceLock lock = ReadInterfaceLock(m_settings.Store());
  m_editor->SetLocked(lock.locked);
  m_menusLocked = lock.menusLocked;
  m_stored = ReadInterfaceLayout(m_settings);
  if (m_stored.windowWidth || m_stored.windowHeight) {
    m_window.resize(m_stored.windowWidth.value_or(m_window.width()),
                    m_stored.windowHeight.value_or(m_window.height()));
  }
  ShowLockCaption();
  // The controls' places are only known once the window's layouts have run.
  if (m_window.isVisible()) {
    Apply();
  } else {
    m_window.installEventFilter(this);
  }
}

bool WindowLayout::eventFilter(QObject* watched, QEvent* event) {
  if (watched == &m_window && event->type() == QEvent::Show) {
    m_window.removeEventFilter(this);
    Apply();
  }
  return false;
}

void WindowLayout::Apply() {
  SettleHiddenPages(&m_window);
  for (const auto& [name, stored] : m_stored.controls) {
    QWidget* control = LayoutWidget(m_window, name);
    if (!control) continue;
    const QRect now = control->geometry();
    const QRect wanted(stored.x.value_or(now.x()), stored.y.value_or(now.y()),
                       stored.width.value_or(now.width()), stored.height.value_or(now.height()));
    // A control where its layout puts it anyway stays in the layout and follows the window.
    if (wanted == now) continue;
    DetachFromLayout(control);
    control->setGeometry(wanted);
  }
  const bool locked = m_editor->Locked();
  m_save->setEnabled(!locked);
  m_erase->setEnabled(!locked);  // erasing would undo the locked arrangement at the next start
  if (m_menusLocked) {
    m_window.menuBar()->setEnabled(false);
    // The toolbar may come later than the menus; it is looked for now, by name.
    if (auto* toolbar = m_window.findChild<QToolBar*>("toolbar")) toolbar->setEnabled(false);
  }
}

void WindowLayout::Save() {
  SaveInterfaceLayout(m_host, m_settings, Snapshot());
}

void WindowLayout::Erase() {
  EraseInterfaceLayout(m_host, m_settings);
}

void WindowLayout::ToggleLock() {
  ToggleInterfaceLock(m_host, m_settings.Store());
  ShowLockCaption();
}

LayoutSnapshot WindowLayout::Snapshot() const {
  SettleHiddenPages(&m_window);
  LayoutSnapshot snapshot{{}, m_window.width(), m_window.height()};
  for (const LayoutControl& control : kLayoutControls) {
    if (const QWidget* widget = LayoutWidget(m_window, control.name)) {
      const QRect rect = widget->geometry();
      snapshot.controls[std::string(control.name)] = {rect.x(), rect.y(), rect.width(),
                                                      rect.height()};
    }
  }
  return snapshot;
}

void WindowLayout::ShowLockCaption() {
  // The caption follows the stored lock, so it always names what a click does.
  const bool locked = ReadInterfaceLock(m_settings.Store()).locked;
  m_lock->setText(ToQt(locked ? kUnlockCaption : kLockCaption));
}

void WindowLayout::ShowLockedMenu(QPoint global) {
  auto* popup = new QMenu(&m_window);
  popup->setObjectName("lockedControlMenu");
  popup->setAttribute(Qt::WA_DeleteOnClose);
  popup->addAction(m_lock);
  popup->popup(global);
}

QWidget* WindowLayout::ControlOf(QWidget* widget) const {
  // Looked up at each right click: buttons such as "Run this game!" come after the menus.
  std::vector<const QWidget*> controls;
  for (const LayoutControl& control : kLayoutControls)
    controls.push_back(LayoutWidget(m_window, control.name));
  for (QWidget* w = widget; w && w != &m_window; w = w->parentWidget()) {
    if (std::find(controls.begin(), controls.end(), w) != controls.end()) return w;
  }
  return nullptr;
}

}  // namespace romsteward::ui
