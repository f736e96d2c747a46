#pragma once

#include <QMainWindow>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "core/app/main_window_model.h"

class QAbstractButton;
class QAction;
class QCheckBox;
class QComboBox;
class QHBoxLayout;
class QLabel;
class QLineEdit;
class QMenu;
class QPushButton;
class QSystemTrayIcon;

namespace romsteward {
class AppSettings;
class Host;
}  // namespace romsteward

namespace romsteward::ui {

class EmulatorTabs;
class RomListModel;
class RomListView;

/// The main window (`launch`): draws the app model (list, panel, option controls, menus)
/// and hands every click and key to the model's commands. It decides nothing itself: after
/// each command it shows the model again (Render).
class MainWindow : public QMainWindow {
  Q_OBJECT
public:
  MainWindow(Host& host, AppSettings& settings, FileOperations& operations,
             QWidget* parent = nullptr);
  ~MainWindow() override;

  /// Start-up: the model's start (choices, history, first-run notice, the last place).
  void Start();
  /// Shows the model's state.
  void Render();

  MainWindowModel& Model() { return m_model; }

  /// Gives `action` the caption, enabled, checked and visible state of the model's control
  /// `name` at every Render, and that name as its object name unless it has one; a command
  /// added later (a launch, the favorites) binds this way.
  void BindAction(QAction* action, std::string name);
  /// The same for a button ("Run this game!" is `CmdLaunch`); an empty model caption keeps
  /// the button's own.
  void BindButton(QAbstractButton* button, std::string name);
  /// Puts a menu before Help (the favorites menu).
  void InsertMenu(QMenu* menu);
  /// The row under the tab strip where "Run this game!" belongs.
  QHBoxLayout* LaunchRow() const { return m_launchRow; }

  // Parts the tests look at.
  RomListView* List() const { return m_listView; }
  EmulatorTabs* Tabs() const { return m_tabs; }
  QAction* Action(const std::string& name) const;
  QMenu* MenuOf(const std::string& name) const;
  QLabel* Field(const char* name) const;
  QComboBox* SavedGames() const { return m_cmbSave; }
  QComboBox* Country() const { return m_cmbCartLang; }

signals:
  /// Enter or a double click on an entry: the launch command's trigger.
  void launchRequested();
  /// The end of every Render: parts that follow the model (the preview window) look again.
  void rendered();

protected:
  void closeEvent(QCloseEvent* event) override;
  void changeEvent(QEvent* event) override;

private:
  QWidget* BuildPanel();
  void BuildMenus();
  QMenu* BuildDirectoryMenu();
  QMenu* BuildFileMenu();
  QMenu* BuildToolsMenu();
  QMenu* BuildOptionsMenu();
  QMenu* BuildHelpMenu();
  /// A submenu over a two-element radio array of the model (`arrayName(0)`, `(1)`).
  void AddRadioMenu(QMenu* parent, const QString& caption, std::string menuName,
                    std::string_view arrayName, std::function<void(int)> choose);
  QAction* AddCommand(QMenu* menu, const QString& caption, std::string name,
                      void (MainWindowModel::*command)());
  void Run(const std::function<void()>& command);
  void RenderPanel();
  void RenderSelection();
  /// The entry the list shows highlighted.
  std::optional<std::size_t> ShownSelection() const;
  void OpenManual();
  void ShowAbout();
  void HideToTray();

  Host& m_host;
  MainWindowModel m_model;
  RomListModel* m_listModel = nullptr;
  RomListView* m_listView = nullptr;
  EmulatorTabs* m_tabs = nullptr;
  QLabel* m_txtFiles = nullptr;
  QLabel* m_txtTipo = nullptr;
  QLabel* m_txtbits = nullptr;
  QLabel* m_txtRAM = nullptr;
  QLabel* m_txtarquivo = nullptr;
  QComboBox* m_cmbSave = nullptr;
  QPushButton* m_cmdDeletaSave = nullptr;
  QComboBox* m_cmbCartLang = nullptr;
  QPushButton* m_cmdForce = nullptr;
  QCheckBox* m_chkIPS = nullptr;
  QLineEdit* m_txtCmd = nullptr;
  QHBoxLayout* m_launchRow = nullptr;
  QMenu* m_helpMenu = nullptr;
  QSystemTrayIcon* m_tray = nullptr;
  std::vector<std::pair<QAction*, std::string>> m_bound;
  std::vector<std::pair<QAbstractButton*, std::string>> m_boundButtons;
  bool m_rendering = false;
};

}  // namespace romsteward::ui
