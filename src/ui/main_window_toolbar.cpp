#include "ui/main_window_toolbar.h"

#include <QAction>
#include <QIcon>
#include <QStyle>
#include <QToolBar>

#include "ui/main_window.h"

namespace romsteward::ui {

namespace {

struct ToolbarButton {
  const char* name;
  const char* menuItem;
  const char* toolTip;
  const char* themeIcon;
  QStyle::StandardPixmap fallback;
};

constexpr ToolbarButton kButtons[] = {
    {"btnProp", "mnu_prop", "File properties", "document-properties",
     QStyle::SP_FileDialogInfoView},
    {"btnDeleta", "mnu_delete", "Delete the selected file", "edit-delete", QStyle::SP_TrashIcon},
    {"btnheader", "mnu_header", "Change header information", "document-edit",
     QStyle::SP_FileDialogDetailedView},
    {"btncrc", "mnu_crc", "Check CRC", "dialog-ok-apply", QStyle::SP_DialogApplyButton},
    {"Btnlista", "mnu_lista", "Create ROM List", "x-office-document",
     QStyle::SP_FileDialogListView},
    {"BtnImagem", "mnu_picprev", "Choose preview picture", "image-x-generic",
     QStyle::SP_FileDialogContentsView},
};

}  // namespace

QToolBar* AddMainToolbar(MainWindow& window) {
  auto* bar = new QToolBar("Toolbar", &window);
  bar->setObjectName("toolbar");
  bar->setToolButtonStyle(Qt::ToolButtonIconOnly);
  for (const ToolbarButton& button : kButtons) {
    QAction* action = bar->addAction(
        QIcon::fromTheme(button.themeIcon, window.style()->standardIcon(button.fallback)),
        button.toolTip);
    action->setObjectName(button.name);
    action->setToolTip(button.toolTip);
    window.BindAction(action, button.name);
    const QString target = button.menuItem;
    QObject::connect(action, &QAction::triggered, &window, [&window, target] {
      // Looked up now: the menu items are built by their own parts of the window.
      if (QAction* item = window.findChild<QAction*>(target)) item->trigger();
    });
  }
  window.addToolBar(Qt::TopToolBarArea, bar);
  return bar;
}

}  // namespace romsteward::ui
