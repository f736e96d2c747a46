#include "ui/main_window_toolbar.h"

#include <QAction>
#include <QIcon>
#include <QPainter>
#include <QPixmap>
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

// Qt's own trash can is grey all over and reads as switched off: a red cross on it says
// "delete" and leaves the greyed look to the disabled state.
QIcon DeleteIcon(const QStyle& style) {
  const QIcon trash = style.standardIcon(QStyle::SP_TrashIcon);
  QIcon icon;
  for (const int side : {16, 22, 24, 32, 48}) {
    QPixmap pixmap = trash.pixmap(side);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF cross(side * 0.5, side * 0.5, side * 0.4, side * 0.4);
    for (const auto& [colour, width] :
         {std::pair{QColor(Qt::white), side / 5.0}, std::pair{QColor(204, 0, 0), side / 9.0}}) {
      painter.setPen(QPen(colour, width, Qt::SolidLine, Qt::RoundCap));
      painter.drawLine(cross.topLeft(), cross.bottomRight());
      painter.drawLine(cross.topRight(), cross.bottomLeft());
    }
    painter.end();
    icon.addPixmap(pixmap);
  }
  return icon;
}

}  // namespace

QToolBar* AddMainToolbar(MainWindow& window) {
  auto* bar = new QToolBar("Toolbar", &window);
  bar->setObjectName("toolbar");
  bar->setToolButtonStyle(Qt::ToolButtonIconOnly);
  for (const ToolbarButton& button : kButtons) {
    const QIcon fallback = button.fallback == QStyle::SP_TrashIcon
                               ? DeleteIcon(*window.style())
                               : window.style()->standardIcon(button.fallback);
    QAction* action = bar->addAction(QIcon::fromTheme(button.themeIcon, fallback), button.toolTip);
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
