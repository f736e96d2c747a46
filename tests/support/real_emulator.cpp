#include "support/real_emulator.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cctype>
#include <chrono>
#include <fstream>
#include <iostream>
#include <iterator>
#include <sstream>
#include <thread>

#include "core/app/launch_command.h"
#include "core/common/strings.h"
#include "core/demo/cartridge_builder.h"
#include "core/demo/demo_collection.h"
#include "core/launch/play_history.h"
#include "core/settings/app_settings.h"
#include "support/scoped_env.h"
#include "support/scripted_host.h"
#include "support/temp_dir.h"

extern char** environ;

namespace romsteward::test {

namespace {

using namespace std::chrono_literals;

constexpr const char* kXvfb = "/usr/bin/Xvfb";
constexpr const char* kXwininfo = "/usr/bin/xwininfo";
constexpr const char* kBlastEmDefaults = "/etc/blastem/default.cfg";

bool Exists(const std::filesystem::path& path) {
  std::error_code error;
  return std::filesystem::exists(path, error);
}

// Polls `done` until it holds or `limit` has passed by the clock (a loaded machine makes each
// look slow, so looks are not counted).
template <class Predicate>
bool WaitFor(Predicate done, std::chrono::milliseconds limit) {
  const auto deadline = std::chrono::steady_clock::now() + limit;
  while (std::chrono::steady_clock::now() < deadline) {
    if (done()) return true;
    std::this_thread::sleep_for(50ms);
  }
  return done();
}

std::string Comm(pid_t pid) {
  std::ifstream in("/proc/" + std::to_string(pid) + "/comm");
  std::string name;
  std::getline(in, name);
  return name;
}

// A program's standard output (no shell).
std::string Output(std::vector<std::string> argv) {
  int fds[2];
  if (pipe2(fds, O_CLOEXEC) != 0) return {};
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, fds[1], STDOUT_FILENO);
  posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
  std::vector<char*> pointers;
  for (auto& word : argv)
    pointers.push_back(word.data());
  pointers.push_back(nullptr);
  pid_t pid = -1;
  const int code = posix_spawn(&pid, argv[0].c_str(), &actions, nullptr, pointers.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  close(fds[1]);
  std::string text;
  char buffer[4096];
  ssize_t got = 0;
  while (code == 0 && (got = read(fds[0], buffer, sizeof buffer)) > 0)
    text.append(buffer, static_cast<std::size_t>(got));
  close(fds[0]);
  int status = 0;
  if (code == 0) waitpid(pid, &status, 0);
  return text;
}

// BlastEm's own defaults with OpenGL off: under Xvfb its OpenGL cannot set the swap interval,
// and BlastEm then puts up "Failed to set vsync ..." in a message box and waits for a click
// (found by running it under xvfb-run; SDL's renderer has no such complaint).
void PrepareHome(const std::filesystem::path& home) {
  std::filesystem::create_directories(home / ".config/blastem");
  std::ifstream defaults(kBlastEmDefaults);
  std::stringstream text;
  text << defaults.rdbuf();
  std::string config = text.str();
  if (const auto gl = config.find("\tgl on"); gl != std::string::npos) {
    config.replace(gl, 6, "\tgl off");
  } else {
    config = "video {\n\tgl off\n\tvsync off\n}\n";
  }
  WriteTestFile(home / ".config/blastem/blastem.cfg", config);
  // Mednafen keeps what it is not told here at its defaults; its frame buffer without OpenGL
  // stays clear of Xvfb's software OpenGL for the same reason as SDL_RENDER_DRIVER below.
  std::filesystem::create_directories(home / ".mednafen");
  WriteTestFile(home / ".mednafen/mednafen.cfg", "video.driver softfb\n");
}

// The game window: BlastEm names it after itself, Mednafen after the cartridge.
bool IsGameWindow(std::string_view title, std::string_view program, std::string_view cartridge) {
  std::string lower(title);
  for (char& c : lower)
    c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return lower.find(program) != std::string::npos || title.starts_with(cartridge);
}

}  // namespace

VirtualDisplay::~VirtualDisplay() {
  if (m_server > 0) {
    kill(-m_server, SIGTERM);
    waitpid(m_server, nullptr, 0);
  }
}

bool VirtualDisplay::Start() {
  // Numbers far from those xvfb-run and Xvfb's own choice start at, spread by our pid, and
  // free in every sense: other sandboxes on this machine may have their own /tmp yet share
  // the abstract socket names (/proc/net/unix), and a client reaches the abstract one first.
  std::ifstream netUnix("/proc/net/unix");
  const std::string sockets((std::istreambuf_iterator<char>(netUnix)), {});
  for (int tries = 0, number = 500 + static_cast<int>(getpid() % 400); tries < 50;
       ++tries, ++number) {
    const std::string n = std::to_string(number);
    if (Exists("/tmp/.X11-unix/X" + n) || Exists("/tmp/.X" + n + "-lock") ||
        sockets.find("@/tmp/.X11-unix/X" + n + "\n") != std::string::npos)
      continue;
    if (StartServer(n)) return true;
  }
  return false;
}

bool VirtualDisplay::StartServer(const std::string& number) {
  // Xvfb writes its number to descriptor 3 once it answers; it exits when the number is taken.
  int fds[2];
  if (pipe2(fds, O_CLOEXEC) != 0) return false;
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, fds[1], 3);
  posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
  posix_spawnattr_t attributes;
  posix_spawnattr_init(&attributes);
  posix_spawnattr_setpgroup(&attributes, 0);
  posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP);
  std::vector<std::string> argv{kXvfb, ":" + number, "-displayfd", "3",         "-nolisten",
                                "tcp", "-screen",    "0",          "800x600x24"};
  std::vector<char*> pointers;
  for (auto& word : argv)
    pointers.push_back(word.data());
  pointers.push_back(nullptr);
  pid_t server = -1;
  const int code = posix_spawn(&server, kXvfb, &actions, &attributes, pointers.data(), environ);
  posix_spawnattr_destroy(&attributes);
  posix_spawn_file_actions_destroy(&actions);
  close(fds[1]);
  std::string said;
  pollfd ready{fds[0], POLLIN, 0};
  char buffer[32];
  ssize_t got = 0;
  while (code == 0 && said.find('\n') == std::string::npos && poll(&ready, 1, 10000) > 0 &&
         (got = read(fds[0], buffer, sizeof buffer)) > 0)
    said.append(buffer, static_cast<std::size_t>(got));
  close(fds[0]);
  if (code != 0) return false;
  if (said.find(number) != 0) {
    kill(-server, SIGKILL);
    waitpid(server, nullptr, 0);
    return false;
  }
  m_server = server;
  m_name = ":" + number;
  // It has been seen to refuse clients for a while after saying it is ready: up means it
  // answered three times in a row.
  int answered = 0;
  WaitFor(
      [&] {
        const bool answers = Output({kXwininfo, "-display", m_name, "-root"}).find("root window") !=
                             std::string::npos;
        answered = answers ? answered + 1 : 0;
        return answered >= 3;
      },
      10s);
  return true;
}

std::string MissingForRealEmulator(std::string_view program) {
  const std::filesystem::path needed[] = {std::filesystem::path("/usr/games") / program, kXvfb,
                                          kXwininfo};
  for (const auto& path : needed)
    if (!Exists(path)) return path.string() + " is not installed";
  return {};
}

std::vector<std::string> WindowTitles(const std::string& display) {
  std::vector<std::string> titles;
  std::istringstream lines(Output({kXwininfo, "-display", display, "-root", "-children"}));
  // `     0x200006 "UNKNOWN - BlastEm - 60.0 fps": ("blastem" "blastem")  800x600+...`
  for (std::string line; std::getline(lines, line);) {
    const auto open = line.find(" \"");
    const auto close = line.rfind("\": (");
    if (line.find("0x") == std::string::npos || open == std::string::npos ||
        close == std::string::npos || close <= open)
      continue;
    titles.push_back(line.substr(open + 2, close - open - 2));
  }
  return titles;
}

namespace {

std::string SmokeRunOnce(std::string_view program, EmulatorTab tab, const std::string& display,
                         const std::filesystem::path& folder, const std::string& emulatorPath) {
  const auto home = folder / "home";
  const auto temp = folder / "temp";
  std::filesystem::create_directories(temp);
  PrepareHome(home);
  ScopedEnv displayEnv("DISPLAY", display);
  ScopedEnv homeEnv("HOME", PathToUtf8(home));
  ScopedEnv mednafenHome("MEDNAFEN_HOME", PathToUtf8(home / ".mednafen"));
  ScopedEnv config("XDG_CONFIG_HOME", PathToUtf8(home / ".config"));
  ScopedEnv data("XDG_DATA_HOME", PathToUtf8(home / ".local/share"));
  ScopedEnv audio("SDL_AUDIODRIVER", "dummy");
  // SDL's OpenGL renderer on Xvfb's software OpenGL has deadlocked BlastEm at start, before
  // its first window, in about 1 run of 25 (found by running it in a loop; every thread in a
  // futex wait). SDL's own software renderer did not in 100 runs.
  ScopedEnv renderer("SDL_RENDER_DRIVER", "software");
  ScopedEnv multi("MEDNAFEN_ALLOWMULTI", "1");

  auto store = RegistryStore::Open(folder / "settings.sqlite3");
  if (!store) return store.error().message;
  AppSettings settings(**store);
  ScriptedHost host;
  const std::string cartridge = "Smoke Test (U)";
  CartridgeSpec spec;
  spec.backupRam = true;
  auto zip = BuildZipArchive({{cartridge + ".bin", BuildCartridgeImage(spec)}});
  if (!zip) return "no archive";
  WriteTestFile(folder / "demo.zip", *zip);
  (void)settings.SaveSetting(kSectionSettings, "temp", PathToUtf8(temp));
  const EmulatorProfile* profile = ProfileForTab(static_cast<int>(tab), false);
  if (!emulatorPath.empty() && profile)
    (void)settings.SaveSetting(kSectionSettings, profile->pathKey, emulatorPath);

  LaunchRequest request;
  request.diret = PathToUtf8(folder / "demo.zip");
  request.zipListing = true;
  request.entryText = cartridge + ".bin";
  request.country = "USA";
  request.options.preferredEmulator = static_cast<int>(tab);
  request.options.blastNoSound = request.options.mednafenNoSound = true;

  PosixProcessRunner runner;
  LaunchCommand launch(host, settings, runner);
  const auto command = launch.Begin(request);
  if (!command) return "the launch stopped: " + host.Transcript();
  auto child = runner.Start(command->process);
  if (!child) return child.error().message;
  launch.Started(child->Pid());

  // Running as itself, with no window but its game's, for a moment: the cartridge did not
  // freeze it and nothing waits for a click.
  std::string failure;
  const auto dialog = [&] {
    for (const auto& title : WindowTitles(display))
      if (!IsGameWindow(title, program, cartridge)) return title;
    return std::string();
  };
  std::string seen;
  const bool up = WaitFor(
      [&] {
        seen = dialog();
        return !seen.empty() || !child->IsRunning() ||
               (Comm(child->Pid()) == program && !WindowTitles(display).empty());
      },
      20s);
  const auto alive = std::chrono::steady_clock::now() + 600ms;
  while (up && seen.empty() && child->IsRunning() && std::chrono::steady_clock::now() < alive) {
    std::this_thread::sleep_for(100ms);
    seen = dialog();
  }
  if (!seen.empty()) {
    failure = std::string(program) + " put up a dialog \"" + seen + "\"";
  } else if (!up) {
    failure = std::string(program) + " showed no window (running as \"" + Comm(child->Pid()) +
              "\", " + std::to_string(WindowTitles(display).size()) + " window(s) named)";
  } else if (!child->IsRunning()) {
    failure = std::string(program) + " ended by itself";
  } else if (std::filesystem::is_empty(temp)) {
    failure = "no extracted copy while it ran";
  }
  const ProcessOutcome outcome = child->End();
  if (!failure.empty()) {
    launch.Complete(outcome);
    return failure + "; its last words: " + outcome.stderrTail;
  }
  launch.Complete(outcome);
  // It ended by itself on SIGTERM (BlastEm has exited with 1 on a heavily loaded machine,
  // which the launch reports; the clean-up is the same).
  if (!outcome.started || outcome.signal != 0)
    return std::string(program) + " did not end on SIGTERM (signal " +
           std::to_string(outcome.signal) + ")";
  if (!std::filesystem::is_empty(temp)) return "the extracted copy stayed";
  if (!PlayHistory(settings, request.entryText)) return "no play history";
  return {};
}

}  // namespace

std::string SmokeRun(std::string_view program, EmulatorTab tab, const std::string& display,
                     const std::filesystem::path& folder, const std::string& emulatorPath) {
  std::string failure = SmokeRunOnce(program, tab, display, folder, emulatorPath);
  // Xvfb on the shared build machine refuses about one connection in fifty, xwininfo's alone
  // as well: a run whose emulator never reached the display is repeated once, and said so.
  if (failure.find("showed no window") != std::string::npos ||
      failure.find("open display") != std::string::npos) {
    std::cerr << "repeated after the display refused the emulator: " << failure << '\n';
    failure = SmokeRunOnce(program, tab, display, folder / "again", emulatorPath);
  }
  return failure;
}

}  // namespace romsteward::test
