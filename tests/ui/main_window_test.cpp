// The window shows what the app model says and hands clicks and keys to its commands.
#include "ui/main_window.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QSignalSpy>
#include <QSlider>
#include <QTest>
#include <fstream>
#include <set>

#include "core/host/app_title.h"
#include "core/launch/option_controls.h"
#include "ui/emulator_tabs.h"
#include "ui/qt_text.h"
#include "ui/rom_list_view.h"
#include "ui/trash_file_operations.h"
#include "ui_test_support.h"

namespace romsteward::ui::test {

class MainWindowTest : public QObject {
  Q_OBJECT
private:
  struct Fixture : DemoWindow<> {
    Fixture() {
      window.show();
      window.activateWindow();
      (void)QTest::qWaitForWindowActive(&window);
      window.Start();
    }
    MainWindowModel& model() { return window.Model(); }
    void Click(int row) {
      RomListView* list = window.List();
      const QRect rect = list->visualRect(list->model()->index(row, 0));
      QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, rect.center());
    }
  };

  // Every bound menu item says what its model control says.
  static void VerifyMenus(Fixture& f) {
    for (const std::string& name : f.model().Controls().Names()) {
      QAction* action = f.window.Action(name);
      if (!action) continue;
      const ControlState& state = f.model().Controls()[name];
      QVERIFY2(action->isVisible() == state.visible, name.c_str());
      // Qt reports a hidden action as disabled.
      QVERIFY2(action->isEnabled() == (state.enabled && state.visible), name.c_str());
      if (action->isCheckable()) QVERIFY2(action->isChecked() == state.checked, name.c_str());
    }
  }

private slots:
  void EachLayoutIsShownAsTheModelSaysIt() {
    Fixture f;
    const int rows = f.window.List()->model()->rowCount();
    QVERIFY(rows >= 6);
    QVERIFY(f.host.shown.empty());
    QCOMPARE(f.window.Field("txtFiles")->text(), ToQt(f.model().Texts().txtFiles));
    for (int row = 0; row < rows; ++row) {
      f.Click(row);
      QCOMPARE(f.model().Selection(), std::optional<std::size_t>(row));
      const WindowTexts& texts = f.model().Texts();
      QCOMPARE(f.window.windowTitle(), ToQt(texts.caption));
      QVERIFY(f.window.windowTitle().startsWith(ToQt(kAppTitle)));
      QCOMPARE(f.window.Field("txtTipo")->text(), ToQt(texts.txtTipo));
      QCOMPARE(f.window.Field("txtbits")->text(), ToQt(texts.txtbits));
      QCOMPARE(f.window.Field("txtRAM")->text(), ToQt(texts.txtRAM));
      QCOMPARE(f.window.Field("txtarquivo")->text(), ToQt(texts.txtarquivo));
      QCOMPARE(f.window.SavedGames()->count(), static_cast<int>(texts.cmbSave.size()));
      QCOMPARE(f.window.Country()->currentText(), ToQt(texts.cmbCartLang.front()));
      QCOMPARE(f.window.Country()->isEnabled(), f.model().Controls()["cmbCartLang"].enabled);
      QCOMPARE(f.window.findChild<QPushButton*>("cmdDeletaSave")->isEnabled(),
               f.model().Controls()["cmdDeletaSave"].enabled);
      VerifyMenus(f);
      const QString tip = f.window.List()->model()->index(row, 0).data(Qt::ToolTipRole).toString();
      QCOMPARE(tip, ToQt(f.model().Entries()[static_cast<std::size_t>(row)]));
    }
  }

  // The list never shows one thing selected while the panel and the commands act on another.
  void TheListThePanelAndTheCommandsAgreeOnTheSelection() {
    Fixture f;
    RomListView* list = f.window.List();
    const auto shown = [&] {
      const QModelIndexList rows = list->selectionModel()->selectedRows();
      return rows.size() == 1 ? std::optional<std::size_t>(rows[0].row()) : std::nullopt;
    };
    const auto verifyNothingToActOn = [&] {
      QCOMPARE(shown(), std::nullopt);
      QCOMPARE(f.window.windowTitle(), QString("Genesis Romsteward"));
      QCOMPARE(f.window.Field("txtTipo")->text(), QString());
      QCOMPARE(f.window.Action("mnu_file")->text(), QString("Select a file!"));
      QVERIFY(!f.window.Action("mnu_file")->isEnabled());
      QVERIFY(!f.window.findChild<QCheckBox*>("chkIPS")->isChecked());
      VerifyMenus(f);
    };
    verifyNothingToActOn();  // the place opened at start selects nothing
    // The first key that moves selects the first entry, as it looks current to nobody.
    list->setFocus();
    QTest::keyClick(list, Qt::Key_Down);
    QCOMPARE(shown(), std::optional<std::size_t>(0));
    QCOMPARE(f.model().Selection(), std::optional<std::size_t>(0));

    f.Click(1);
    QCOMPARE(shown(), std::optional<std::size_t>(1));
    const int rows = list->model()->rowCount();
    const QRect last = list->visualRect(list->model()->index(rows - 1, 0));
    const QPoint blank(last.center().x(), last.bottom() + 2 * last.height());
    QVERIFY(list->viewport()->rect().contains(blank));
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, blank);
    QCOMPARE(shown(), std::optional<std::size_t>(1));
    QCOMPARE(f.model().Selection(), std::optional<std::size_t>(1));
    const QRect second = list->visualRect(list->model()->index(1, 0));
    QTest::mouseClick(list->viewport(), Qt::LeftButton, Qt::ControlModifier, second.center());
    QCOMPARE(shown(), std::optional<std::size_t>(1));
    QVERIFY(f.window.Action("mnu_file")->isEnabled());

    // Another place where the name is not listed: nothing of the old entry stays.
    const QString other = f.sandbox.Path("other");
    QVERIFY(QDir().mkpath(other));
    std::ofstream((other + "/Other.bin").toStdString()) << "no image";
    f.model().SetDiret(other.toStdString());
    f.window.Render();
    verifyNothingToActOn();
  }

  void MenuItemsAndKeysReachTheirCommands() {
    Fixture f;
    const int romFiles = f.window.List()->model()->rowCount();
    f.window.Action("mnu_showsub(0)")->trigger();
    QCOMPARE(f.model().Filter(), ListFilter::AllFiles);
    QVERIFY(f.window.Action("mnu_showsub(0)")->isChecked());
    QVERIFY(!f.window.Action("mnu_showsub(1)")->isChecked());
    const int allFiles = f.window.List()->model()->rowCount();
    QVERIFY(allFiles > romFiles);  // notes.txt and the later split volumes

    // F5 rescans the place.
    std::ofstream(f.sandbox.Path("demo/Zebra.bin").toStdString()) << "new";
    QTest::keyClick(&f.window, Qt::Key_F5);
    QCOMPARE(f.window.List()->model()->rowCount(), allFiles + 1);

    // The right button selects first; Enter asks for a launch.
    RomListView* list = f.window.List();
    const QRect second = list->visualRect(list->model()->index(1, 0));
    QTest::mouseClick(list->viewport(), Qt::RightButton, {}, second.center());
    QCOMPARE(f.model().Selection(), std::optional<std::size_t>(1));
    QSignalSpy launches(&f.window, &MainWindow::launchRequested);
    QTest::keyClick(list, Qt::Key_Return);
    QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, second.center());
    QCOMPARE(launches.count(), 2);

    // Options: a check box goes through the model's rules, the menu checks are the model's.
    f.window.Tabs()->Check("Check4")->click();
    QVERIFY(f.model().Options().fakeZ80);
    QVERIFY(!f.model().Options().enableZ80);
    QVERIFY(!f.window.Tabs()->Check("Check3")->isChecked());
    f.window.Action("mnu_save")->trigger();
    QVERIFY(f.window.Action("mnu_save")->isChecked());
    QCOMPARE(f.sandbox.Settings().GetSetting(kSectionSettings, "savex"), "True");
    f.window.Tabs()->setCurrentIndex(kTabKGen);
    QCOMPARE(f.model().Options().preferredEmulator, static_cast<int>(kTabKGen));

    f.window.findChild<QPushButton*>("CmdForce")->click();
    QCOMPARE(f.window.Country()->count(), 3);
    f.window.Country()->setCurrentIndex(1);
    QCOMPARE(f.model().CountryText(), "Europe");

    // Renaming from the file menu: the list follows.
    f.Click(0);
    f.host.texts.push_back("Renamed.bin");
    f.window.Action("mnu_ren")->trigger();
    QCOMPARE(f.model().SelectedText(), std::string("Renamed.bin"));
    QCOMPARE(list->currentIndex().data().toString(), QString("Renamed.bin"));
    QVERIFY(list->selectionModel()->isSelected(list->currentIndex()));
  }

  // Each option control changes one option of its own, and Load shows it back.
  void EveryOptionControlIsBoundToItsOwnOption() {
    Fixture f;
    const auto stored = [&f] {
      std::vector<std::string> values;
      for (std::string_view key : OptionKeys())
        values.push_back(*OptionText(f.model().Options(), key));
      return values;
    };
    std::set<std::size_t> changedKeys;
    const QList<QCheckBox*> boxes = f.window.Tabs()->findChildren<QCheckBox*>();
    QCOMPARE(boxes.size(), 22);  // 17 on the classic tabs, 2 on BlastEm, 3 on Mednafen
    for (QCheckBox* box : boxes) {
      // Its caption and tooltip come from the core's table of controls, found by its name.
      const OptionControl* control = FindOptionControl(box->objectName().toStdString());
      QVERIFY2(control, qPrintable(box->objectName()));
      QCOMPARE(box->text(), ToQt(control->caption));
      QCOMPARE(box->toolTip(), ToQt(control->tooltip));
      const std::vector<std::string> before = stored();
      box->click();
      const std::vector<std::string> after = stored();
      std::size_t changed = 0;
      for (std::size_t i = 0; i < before.size(); ++i) {
        if (before[i] != after[i] && changedKeys.insert(i).second) ++changed;
      }
      QVERIFY2(changed >= 1, qPrintable(box->objectName()));
    }
    f.window.Tabs()->GenSlider()->setValue(7);
    f.window.Tabs()->KSlider()->setValue(9);
    f.window.Tabs()->SoundRate()->setCurrentIndex(0);
    QCOMPARE(f.model().Options().genFrameSkip, 7);
    QCOMPARE(f.model().Options().kgenFrameSkip, 9);
    QCOMPARE(f.model().Options().cystSoundRate, 0);

    f.model().Options() = EmulatorOptions{};
    f.window.Render();
    QVERIFY(f.window.Tabs()->Check("Check1")->isChecked());
    QCOMPARE(f.window.Tabs()->GenSlider()->value(), 2);
    QCOMPARE(f.window.Tabs()->SoundRate()->currentIndex(), 2);
  }

  // Grown (maximized), the panel fills the window: its rows reach the bottom, its boxes the
  // right edge, and the tabs take the height.
  void ThePanelGrowsWithTheWindow() {
    Fixture f;
    const int tabsBefore = f.window.Tabs()->height();
    f.window.resize(1600, 1000);
    const auto edge = [&f](const char* name) {
      const auto* control = f.window.findChild<QWidget*>(name);
      return control->mapTo(&f.window, QPoint(control->width(), control->height()));
    };
    QTRY_VERIFY(f.window.height() - edge("Picture5").y() < 20);
    QVERIFY(f.window.width() - edge("Picture1").x() < 20);
    QVERIFY(f.window.width() - edge("Picture2").x() < 20);
    QVERIFY(f.window.Tabs()->height() > tabsBefore + 400);
  }

  void ClosingSavesThePosition() {
    Fixture f;
    f.window.move(40, 50);
    f.window.close();
    QVERIFY(!f.sandbox.Settings().GetSetting(kSectionSettings, "LaunchX").empty());
  }
};

}  // namespace romsteward::ui::test

QTEST_MAIN(romsteward::ui::test::MainWindowTest)
#include "main_window_test.moc"
