#include "ui/runner_menu.h"

#include <QAction>
#include <QActionGroup>
#include <QMenu>
#include <QMenuBar>
#include <string_view>
#include <utility>

#include "core/common/strings.h"
#include "core/host/app_title.h"
#include "core/host/host.h"
#include "core/launch/emulator_profiles.h"
#include "core/launch/emulator_runners.h"
#include "core/launch/installed_programs.h"
#include "ui/main_window.h"
#include "ui/qt_text.h"

namespace romsteward::ui {

namespace {

QMenu* OptionsMenu(MainWindow& window) {
  for (QAction* action : window.menuBar()->actions()) {
    if (action->menu() && action->text() == QStringLiteral("&Options")) return action->menu();
  }
  return nullptr;
}

// Emptied and filled again each time it opens: what is installed and stored may have changed.
void FillProfileMenu(QMenu* menu, const EmulatorProfile& profile, Host& host,
                     AppSettings& settings) {
  for (QActionGroup* old : menu->findChildren<QActionGroup*>(Qt::FindDirectChildrenOnly))
    delete old;
  menu->clear();
  const std::string current = RunnerCommand(settings, profile);
  const QString prefix = QStringLiteral("mnu_run") + ToQt(profile.name);
  auto* group = new QActionGroup(menu);
  bool matched = false;
  const auto store = [&host, &settings, &profile](const std::string& command) {
    if (Status saved = SetRunnerCommand(settings, profile, command); !saved)
      host.ShowMessage(saved.error().message, MessageIcon::Critical, kAppTitle);
  };
  const auto add = [&](const QString& caption, const QString& name, bool checked) {
    QAction* item = menu->addAction(caption);
    item->setObjectName(prefix + "_" + name);
    item->setCheckable(true);
    item->setChecked(checked);
    group->addAction(item);
    matched = matched || checked;
    return item;
  };

  QObject::connect(add("&None", "none", current.empty()), &QAction::triggered, menu,
                   [store] { store({}); });
  const std::vector<std::filesystem::path> folders = ProgramSearchFolders();
  for (const RunnerChoice& runner : RunnerChoices()) {
    const bool installed = !FindInstalledProgram(runner.program, folders).empty();
    const QString caption = "&" + ToQt(runner.name) + " (" + ToQt(runner.command) + ")" +
                            (installed ? QString() : QStringLiteral(" - not installed"));
    QAction* item = add(caption, ToQt(runner.program), current == runner.command);
    item->setEnabled(installed);
    QObject::connect(item, &QAction::triggered, menu,
                     [store, command = std::string(runner.command)] { store(command); });
  }
  const QString other =
      matched ? QStringLiteral("&Other command...") : "&Other command (" + ToQt(current) + ")...";
  QAction* own = add(other, "other", !matched);
  QObject::connect(own, &QAction::triggered, menu, [&host, &profile, store, current] {
    const std::optional<std::string> command =
        host.AskText("The command that runs " + std::string(profile.name) +
                         ", placed before its path (for example \"dosbox -exit\"); quote "
                         "words holding blanks. Empty for none.",
                     "Runner for " + std::string(profile.name), current, false);
    if (command) store(*command);
  });
}

// The emulator's name with the access key its "Search ..." item uses.
QString CaptionWithKey(std::string_view name) {
  static const std::pair<std::string_view, std::size_t> kKeys[] = {
      {"GenEm", 0}, {"GenEmnew", 2}, {"Genecyst", 4}, {"KGen", 0}};
  QString caption = ToQt(name);
  for (const auto& [known, at] : kKeys) {
    if (known == name) caption.insert(static_cast<qsizetype>(at), '&');
  }
  return caption;
}

}  // namespace

QMenu* AddRunnerMenu(MainWindow& window, Host& host, AppSettings& settings) {
  QMenu* options = OptionsMenu(window);
  if (!options) return nullptr;
  auto* runners = new QMenu(QStringLiteral("Emulator r&unners"), options);
  runners->menuAction()->setObjectName("mnu_runners");
  // Right after the Directories submenu, where the emulators are located; else at the end.
  QAction* before = nullptr;
  const QList<QAction*> actions = options->actions();
  for (qsizetype i = 0; i + 1 < actions.size(); ++i) {
    if (actions[i]->menu() && actions[i]->menu()->objectName() == QStringLiteral("mnu_directories"))
      before = actions[i + 1];
  }
  options->insertMenu(before, runners);
  for (const EmulatorProfile& profile : EmulatorProfiles()) {
    if (!profile.classic) continue;
    QMenu* menu = runners->addMenu(CaptionWithKey(profile.name));
    menu->menuAction()->setObjectName(QStringLiteral("mnu_run") + ToQt(profile.name));
    menu->setObjectName(QStringLiteral("mnu_run") + ToQt(profile.name));
    FillProfileMenu(menu, profile, host, settings);
    QObject::connect(menu, &QMenu::aboutToShow, menu, [menu, &profile, &host, &settings] {
      FillProfileMenu(menu, profile, host, settings);
    });
  }
  return runners;
}

}  // namespace romsteward::ui
