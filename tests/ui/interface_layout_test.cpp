// The window's arrangement: moving and resizing with the right button, saving, loading at
// start, and the lock.
#include <QAction>
#include <QCheckBox>
#include <QContextMenuEvent>
#include <QMenu>
#include <QMenuBar>
#include <QMouseEvent>
#include <QTest>
#include <QToolBar>

#include "core/settings/interface_lock.h"
#include "ui/emulator_tabs.h"
#include "ui/layout/window_layout.h"
#include "ui/main_window.h"
#include "ui/rom_list_view.h"
#include "ui/trash_file_operations.h"
#include "ui_test_support.h"

namespace romsteward::ui::test {

class InterfaceLayoutTest : public QObject {
  Q_OBJECT
private:
  struct Fixture : DemoWindow<> {
    WindowLayout* layout = nullptr;

    // As at start: the arrangement is loaded before the window is shown.
    void Open() {
      layout = new WindowLayout(window, host, sandbox.Settings());
      layout->Load();
      window.show();
      (void)QTest::qWaitForWindowExposed(&window);
      window.Start();
    }
    QWidget* Control(const char* name) { return window.findChild<QWidget*>(name); }
    QAction* Action(const char* name) { return window.findChild<QAction*>(name); }
    std::string Stored(const char* key) {
      return sandbox.Settings().GetSetting(kSectionSettings, key, "<missing>");
    }
  };

  // A right-button drag from `from` (in the widget) by `by`, in two steps. The pointer moves
  // on the screen, not with the control.
  static void RightDrag(QWidget* widget, QPoint from, QPoint by) {
    const QPoint start = widget->mapToGlobal(from);
    const auto send = [widget](QEvent::Type type, QPoint global) {
      const Qt::MouseButtons held =
          type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::MouseButtons(Qt::RightButton);
      QMouseEvent event(type, widget->mapFromGlobal(global), global,
                        type == QEvent::MouseMove ? Qt::NoButton : Qt::RightButton, held,
                        Qt::NoModifier);
      QApplication::sendEvent(widget, &event);
    };
    send(QEvent::MouseButtonPress, start);
    send(QEvent::MouseMove, start + by / 2);
    send(QEvent::MouseMove, start + by);
    send(QEvent::MouseButtonRelease, start + by);
  }

private slots:
  void rightButtonMovesAndResizesAndSaveWritesTheNewRectangle() {
    Fixture f;
    f.Open();
    QCOMPARE(f.Action("mnu_lockcont")->text(), QString("&Lock interface settings..."));
    const QList<QObject*> holders =
        f.window.findChild<QMenu*>("mnu_interface")->menuAction()->associatedObjects();
    QCOMPARE(holders.size(), 1);
    QCOMPARE(qobject_cast<QMenu*>(holders.front())->title(), QString("&Options"));
    QWidget* fm = f.Control("cystfm");
    const QRect before = fm->geometry();
    RightDrag(fm, {5, 5}, {20, -20});
    QCOMPARE(fm->geometry(), before.translated(20, -20));
    // Out of its layout, with a blank holding its old place.
    QVERIFY(f.window.findChild<QWidget*>("cystfm_place"));
    RightDrag(fm, {fm->width() - 2, fm->height() - 2}, {15, 5});
    QCOMPARE(fm->size(), before.size() + QSize(15, 5));
    // A right click without a move still selects in the list.
    RomListView* list = f.window.List();
    RightDrag(list->viewport(), list->visualRect(list->model()->index(2, 0)).center(), {});
    QVERIFY(f.window.Model().Selection() == 2u);
    QVERIFY(!f.window.findChild<QWidget*>("List1_place"));  // and moves nothing

    f.Action("mnu_savcont")->trigger();
    QVERIFY(f.host.shown.empty());
    // Number 23 holds cystfm's rectangle, not cystexclusive's.
    QCOMPARE(f.Stored("X23"), std::to_string(fm->x()));
    QCOMPARE(f.Stored("Y23"), std::to_string(fm->y()));
    QCOMPARE(f.Stored("W23"), std::to_string(fm->width()));
    QCOMPARE(f.Stored("WF"), std::to_string(f.window.width()));
    QCOMPARE(f.Stored("X5"), std::to_string(f.Control("List1")->x()));

    f.Action("mnu_delcont")->trigger();
    QCOMPARE(f.host.shown, std::vector<std::string>{"Please, restart Genesis Romsteward!"});
    QCOMPARE(f.Stored("X23"), std::string("<missing>"));
  }

  void loadAppliesTheStoredKeysAtStart() {
    Fixture f;
    QVERIFY(f.sandbox.Settings().SaveSettings(kSectionSettings, {{"WF", "900"},
                                                                 {"HF", "600"},
                                                                 {"X23", "5"},
                                                                 {"Y23", "7"},
                                                                 {"W23", "120"},
                                                                 {"H23", "22"},
                                                                 {"X5", "3"},
                                                                 {"Y5", "4"}}));
    f.Open();
    QCOMPARE(f.window.size(), QSize(900, 600));
    QCOMPARE(f.Control("cystfm")->geometry(), QRect(5, 7, 120, 22));
    QVERIFY(f.Control("cystexclusive")->pos() != QPoint(5, 7));
    QCOMPARE(f.Control("List1")->pos(), QPoint(3, 4));
  }

  void lockedWindowRefusesDraggingAndOffersTheUnlock() {
    Fixture f;
    RegistryStore& store = f.sandbox.Settings().Store();
    QVERIFY(store.SetValues(kInterfaceLockKey,
                            {{"genmenu", "1"}, {"genpass", "p" + ScramblePassword("pw", 'p')}}));
    f.window.addToolBar("Tools")->setObjectName("toolbar");
    f.Open();
    QVERIFY(!f.window.menuBar()->isEnabled());
    QVERIFY(!f.window.findChild<QToolBar*>("toolbar")->isEnabled());
    QVERIFY(!f.Action("mnu_savcont")->isEnabled());

    QWidget* fm = f.Control("cystfm");
    const QRect before = fm->geometry();
    RightDrag(fm, {5, 5}, {20, -20});
    QCOMPARE(fm->geometry(), before);

    QContextMenuEvent menuEvent(QContextMenuEvent::Mouse, {5, 5}, fm->mapToGlobal(QPoint(5, 5)));
    QApplication::sendEvent(fm, &menuEvent);
    auto* popup = f.window.findChild<QMenu*>("lockedControlMenu");
    QVERIFY(popup);
    QCOMPARE(popup->actions().size(), 1);
    QAction* unlock = popup->actions().front();
    QCOMPARE(unlock->text(), QString("Un&lock interface settings..."));
    f.host.texts.push_back("pw");
    unlock->trigger();
    popup->close();
    QCOMPARE(f.host.shown.back(),
             std::string("Interface settings will be unlocked next time you start Romsteward!"));
    QCOMPARE(unlock->text(), QString("&Lock interface settings..."));
    QVERIFY(!store.HasValue(kInterfaceLockKey, "genpass"));
  }
};

}  // namespace romsteward::ui::test

QTEST_MAIN(romsteward::ui::test::InterfaceLayoutTest)
#include "interface_layout_test.moc"
