#include "ui/desktop_app.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QScreen>
#include <QTimer>
#include <cstdio>

#include "core/common/strings.h"
#include "core/host/app_title.h"
#include "core/settings/app_settings.h"
#include "core/settings/general_settings.h"
#include "core/settings/registry_store.h"
#include "ui/main_window.h"
#include "ui/message_box.h"
#include "ui/qt_host.h"
#include "ui/qt_text.h"
#include "ui/trash_file_operations.h"

namespace romsteward::ui {

namespace {

void PlaceWindow(QWidget& window, const AppSettings& settings) {
  if (const std::optional<WindowPosition> position = LoadWindowPosition(settings)) {
    window.move(position->x, position->y);
    return;
  }
  if (const QScreen* screen = QGuiApplication::primaryScreen()) {
    QRect frame = window.frameGeometry();
    frame.moveCenter(screen->availableGeometry().center());
    window.move(frame.topLeft());
  }
}

}  // namespace

int RunDesktop(int argc, char** argv) {
  QApplication app(argc, argv);
  QApplication::setApplicationName("romsteward");
  QApplication::setApplicationDisplayName(ToQt(kAppTitle));
  QApplication::setApplicationVersion(ROMSTEWARD_VERSION);

  QCommandLineParser parser;
  parser.setApplicationDescription(ToQt(kAppTitle));
  parser.addHelpOption();
  parser.addVersionOption();
  const QCommandLineOption settingsOption(
      "settings", "Settings file (default: $ROMSTEWARD_SETTINGS, else the user's own).", "FILE");
  parser.addOption(settingsOption);
  parser.process(app);
  if (!parser.positionalArguments().isEmpty()) {
    std::fputs("romsteward: unexpected argument; see --help\n", stderr);
    return 2;
  }

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
  TrashFileOperations operations;
  MainWindow window(host, settings, operations);
  host.SetParent(&window);
  PlaceWindow(window, settings);
  window.show();
  // The start-up may ask questions: let the window appear under them first.
  QTimer::singleShot(0, &window, [&window] { window.Start(); });
  return QApplication::exec();
}

}  // namespace romsteward::ui
