#include "ui/preview/preview_menu.h"

#include <QAction>
#include <QMenu>

#include "core/app/main_window_model.h"
#include "ui/main_window.h"
#include "ui/preview/preview_window.h"
#include "ui/qt_text.h"

namespace romsteward::ui {

void AddPreviewMenu(MainWindow& window, Host& host, QMenu* fileMenu) {
  auto* preview = new PreviewWindow(window, host);
  QMenu* menu = fileMenu->addMenu("Pre&view picture");
  menu->setObjectName("mnu_previmg");
  menu->menuAction()->setObjectName("mnu_previmg");
  window.BindAction(menu->menuAction(), "mnu_previmg");

  QAction* activated = menu->addAction("&Activated");
  activated->setObjectName("mnu_preview");
  activated->setCheckable(true);
  window.BindAction(activated, "mnu_preview");
  QObject::connect(activated, &QAction::triggered, &window, [&window] {
    window.Model().TogglePreview();
    window.Render();
  });

  QAction* choose = menu->addAction("&Choose preview picture...");
  choose->setObjectName("mnu_picprev");
  window.BindAction(choose, "mnu_picprev");
  QObject::connect(choose, &QAction::triggered, &window, [&window, preview] {
    window.Model().ChoosePreviewPicture(
        [](const std::string& path) { return !LoadPicture(ToQt(path)).isNull(); });
    preview->Forget();
    window.Render();
  });

  // Offered only while the cartridge has a picture of its own.
  QAction* clear = menu->addAction("C&lear preview picture");
  clear->setObjectName("mnu_picclear");
  QObject::connect(menu, &QMenu::aboutToShow, clear, [&window, clear] {
    clear->setEnabled(window.Model().Controls()["mnu_picprev"].enabled &&
                      window.Model().HasOwnPreviewPicture());
  });
  QObject::connect(clear, &QAction::triggered, &window, [&window] {
    window.Model().ClearPreviewPicture();
    window.Render();
  });
}

}  // namespace romsteward::ui
