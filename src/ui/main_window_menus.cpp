// The main window's menus: each item is bound to the model's control of the same name, so
// its caption, enabled, checked and visible state are the model's, and runs one command.
#include <QAction>
#include <QActionGroup>
#include <QCoreApplication>
#include <QMenu>
#include <QMenuBar>
#include <QSystemTrayIcon>

#include "core/host/app_title.h"
#include "core/host/host.h"
#include "ui/file_type_commands.h"
#include "ui/header/header_commands.h"
#include "ui/main_window.h"
#include "ui/main_window_toolbar.h"
#include "ui/manual_window.h"
#include "ui/patch/patch_window.h"
#include "ui/preview/preview_menu.h"
#include "ui/qt_text.h"
#include "ui/report/report_editor.h"
#include "ui/tools/header_tools_menu.h"

namespace romsteward::ui {

namespace {

constexpr int kHistorySize = 5;

}  // namespace

QAction* MainWindow::AddCommand(QMenu* menu, const QString& caption, std::string name,
                                void (MainWindowModel::*command)()) {
  QAction* action = menu->addAction(caption);
  if (!name.empty()) BindAction(action, std::move(name));
  connect(action, &QAction::triggered, this,
          [this, command] { Run([this, command] { (m_model.*command)(); }); });
  return action;
}

void MainWindow::AddRadioMenu(QMenu* parent, const QString& caption, std::string menuName,
                              std::string_view arrayName, std::function<void(int)> choose) {
  QMenu* menu = parent->addMenu(caption);
  BindAction(menu->menuAction(), std::move(menuName));
  // The check marks come from the model, so the actions are not grouped.
  for (int i = 0; i < 2; ++i) {
    QAction* item = menu->addAction(QString());
    item->setCheckable(true);
    BindAction(item, ElementName(arrayName, i));
    connect(item, &QAction::triggered, this,
            [this, choose, i] { Run([choose, i] { choose(i); }); });
  }
}

void MainWindow::BuildMenus() {
  QMenuBar* bar = menuBar();
  bar->addMenu(BuildDirectoryMenu());
  bar->addMenu(BuildFileMenu());
  bar->addMenu(BuildToolsMenu());
  bar->addMenu(BuildConvertMenu(*this));
  bar->addMenu(BuildOptionsMenu());
  m_helpMenu = BuildHelpMenu();
  bar->addMenu(m_helpMenu);
  AddMainToolbar(*this);
}

QMenu* MainWindow::BuildDirectoryMenu() {
  auto* menu = new QMenu("&Directory", this);
  BindAction(menu->menuAction(), "mnu_dir");
  AddCommand(menu, "Open ROM Directory...", "mnu_opendir", &MainWindowModel::OpenRomDirectory);
  AddCommand(menu, "Open &ZIP Directory...", "mnu_openzip", &MainWindowModel::OpenZipDirectory);
  menu->addSeparator();
  for (int i = 0; i < kHistorySize; ++i) {
    QAction* entry = menu->addAction(QString());
    BindAction(entry, ElementName("mnu_dirs", i));
    connect(entry, &QAction::triggered, this,
            [this, i] { Run([this, i] { m_model.ChooseDirHistory(i); }); });
  }
  menu->addSeparator();

  AddRadioMenu(menu, "Sho&w", "mnu_show", "mnu_showsub",
               [this](int i) { m_model.ChooseFilter(static_cast<ListFilter>(i)); });
  AddRadioMenu(menu, "&Sort ROMs by", "mnu_sort", "mnu_sortsub",
               [this](int i) { m_model.ChooseSort(static_cast<SortOrder>(i)); });
  menu->addSeparator();
  AddRomListItem(*this, menu, m_host);
  AddDirectoryToolItems(*this, menu);
  menu->addSeparator();
  QAction* exit = menu->addAction("E&xit");
  connect(exit, &QAction::triggered, this, &QWidget::close);
  return menu;
}

QMenu* MainWindow::BuildFileMenu() {
  auto* menu = new QMenu("&File", this);
  BindAction(menu->menuAction(), "mnu_file");
  AddCommand(menu, "Copy...", {}, &MainWindowModel::CopySelected)->setObjectName("mnu_copy");
  AddCommand(menu, "Move...", "mnu_move", &MainWindowModel::MoveSelected);
  AddCommand(menu, "Delete...", "mnu_delete", &MainWindowModel::DeleteSelected);
  AddCommand(menu, "&Rename...", "mnu_ren", &MainWindowModel::RenameSelected);
  menu->addSeparator();
  AddPropertiesItem(*this, menu, m_host);
  AddPreviewMenu(*this, m_host, menu);
  return menu;
}

QMenu* MainWindow::BuildToolsMenu() {
  auto* menu = new QMenu("&Tools", this);
  BindAction(menu->menuAction(), "mnu_tool");
  connect(menu, &QMenu::aboutToShow, this, [this] { Run([this] { m_model.OpenToolsMenu(); }); });
  AddCommand(menu, "Check CRC", "mnu_crc", &MainWindowModel::CheckSelectedCrc);
  AddCommand(menu, "R&estore CRC", "mnu_getcrc", &MainWindowModel::RestoreSelectedCrc);
  AddHeaderEditorItem(*this, menu, m_host);
  menu->addSeparator();
  AddSplitJoinItems(*this, menu);
  menu->addSeparator();
  AddPatchWindowItem(*this, menu, m_host);
  AddCommand(menu, "Convert IPS to Dynamic Patch...", "mnu_ips2dyn",
             &MainWindowModel::ConvertIpsToDynamicPatches);
  AddCommand(menu, "Remove dynamic patches...", "mnu_tirapatch",
             &MainWindowModel::RemoveDynamicPatches);
  return menu;
}

QMenu* MainWindow::BuildOptionsMenu() {
  auto* menu = new QMenu("&Options", this);
  menu->setObjectName("mnu_options");
  AddCommand(menu, "Save Settings for &This Cartridge", "mnu_savthiscart",
             &MainWindowModel::SaveThisCartridge);
  AddCommand(menu, "&Delete Settings of This Cartridge", "mnu_del",
             &MainWindowModel::DeleteThisCartridgeSettings);
  AddCommand(menu, "Save Settings for All &Cartridges", "mnu_savcart",
             &MainWindowModel::ToggleSaveAllCartridges)
      ->setCheckable(true);
  AddCommand(menu, "Save Settings on E&xit", "mnu_save", &MainWindowModel::ToggleSaveOnExit)
      ->setCheckable(true);
  AddCommand(menu, "Save General Settings &Now", {}, &MainWindowModel::SaveGeneralSettingsNow)
      ->setObjectName("mnu_savagora");
  AddCommand(menu, "Delete &General Settings", {}, &MainWindowModel::DeleteGeneralSettingsNow)
      ->setObjectName("mnu_delgeral");
  menu->addSeparator();
  // Only where the desktop has a tray to minimize into.
  if (QSystemTrayIcon::isSystemTrayAvailable()) {
    AddCommand(menu, "Minimize in Tray", "mnu_tray", &MainWindowModel::ToggleMinimizeInTray)
        ->setCheckable(true);
  }
  AddRadioMenu(menu, "&Window's title", "mnuNomeCapt", "mnuTitle",
               [this](int i) { m_model.ChooseTitle(i); });
  menu->addSeparator();
  // Where the emulators and the temporary folder are; the launcher adds its "Search ..."
  // items at the top. The message for a missing emulator sends the user here.
  QMenu* directories = menu->addMenu("Di&rectories");
  directories->setObjectName("mnu_directories");
  AddCommand(directories, "Set &temporary directory...", "mnu_settemp",
             &MainWindowModel::SetTemporaryDirectory);
  menu->addSeparator();
  AddFileTypeMenu(menu, this);
  return menu;
}

QMenu* MainWindow::BuildHelpMenu() {
  auto* menu = new QMenu("&Help", this);
  menu->setObjectName("mnu_help");
  QAction* manual = menu->addAction("&Manual");
  manual->setObjectName("mnu_manual");
  connect(manual, &QAction::triggered, this, &MainWindow::OpenManual);
  connect(menu->addAction("&About Genesis Romsteward..."), &QAction::triggered, this,
          &MainWindow::ShowAbout);
  return menu;
}

void MainWindow::OpenManual() {
  const QString directory = QCoreApplication::applicationDirPath();
  auto* window = findChild<ManualWindow*>();
  if (!window) window = new ManualWindow(this);
  const QString manual = FindManual(directory);
  if (manual.isEmpty() || !window->Open(manual)) {
    m_host.ShowMessage("The manual could not be found. It belongs in " +
                           FromQt(ManualPlaces(directory).join(" or ")) + ".",
                       MessageIcon::Exclamation, kAppTitle);
  }
}

void MainWindow::ShowAbout() {
  m_host.ShowMessage(std::string(kAppTitle) + " " + ROMSTEWARD_VERSION +
                         "\n\nA header tool and emulator launcher for Sega Genesis / Mega Drive "
                         "cartridge images.",
                     MessageIcon::Information, "About");
}

}  // namespace romsteward::ui
