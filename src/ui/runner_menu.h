#pragma once

namespace romsteward {
class AppSettings;
class Host;
}  // namespace romsteward

class QMenu;

namespace romsteward::ui {

class MainWindow;

/// Options > "Emulator r&unners" (`mnu_runners`): a submenu per DOS emulator (`mnu_runGenEm`
/// ...) to choose what runs it: none, an installed DOSBox or Wine (one not installed is shown
/// disabled), or a command of the user's own. Each choice is stored at once; the check marks
/// follow the store whenever a submenu opens. Returns the new menu (nullptr without Options).
QMenu* AddRunnerMenu(MainWindow& window, Host& host, AppSettings& settings);

}  // namespace romsteward::ui
