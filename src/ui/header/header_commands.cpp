#include "ui/header/header_commands.h"

#include <QAction>
#include <QMenu>

#include "core/app/main_window_model.h"
#include "core/cart/file_properties.h"
#include "core/cart/header_edit.h"
#include "core/common/strings.h"
#include "core/host/host.h"
#include "ui/header/header_editor_dialog.h"
#include "ui/header/properties_dialog.h"
#include "ui/main_window.h"
#include "ui/qt_text.h"

namespace romsteward::ui {

void EditSelectedHeader(MainWindow& window, Host& host) {
  MainWindowModel& model = window.Model();
  const std::optional<std::size_t> selection = model.Selection();
  if (!selection) return;
  // The model disables the item for archive members and read-only files; the editor
  // refuses them anyway, in case the file changed since the selection was shown.
  auto editor = HeaderEditor::Open(Utf8ToPath(JoinDirName(model.Diret(), model.SelectedText())));
  if (!editor) {
    host.ShowMessage(editor.error().message, MessageIcon::Critical, "Header");
    return;
  }
  HeaderEditorDialog dialog(*editor, host, &window);
  if (dialog.exec() != QDialog::Accepted) return;
  // Shown again as a new selection, so the title and panel read the new header.
  model.Select(std::nullopt);
  model.Select(selection);
  window.Render();
}

void ShowSelectedProperties(MainWindow& window, Host& host) {
  const MainWindowModel& model = window.Model();
  if (!model.Selection()) return;
  const std::string entry = model.SelectedText();
  auto rows = ReadFileProperties(model.Diret(), entry, model.IsZipListing(), &host);
  if (!rows) {
    host.ShowMessage(rows.error().message, MessageIcon::Critical, "Properties");
    return;
  }
  PropertiesDialog(ToQt(entry), *rows, &window).exec();
}

void AddHeaderEditorItem(MainWindow& window, QMenu* menu, Host& host) {
  QAction* action = menu->addAction("&Header...");
  action->setObjectName("mnu_header");
  window.BindAction(action, "mnu_header");
  QObject::connect(action, &QAction::triggered, &window,
                   [&window, &host] { EditSelectedHeader(window, host); });
}

void AddPropertiesItem(MainWindow& window, QMenu* menu, Host& host) {
  QAction* action = menu->addAction("&Properties...");
  action->setObjectName("mnu_prop");
  QObject::connect(action, &QAction::triggered, &window,
                   [&window, &host] { ShowSelectedProperties(window, host); });
}

}  // namespace romsteward::ui
