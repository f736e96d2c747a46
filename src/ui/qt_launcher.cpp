#include "ui/qt_launcher.h"

#include <signal.h>
#include <unistd.h>

#include <QApplication>
#include <QCloseEvent>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QProcess>
#include <QProcessEnvironment>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>
#include <memory>

#include "core/app/main_window_model.h"
#include "core/common/strings.h"
#include "core/host/app_title.h"
#include "core/host/host.h"
#include "core/launch/emulator_profiles.h"
#include "ui/emulator_tabs.h"
#include "ui/main_window.h"
#include "ui/qt_text.h"
#include "ui/runner_menu.h"

namespace romsteward::ui {

namespace {

void Configure(QProcess& process, const ProcessSpec& spec) {
  process.setProgram(ToQt(spec.program));
  QStringList arguments;
  for (const std::string& argument : spec.arguments)
    arguments << ToQt(argument);
  process.setArguments(arguments);
  if (!spec.workingDirectory.empty())
    process.setWorkingDirectory(ToQt(PathToUtf8(spec.workingDirectory)));
  if (!spec.environment.empty()) {
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const auto& [name, value] : spec.environment)
      environment.insert(ToQt(name), ToQt(value));
    process.setProcessEnvironment(environment);
  }
}

// "Search GenEm..." with its access key: a letter of the name that no other item of the
// submenu uses.
QString SearchCaption(const EmulatorProfile& profile) {
  static constexpr std::pair<std::string_view, char> kKeys[] = {
      {"GenEm", 'G'}, {"GenEmnew", 'n'}, {"Genecyst", 'c'},
      {"KGen", 'K'},  {"BlastEm", 'B'},  {"Mednafen", 'M'}};
  QString caption = ToQt(profile.locateCaption);
  for (const auto& [name, key] : kKeys) {
    if (name != profile.name) continue;
    const qsizetype at = caption.indexOf(QChar(key), caption.indexOf(' ') + 1);
    if (at > 0) caption.insert(at, '&');
  }
  return caption;
}

}  // namespace

/// One running launch: the command and its process. It deletes itself once it has
/// completed.
class LaunchRun : public QObject {
public:
  LaunchRun(QObject* parent, std::unique_ptr<LaunchCommand> launch)
      : QObject(parent), m_launch(std::move(launch)) {}
  // A run still going when the program ends is killed, with whatever it started; the
  // launch's own destructor then takes its preparation back, with nobody left to tell.
  ~LaunchRun() override {
    m_process.disconnect(this);
    if (const qint64 pid = m_process.processId(); pid > 0)
      ::kill(-static_cast<pid_t>(pid), SIGKILL);
  }

  /// SIGTERM to the emulator's process group, SIGKILL after `grace`; the launch is completed
  /// before this returns.
  void End(std::chrono::milliseconds grace) {
    const auto group = -static_cast<pid_t>(m_process.processId());
    if (group >= 0) return;
    m_endedOnRequest = true;
    ::kill(group, SIGTERM);
    if (!m_process.waitForFinished(static_cast<int>(grace.count()))) {
      ::kill(group, SIGKILL);
      m_process.waitForFinished(-1);
    }
    // Helpers it started and left behind go with it.
    ::kill(group, SIGKILL);
  }

  void Start(const ProcessSpec& spec, std::function<void(LaunchCommand&)> finished) {
    m_finished = std::move(finished);
    Configure(m_process, spec);
    // A process group of its own, so that ending the run reaches what the emulator started.
    m_process.setChildProcessModifier([] { ::setpgid(0, 0); });
    m_process.setStandardOutputFile(QProcess::nullDevice());
    connect(&m_process, &QProcess::started, this,
            [this] { m_launch->Started(static_cast<pid_t>(m_process.processId())); });
    connect(&m_process, &QProcess::readyReadStandardError, this, [this] {
      // Only the end is ever shown: a chatty emulator must not fill the memory.
      m_stderr += m_process.readAllStandardError();
      if (m_stderr.size() > kStderrKept) m_stderr.remove(0, m_stderr.size() - kStderrKept);
    });
    connect(&m_process, &QProcess::finished, this, [this](int code, QProcess::ExitStatus status) {
      ProcessOutcome outcome;
      outcome.started = true;
      outcome.exitStatus = status == QProcess::NormalExit ? code : -1;
      // After a crash QProcess on Unix reports the ending signal as the exit code.
      if (status != QProcess::NormalExit) outcome.signal = code > 0 ? code : SIGKILL;
      Finish(outcome);
    });
    connect(&m_process, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
      if (error != QProcess::FailedToStart) return;  // the others end in finished
      ProcessOutcome outcome;
      outcome.startError = FromQt(m_process.errorString());
      Finish(outcome);
    });
    m_clock.start();
    m_process.start();
  }

private:
  void Finish(ProcessOutcome outcome) {
    if (m_over) return;
    m_over = true;
    outcome.seconds = static_cast<double>(m_clock.elapsed()) / 1000.0;
    outcome.endedOnRequest = m_endedOnRequest;
    m_stderr += m_process.readAllStandardError();
    outcome.stderrTail = LastLines(FromQt(QString::fromLocal8Bit(m_stderr)), kStderrTailLines);
    m_launch->Complete(outcome);
    m_finished(*m_launch);
    deleteLater();
  }

  static constexpr qsizetype kStderrKept = 64 * 1024;
  QProcess m_process;
  QByteArray m_stderr;
  QElapsedTimer m_clock;
  std::unique_ptr<LaunchCommand> m_launch;
  std::function<void(LaunchCommand&)> m_finished;
  bool m_over = false;
  bool m_endedOnRequest = false;
};

QtLauncher::QtLauncher(MainWindow& window, Host& host, AppSettings& settings)
    : QObject(&window), m_window(window), m_host(host), m_settings(settings) {}

QtLauncher::~QtLauncher() = default;

void QtLauncher::Connect() {
  m_window.installEventFilter(this);
  auto* run = new QPushButton(QStringLiteral("Run this game!"));
  run->setObjectName("CmdLaunch");
  m_window.LaunchRow()->addWidget(run);
  m_window.BindButton(run, "CmdLaunch");
  const auto launchSelection = [this] { Launch(m_window.Model().LaunchRequestForSelection()); };
  connect(run, &QPushButton::clicked, this, launchSelection);
  connect(&m_window, &MainWindow::launchRequested, this, launchSelection);

  auto* calibrate = new QPushButton(QStringLiteral("Calibrate Joystick"));
  calibrate->setObjectName("CmdCalib");
  if (QWidget* genEm = m_window.Tabs()->widget(kTabGenEm); genEm && genEm->layout())
    genEm->layout()->addWidget(calibrate);
  m_window.BindButton(calibrate, "CmdCalib");
  connect(calibrate, &QPushButton::clicked, this,
          [this] { Launch(m_window.Model().CalibrationRequest()); });

  if (auto* extra = m_window.findChild<QLineEdit*>("txtCmd")) {
    connect(extra, &QLineEdit::returnPressed, this, [this] {
      m_window.Model().ExecuteExtraCommandLine(*this);
      m_window.Render();
    });
  }

  AddSearchItems();
  AddRunnerMenu(m_window, m_host, m_settings);

  m_window.Model().SetLaunchStep([this](MainWindowModel& model, std::function<void()> done) {
    Launch(model.LaunchRequestForSelection(), std::move(done));
  });
}

void QtLauncher::AddSearchItems() {
  auto* directories = m_window.findChild<QMenu*>("mnu_directories");
  if (!directories) return;
  // Above the temporary directory.
  QAction* before = directories->actions().value(0);
  for (const EmulatorProfile& profile : EmulatorProfiles()) {
    auto* search = new QAction(SearchCaption(profile), directories);
    search->setObjectName(ToQt(profile.locateItem));
    directories->insertAction(before, search);
    connect(search, &QAction::triggered, this, [this, &profile] {
      LocateEmulator(m_host, m_settings, profile);
      m_window.Render();
    });
  }
  directories->insertSeparator(before);
}

void QtLauncher::Launch(LaunchRequest request, std::function<void()> done) {
  request.ownEmulatorRunning = m_running > 0;
  auto launch = std::make_unique<LaunchCommand>(m_host, m_settings, *this);
  const std::optional<EmulatorCommand> command = launch->Begin(request);
  m_window.Render();
  if (!command) {
    if (done) done();
    return;
  }
  ++m_running;
  auto* run = new LaunchRun(this, std::move(launch));
  m_runs.push_back(run);
  run->Start(command->process, [this, run, done = std::move(done)](LaunchCommand& finished) {
    std::erase(m_runs, run);
    --m_running;
    if (m_running == 0 && m_quitWhenIdle) QTimer::singleShot(0, qApp, &QCoreApplication::quit);
    m_window.Model().LaunchFinished(finished);
    // The caller's clean-up (a favorite's copy, the command-line start's end) comes before
    // the window shows the model again.
    if (done) done();
    m_window.Render();
    emit launchFinished();
  });
}

void QtLauncher::EndAll() {
  // Each end completes its launch, which takes it off the list.
  for (LaunchRun* run : std::vector<LaunchRun*>(m_runs))
    run->End(m_grace);
}

bool QtLauncher::eventFilter(QObject* watched, QEvent* event) {
  if (watched != &m_window || event->type() != QEvent::Close || m_running == 0)
    return QObject::eventFilter(watched, event);
  if (m_host.AskYesNo(kEndRunningGame, MessageIcon::Question, kAppTitle) == Answer::Yes) {
    EndAll();
  } else {
    // The window goes, the program stays until the last emulator is over and cleaned up.
    QApplication::setQuitOnLastWindowClosed(false);
    m_quitWhenIdle = true;
  }
  return false;  // the window closes either way
}

Status QtLauncher::StartDetached(const ProcessSpec& spec) {
  QProcess process;
  Configure(process, spec);
  if (!process.startDetached())
    return Error{"Could not start " + spec.program + ": " + FromQt(process.errorString())};
  return {};
}

}  // namespace romsteward::ui
