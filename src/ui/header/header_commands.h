#pragma once

class QMenu;

namespace romsteward {
class Host;
}

namespace romsteward::ui {

class MainWindow;

/// Tools menu "&Header..." (`mnu_header`, enabled by the model): the header editor on the
/// selected image.
void AddHeaderEditorItem(MainWindow& window, QMenu* menu, Host& host);
/// File menu "&Properties..." (`mnu_prop`): the properties of the selected entry.
void AddPropertiesItem(MainWindow& window, QMenu* menu, Host& host);

/// What the two items run (the toolbar's buttons and the tests call them too).
void EditSelectedHeader(MainWindow& window, Host& host);
void ShowSelectedProperties(MainWindow& window, Host& host);

}  // namespace romsteward::ui
