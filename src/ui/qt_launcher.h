#pragma once

#include <QObject>
#include <chrono>
#include <functional>
#include <vector>

#include "core/app/launch_command.h"
#include "core/launch/process_runner.h"

class QPushButton;

namespace romsteward {
class AppSettings;
class Host;
}  // namespace romsteward

namespace romsteward::ui {

class LaunchRun;
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

  /// Ends every running emulator (its process group: SIGTERM, then SIGKILL after the grace
  /// period) and completes its launch; returns when they are all over.
  void EndAll();
  /// How long an emulator asked to end gets before it is killed (tests shorten it).
  void SetEndGracePeriod(std::chrono::milliseconds grace) { m_grace = grace; }

protected:
  /// Closing the window while a game runs asks first: Yes ends the emulators, No leaves them
  /// running and the program with them, windowless, until the last one ends and is cleaned up.
  bool eventFilter(QObject* watched, QEvent* event) override;

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
  std::vector<LaunchRun*> m_runs;  // those not over yet
  std::chrono::milliseconds m_grace = kEndGracePeriod;
  bool m_quitWhenIdle = false;
};

/// The question closing the window asks while a game runs.
inline constexpr std::string_view kEndRunningGame =
    "A game is still running. End the emulator now?\n\nNo leaves it running; the program "
    "puts its files right when it ends.";

}  // namespace romsteward::ui
