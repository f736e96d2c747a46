#include "ui/desktop_app.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QScreen>
#include <QTimer>

#include "core/app/launch_command.h"
#include "core/common/strings.h"
#include "core/host/app_title.h"
#include "core/settings/app_settings.h"
#include "core/settings/general_settings.h"
#include "core/settings/registry_store.h"
#include "ui/favorites_menu.h"
#include "ui/layout/window_layout.h"
#include "ui/main_window.h"
#include "ui/message_box.h"
#include "ui/qt_host.h"
#include "ui/qt_launcher.h"
#include "ui/qt_text.h"
#include "ui/screen_place.h"
#include "ui/trash_file_operations.h"

namespace romsteward::ui {

namespace {

void PlaceWindow(QWidget& window, const AppSettings& settings) {
  if (const std::optional<WindowPosition> position = LoadWindowPosition(settings)) {
    // A place saved on a larger or another screen must not leave the window out of reach.
    PlaceOnScreen(window, {position->x, position->y});
    return;
  }
  if (const QScreen* screen = QGuiApplication::primaryScreen()) {
    QRect frame = window.frameGeometry();
    frame.moveCenter(screen->availableGeometry().center());
    window.move(frame.topLeft());
  }
}

}  // namespace

void NameApplication() {
  QApplication::setApplicationName("romsteward");
  QApplication::setApplicationVersion(ROMSTEWARD_VERSION);
  // No display name: Qt would append it to every caption, and the captions are the program's
  // own texts ("Genesis Romsteward - Sonic", "CRC error!").
}

int RunDesktop(int argc, char** argv) {
  QApplication app(argc, argv);
  NameApplication();

  QCommandLineParser parser;
  parser.setApplicationDescription(ToQt(kAppTitle));
  parser.addHelpOption();
  parser.addVersionOption();
  const QCommandLineOption settingsOption(
      "settings", "Settings file (default: $ROMSTEWARD_SETTINGS, else the user's own).", "FILE");
  parser.addOption(settingsOption);
  parser.addPositionalArgument("FILE", "An image to run with its saved options; no window.");
  parser.process(app);

  const std::filesystem::path file = parser.isSet(settingsOption)
                                         ? Utf8ToPath(FromQt(parser.value(settingsOption)))
                                         : RegistryStore::DefaultLocation();
  auto store = RegistryStore::Open(file);
  if (!store) {
    // Nothing is lost by stopping here: the file is left as it was found.
    ShowMessageBox(nullptr, MessageIcon::Critical, {}, store.error().message, QMessageBox::Ok,
                   QMessageBox::Ok);
    return 1;
  }
  AppSettings settings(**store);
  QtHost host;
  // A launch that was killed left patched images or extracted copies: put them right first.
  RecoverInterruptedLaunches(host, **store);
  TrashFileOperations operations;
  MainWindow window(host, settings, operations);
  host.SetParent(&window);
  QtLauncher launcher(window, host, settings);
  launcher.Connect();
  window.Model().LoadFavoritesMenu();
  window.InsertMenu(new FavoritesMenu(window));

  if (const QStringList words = parser.positionalArguments(); !words.isEmpty()) {
    // The whole command line is the path: a file manager may pass one with blanks unquoted.
    const std::string path = FromQt(words.join(' '));
    // Only the emulator's end ends this run, not a closed message box.
    QApplication::setQuitOnLastWindowClosed(false);
    QTimer::singleShot(0, &window, [&window, path] {
      window.Model().RunImagePath(path, [] { QCoreApplication::quit(); });
    });
    return QApplication::exec();
  }
  (new WindowLayout(window, host, settings))->Load();
  PlaceWindow(window, settings);
  window.show();
  // The start-up may ask questions: let the window appear under them first.
  QTimer::singleShot(0, &window, [&window] { window.Start(); });
  return QApplication::exec();
}

}  // namespace romsteward::ui
