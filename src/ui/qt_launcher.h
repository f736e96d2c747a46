#pragma once

#include <QObject>
#include <functional>

#include "core/app/launch_command.h"
#include "core/launch/process_runner.h"

class QPushButton;

namespace romsteward {
class AppSettings;
class Host;
}  // namespace romsteward

namespace romsteward::ui {

class MainWindow;

/// The desktop program's launches: the model's LaunchCommand started through QProcess (no
/// shell), so the window keeps running its event loop while the emulator plays. When the
/// process ends (or fails to start) the launch is completed, the model told and the window
/// shown again. Also the DetachedStarter of the extra command line.
class QtLauncher : public QObject, public DetachedStarter {
  Q_OBJECT
public:
  QtLauncher(MainWindow& window, Host& host, AppSettings& settings);
  ~QtLauncher() override;

  /// Connects "Run this game!", Enter and double click, "Calibrate Joystick", ENTER in the
  /// extra command line, and the model's launch step (favorites, the command-line start).
  void Connect();
  /// Begins `request`; `done` is called once when it is over (at once when nothing started).
  void Launch(LaunchRequest request, std::function<void()> done = {});
  /// How many emulators this program started that are still running.
  int Running() const { return m_running; }

  Status StartDetached(const ProcessSpec& spec) override;

signals:
  /// A launch was completed (after the model's LaunchFinished and the re-render).
  void launchFinished();

private:
  /// "Search ..." for each emulator, in the Options menu.
  void AddSearchItems();

  MainWindow& m_window;
  Host& m_host;
  AppSettings& m_settings;
  int m_running = 0;
};

}  // namespace romsteward::ui
