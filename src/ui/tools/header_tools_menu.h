#pragma once

class QMenu;

namespace romsteward::ui {

class MainWindow;

/// The file tools' menu items, each bound to the model's control of its name and running
/// the model's command, the window drawn afresh afterwards.
/// Directory menu: "C&reate IPS...", "&Apply IPS...", "Join Files..." (need no selection).
void AddDirectoryToolItems(MainWindow& window, QMenu* menu);
/// Tools menu: "&Split ROM..." and "&Join ROMs".
void AddSplitJoinItems(MainWindow& window, QMenu* menu);
/// "&Convert" (`mnu_conv`) with BIN, SMD and MD.
QMenu* BuildConvertMenu(MainWindow& window);

}  // namespace romsteward::ui
