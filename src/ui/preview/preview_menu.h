#pragma once

class QMenu;

namespace romsteward {
class Host;
}

namespace romsteward::ui {

class MainWindow;

/// Adds "Pre&view picture" (`mnu_previmg`) to `fileMenu`: "&Activated" (`mnu_preview`),
/// "&Choose preview picture..." (`mnu_picprev`) and "C&lear preview picture"
/// (`mnu_picclear`), and creates the preview window that follows the selection.
void AddPreviewMenu(MainWindow& window, Host& host, QMenu* fileMenu);

}  // namespace romsteward::ui
