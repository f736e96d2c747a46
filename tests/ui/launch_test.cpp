// Launches from the window run through QProcess: the window keeps working while the emulator
// runs, the saved games are read again after it, and the favorites menu reaches its commands.
#include <signal.h>
#include <unistd.h>

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QKeySequence>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>
#include <chrono>
#include <functional>
#include <memory>

#include "core/app/launch_command.h"
#include "core/launch/saved_games.h"
#include "core/settings/app_settings.h"
#include "ui/favorites_menu.h"
#include "ui/layout/window_layout.h"
#include "ui/main_window.h"
#include "ui/qt_launcher.h"
#include "ui/qt_text.h"
#include "ui/rom_list_view.h"
#include "ui/trash_file_operations.h"
#include "ui_test_support.h"

namespace romsteward::ui::test {

class LaunchTest : public QObject {
  Q_OBJECT
private:
  struct Fixture {
    Sandbox sandbox;
    RecordingHost host;
    TrashFileOperations operations;
    std::unique_ptr<MainWindow> window;
    QtLauncher* launcher = nullptr;
    FavoritesMenu* favorites = nullptr;

    Fixture() {
      // The fake emulator leaves a GenEm state beside every file it is given, and takes a
      // while, as a game would.
      const QString script = sandbox.Path("fake-emulator");
      QFile file(script);
      if (file.open(QIODevice::WriteOnly)) {
        file.write(
            "#!/bin/sh\nfor a in \"$@\"; do\n"
            "  if [ -f \"$a\" ]; then : > \"${a%.*}.sav\"; fi\ndone\nsleep 0.4\n");
        file.close();
      }
      file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
      for (const char* key : {"Genem", "KGen", "Genecyst"})
        (void)sandbox.Settings().SaveSetting(kSectionSettings, key, FromQt(script));
      window = std::make_unique<MainWindow>(host, sandbox.Settings(), operations);
      launcher = new QtLauncher(*window, host, sandbox.Settings());
      launcher->Connect();
      window->Model().LoadFavoritesMenu();
      favorites = new FavoritesMenu(*window);
      window->InsertMenu(favorites);
      window->show();
      window->Start();
    }
    // Selects the first plain image of the demo collection.
    bool SelectImage() {
      RomListView* list = window->List();
      for (int row = 0; row < list->model()->rowCount(); ++row) {
        const QModelIndex index = list->model()->index(row, 0);
        if (!index.data().toString().endsWith(".bin", Qt::CaseInsensitive)) continue;
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, list->visualRect(index).center());
        return window->Model().Selection() == std::optional<std::size_t>(row);
      }
      return false;
    }
    QPushButton* RunButton() const { return window->findChild<QPushButton*>("CmdLaunch"); }
    // Replaces the fake emulator's script; "$pid" and "$helper" name files in the sandbox.
    void UseEmulator(const QString& body) {
      QFile file(sandbox.Path("fake-emulator"));
      QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
      file.write(("#!/bin/sh\npid='" + sandbox.Path("pid") + "'\nhelper='" +
                  sandbox.Path("helper") + "'\necho $$ > \"$pid\"\n" + body + "\n")
                     .toUtf8());
    }
    // The pid the script wrote to `name`, once it has; 0 when it never did.
    pid_t PidIn(const char* name) {
      QFile file(sandbox.Path(name));
      QElapsedTimer clock;
      clock.start();
      while (clock.elapsed() < 10000) {
        if (file.open(QIODevice::ReadOnly)) {
          if (const int pid = file.readAll().trimmed().toInt(); pid > 0) return pid;
          file.close();
        }
        QTest::qWait(20);
      }
      return 0;
    }
  };

  static bool Gone(pid_t pid) {
    QFile stat(QStringLiteral("/proc/%1/stat").arg(pid));
    return !stat.open(QIODevice::ReadOnly) || stat.readAll().contains(") Z ");
  }

private slots:
  void TheWindowKeepsWorkingWhileTheEmulatorRuns() {
    Fixture f;
    QVERIFY(f.SelectImage());
    QCOMPARE(f.window->SavedGames()->itemText(0), ToQt(kNoSavedGames));
    QVERIFY(f.RunButton() && f.RunButton()->isEnabled());

    QSignalSpy finished(f.launcher, &QtLauncher::launchFinished);
    int ticks = 0;
    QTimer ticker;
    connect(&ticker, &QTimer::timeout, [&ticks] { ++ticks; });
    ticker.start(10);
    QTest::mouseClick(f.RunButton(), Qt::LeftButton);
    QCOMPARE(f.launcher->Running(), 1);

    // A second launch while the first runs asks first; No leaves it at one.
    QTest::mouseClick(f.RunButton(), Qt::LeftButton);
    QCOMPARE(f.host.shown.back(), std::string(kEmulatorRunning));
    QCOMPARE(f.launcher->Running(), 1);

    QVERIFY(finished.wait(10000));
    QCOMPARE(f.launcher->Running(), 0);
    QVERIFY2(ticks > 5, "the event loop stood still during the run");
    QCOMPARE(f.window->SavedGames()->itemText(0), ToQt(kGenEmState));
  }

  // An emulator that ran and failed is no failed start: our own note says how it ended, and
  // what it saved is listed all the same.
  void AnEmulatorEndingBadlyGetsOurNoteAndItsSavedGamesListed() {
    Fixture f;
    f.UseEmulator(
        "for a in \"$@\"; do if [ -f \"$a\" ]; then : > \"${a%.*}.sav\"; fi; done\n"
        "echo 'bad dump' >&2\nexit 2");
    QVERIFY(f.SelectImage());
    QSignalSpy finished(f.launcher, &QtLauncher::launchFinished);
    QTest::mouseClick(f.RunButton(), Qt::LeftButton);
    QVERIFY(finished.wait(10000));
    QCOMPARE(f.window->SavedGames()->itemText(0), ToQt(kGenEmState));
    QCOMPARE(f.host.shown.size(), std::size_t{1});
    const QString note = ToQt(f.host.shown.back());
    QVERIFY2(note.startsWith(ToQt(kEndedBadlyPrefix)), qPrintable(note));
    QVERIFY(note.contains("exit status 2") && note.contains("bad dump"));
    QVERIFY(!note.contains(ToQt(kErrorRunningEmulator)));
  }

  // Options > Emulator runners: each DOS emulator's runner, an installed one offered.
  void TheRunnerMenuSetsEachDosEmulatorsRunner() {
    Fixture f;
    const QString bin = f.sandbox.Path("bin");
    QVERIFY(QDir().mkpath(bin));
    QFile dosbox(bin + "/dosbox");
    QVERIFY(dosbox.open(QIODevice::WriteOnly));
    dosbox.close();
    const QByteArray path = qgetenv("PATH");
    qputenv("PATH", bin.toUtf8() + ":" + path);
    auto* genEm = f.window->findChild<QMenu*>("mnu_runGenEm");
    QVERIFY(genEm && f.window->findChild<QMenu*>("mnu_runKGen"));
    QVERIFY(!f.window->findChild<QMenu*>("mnu_runBlastEm"));
    auto* runners = f.window->findChild<QAction*>("mnu_runners");
    QVERIFY(runners && runners->menu() && runners->menu()->actions().contains(genEm->menuAction()));
    const auto item = [genEm](const char* name) {
      emit genEm->aboutToShow();
      return genEm->findChild<QAction*>(QStringLiteral("mnu_runGenEm_") + name);
    };
    const auto stored = [&f] {
      return f.sandbox.Settings().GetSetting(kSectionSettings, "Genemrun");
    };
    QVERIFY(item("none")->isChecked());
    QVERIFY(item("dosbox")->isEnabled());
    item("dosbox")->trigger();
    QCOMPARE(stored(), std::string("dosbox -exit"));
    QVERIFY(item("dosbox")->isChecked());
    f.host.texts.push_back(std::string("\"/opt/my wine/wine\" --quiet"));
    item("other")->trigger();
    QCOMPARE(stored(), std::string("\"/opt/my wine/wine\" --quiet"));
    QVERIFY(item("other")->isChecked() && item("other")->text().contains("--quiet"));
    item("none")->trigger();
    QCOMPARE(stored(), std::string());
    QCOMPARE(f.sandbox.Settings().GetSetting(kSectionSettings, "KGenrun"), std::string());
    qputenv("PATH", path);
  }

  void AProgramThatCannotStartIsReportedAndCounted() {
    Fixture f;
    // There, but not a program: the start itself fails.
    const QString notAProgram = f.sandbox.Path("not-a-program");
    QFile file(notAProgram);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.close();
    for (const char* key : {"Genem", "KGen", "Genecyst"})
      (void)f.sandbox.Settings().SaveSetting(kSectionSettings, key, FromQt(notAProgram));
    QVERIFY(f.SelectImage());
    QTest::mouseClick(f.RunButton(), Qt::LeftButton);
    QTRY_VERIFY_WITH_TIMEOUT(!f.host.shown.empty(), 5000);
    QTRY_COMPARE(f.launcher->Running(), 0);
  }

  void TheFavoritesMenuAddsRunsAndListsFavorites() {
    Fixture f;
    QCOMPARE(f.favorites->title(), QStringLiteral("Fa&vorites"));
    const QList<QAction*> own = f.favorites->actions();
    QCOMPARE(own.at(0)->text(), QStringLiteral("&Add to favorites..."));
    QCOMPARE(own.at(1)->text(), QStringLiteral("&Remove favorites..."));
    QVERIFY(own.at(2)->isSeparator());

    // Nothing selected and no favorites: both off.
    emit f.favorites->aboutToShow();
    QVERIFY(!own.at(0)->isEnabled());
    QVERIFY(!own.at(1)->isEnabled());

    QVERIFY(f.SelectImage());
    f.host.texts.push_back(std::string("Zeta & Alpha"));
    emit f.favorites->aboutToShow();
    QVERIFY(own.at(0)->isEnabled());
    own.at(0)->trigger();
    emit f.favorites->aboutToShow();
    QVERIFY(own.at(1)->isEnabled());
    QCOMPARE(f.favorites->FavoriteActions().size(), 1);
    QCOMPARE(f.favorites->FavoriteActions().at(0)->text(), QStringLiteral("Zeta && Alpha"));

    QSignalSpy finished(f.launcher, &QtLauncher::launchFinished);
    f.favorites->FavoriteActions().at(0)->trigger();
    QVERIFY(finished.wait(10000));
    QCOMPARE(f.window->SavedGames()->itemText(0), ToQt(kGenEmState));
  }

  // An emulator leaving a helper behind that holds its output open: the launch is over when
  // the emulator is, and the helper shares its process group, which ending a run reaches.
  void AHelperOutlivingTheEmulatorDoesNotHoldTheLaunch() {
    Fixture f;
    f.UseEmulator("(sleep 600 & echo $! > \"$helper\") ; exit 0");
    QVERIFY(f.SelectImage());
    QSignalSpy finished(f.launcher, &QtLauncher::launchFinished);
    QTest::mouseClick(f.RunButton(), Qt::LeftButton);
    QVERIFY(finished.wait(10000));
    const pid_t emulator = f.PidIn("pid");
    const pid_t helper = f.PidIn("helper");
    QVERIFY(emulator > 0 && helper > 0);
    QCOMPARE(getpgid(helper), emulator);
    ::kill(-emulator, SIGKILL);
  }

  // Closing the window while a game runs asks; Yes ends the emulator and what it started,
  // even when they ignore SIGTERM, and completes the launch before the window goes.
  void ClosingWhileAGameRunsAndAnsweringYesEndsIt() {
    Fixture f;
    f.UseEmulator("trap '' TERM\nsleep 600 & echo $! > \"$helper\"\nwait");
    f.launcher->SetEndGracePeriod(std::chrono::milliseconds(200));
    QVERIFY(f.SelectImage());
    QSignalSpy finished(f.launcher, &QtLauncher::launchFinished);
    QTest::mouseClick(f.RunButton(), Qt::LeftButton);
    const pid_t helper = f.PidIn("helper");
    QVERIFY(helper > 0);
    f.host.yesNo.push_back(Answer::Yes);
    QVERIFY(f.window->close());
    QCOMPARE(f.host.shown.back(), std::string(kEndRunningGame));
    QCOMPARE(finished.count(), 1);
    QCOMPARE(f.launcher->Running(), 0);
    QTRY_VERIFY_WITH_TIMEOUT(Gone(helper), 5000);
  }

  // No (the default) closes the window and leaves the game running; its end still completes
  // the launch, with the program kept alive for it.
  void ClosingWhileAGameRunsAndAnsweringNoLeavesItRunning() {
    Fixture f;
    f.UseEmulator("sleep 1");
    QVERIFY(f.SelectImage());
    QSignalSpy finished(f.launcher, &QtLauncher::launchFinished);
    QTest::mouseClick(f.RunButton(), Qt::LeftButton);
    const pid_t emulator = f.PidIn("pid");
    QVERIFY(emulator > 0);
    QVERIFY(f.window->close());
    QCOMPARE(f.host.shown.back(), std::string(kEndRunningGame));
    QVERIFY(!f.window->isVisible());
    QVERIFY(!Gone(emulator));
    QVERIFY(!QApplication::quitOnLastWindowClosed());
    QVERIFY(finished.wait(10000));
    QCOMPARE(f.launcher->Running(), 0);
    QApplication::setQuitOnLastWindowClosed(true);
  }

  // The whole window as the program assembles it offers every command, each reachable from
  // the menu bar (the Search items in Options > Directories, where the message about a
  // missing emulator sends the user), and every menu answers Alt and a key of its own.
  void EveryMenuItemIsInTheWindow() {
    Fixture f;
    new WindowLayout(*f.window, f.host, f.sandbox.Settings());
    QStringList reachable;
    QStringList options;
    std::function<void(QMenu*)> collect = [&](QMenu* menu) {
      for (QAction* action : menu->actions()) {
        reachable << action->objectName();
        if (menu->title() == "&Options") options << action->text();
        if (action->menu()) collect(action->menu());
      }
    };
    for (QAction* top : f.window->menuBar()->actions()) {
      reachable << top->objectName();
      if (top->menu()) collect(top->menu());
    }
    for (const char* name :
         {"mnu_dir",        "mnu_opendir", "mnu_openzip",    "mnu_dirs(0)",   "mnu_show",
          "mnu_showsub(1)", "mnu_sort",    "mnu_sortsub(1)", "mnu_lista",     "mnu_criaIPS",
          "mnu_aplicaIPS",  "mnu_joinany", "mnu_file",       "mnu_copy",      "mnu_move",
          "mnu_delete",     "mnu_ren",     "mnu_prop",       "mnu_previmg",   "mnu_preview",
          "mnu_picprev",    "mnu_tool",    "mnu_crc",        "mnu_getcrc",    "mnu_header",
          "mnu_split",      "mnu_join",    "mnu_patch",      "mnu_ips2dyn",   "mnu_tirapatch",
          "mnu_conv",       "mnu_convBIN", "mnu_convSMD",    "mnu_convMD",    "mnu_savthiscart",
          "mnu_del",        "mnu_savcart", "mnu_save",       "mnu_savagora",  "mnu_delgeral",
          "mnuNomeCapt",    "mnuTitle(1)", "mnu_locateGen",  "mnu_locatenew", "mnu_locateGenecyst",
          "mnu_locateKGen", "mnu_settemp", "mnu_savcont",    "mnu_delcont",   "mnu_lockcont",
          "mnu_regtypes",   "mnu_regbin",  "mnu_regsmd",     "mnu_regsplit",  "mnu_regmd",
          "mnufavorite",    "mnu_addfav",  "mnu_orgfav"}) {
      QVERIFY2(reachable.contains(name), name);
    }
    // The submenu holds the Search items, then the temporary directory.
    auto* directories = f.window->findChild<QMenu*>("mnu_directories");
    QVERIFY(directories);
    QVERIFY(options.contains(directories->menuAction()->text()));
    QCOMPARE(directories->title().remove('&'), "Directories");
    QStringList inside;
    for (QAction* action : directories->actions())
      if (!action->isSeparator()) inside << action->text().remove('&');
    QCOMPARE(inside, QStringList({"Search GenEm...", "Search GenEmnew...", "Search Genecyst...",
                                  "Search KGen...", "Search BlastEm...", "Search Mednafen...",
                                  "Set temporary directory..."}));

    // Access keys: one in each menu and item named here, never two alike in one menu. The
    // history and the favorites are names the user chose.
    std::function<void(const QList<QAction*>&)> checkKeys = [&](const QList<QAction*>& items) {
      QStringList keys;
      for (QAction* action : items) {
        if (action->isSeparator() || !action->isVisible() ||
            action->objectName().startsWith("mnu_dirs(") || action->text().isEmpty())
          continue;
        const QString key = QKeySequence::mnemonic(action->text()).toString();
        QVERIFY2(key.isEmpty() || !keys.contains(key), qPrintable(action->text()));
        keys << key;
        if (action->menu()) {
          // A menu switched off for want of a selection reads "Select a file!", keyless.
          QVERIFY2(!key.isEmpty() || !action->isEnabled(), qPrintable(action->text()));
          if (action->menu() != f.favorites) checkKeys(action->menu()->actions());
        }
      }
    };
    checkKeys(f.window->menuBar()->actions());
    for (const char* name :
         {"mnu_regtypes", "mnu_unregtypes", "mnu_locateGen", "mnu_locatenew", "mnu_locateGenecyst",
          "mnu_locateKGen", "mnu_locateBlastEm", "mnu_locateMednafen", "mnu_settemp"}) {
      auto* action = f.window->findChild<QAction*>(name);
      QVERIFY2(action && !QKeySequence::mnemonic(action->text()).isEmpty(), name);
    }
  }
};

}  // namespace romsteward::ui::test

QTEST_MAIN(romsteward::ui::test::LaunchTest)
#include "launch_test.moc"
