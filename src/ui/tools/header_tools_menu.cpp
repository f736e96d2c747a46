#include "ui/tools/header_tools_menu.h"

#include <QAction>
#include <QMenu>
#include <functional>
#include <string>

#include "core/app/main_window_model.h"
#include "ui/main_window.h"

namespace romsteward::ui {

namespace {

QAction* AddItem(MainWindow& window, QMenu* menu, const QString& caption, const char* name,
                 bool bound, std::function<void(MainWindowModel&)> command) {
  QAction* action = menu->addAction(caption);
  action->setObjectName(name);
  if (bound) window.BindAction(action, name);
  QObject::connect(action, &QAction::triggered, &window, [&window, command] {
    command(window.Model());
    window.Render();
  });
  return action;
}

}  // namespace

void AddDirectoryToolItems(MainWindow& window, QMenu* menu) {
  AddItem(window, menu, "C&reate IPS...", "mnu_criaIPS", false,
          [](MainWindowModel& model) { model.CreateIps(); });
  AddItem(window, menu, "&Apply IPS...", "mnu_aplicaIPS", false,
          [](MainWindowModel& model) { model.ApplyIps(); });
  AddItem(window, menu, "Join Files...", "mnu_joinany", false,
          [](MainWindowModel& model) { model.JoinAnyFiles(); });
}

void AddSplitJoinItems(MainWindow& window, QMenu* menu) {
  AddItem(window, menu, "&Split ROM...", "mnu_split", true,
          [](MainWindowModel& model) { model.SplitSelected(); });
  AddItem(window, menu, "&Join ROMs", "mnu_join", true,
          [](MainWindowModel& model) { model.JoinSelected(); });
}

QMenu* BuildConvertMenu(MainWindow& window) {
  auto* menu = new QMenu("&Convert", &window);
  menu->setObjectName("mnu_conv_menu");
  menu->menuAction()->setObjectName("mnu_conv");
  window.BindAction(menu->menuAction(), "mnu_conv");
  AddItem(window, menu, "&BIN", "mnu_convBIN", false,
          [](MainWindowModel& model) { model.ConvertSelected(Layout::Bin); });
  AddItem(window, menu, "&SMD", "mnu_convSMD", false,
          [](MainWindowModel& model) { model.ConvertSelected(Layout::Smd); });
  AddItem(window, menu, "&MD", "mnu_convMD", false,
          [](MainWindowModel& model) { model.ConvertSelected(Layout::Md); });
  return menu;
}

}  // namespace romsteward::ui
