#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <map>
#include <utility>

#include "core/common/strings.h"
#include "core/launch/posix_process.h"

extern char** environ;

namespace romsteward {

namespace {

// Enough of the standard error for the last lines, without growing with a chatty emulator.
constexpr std::size_t kKeptStderrBytes = 16 * 1024;
// Long enough to stand for "until it exits" in a deadline.
constexpr std::chrono::milliseconds kForever = std::chrono::hours(24 * 365);

// Set by the signals Run forwards; Wait then ends the child instead of us.
volatile std::sig_atomic_t g_endRequested = 0;
void RequestEnd(int) {
  g_endRequested = 1;
}

// A descriptor that becomes readable when `pid` exits; -1 on a kernel without pidfds. (The
// syscall itself: glibc 2.36's header declares the wrapper without C linkage for C++.)
int ExitWatch(pid_t pid) {
  return static_cast<int>(syscall(SYS_pidfd_open, pid, 0));
}

// Whether `pid` has exited, looked at without reaping it.
bool HasExited(pid_t pid) {
  siginfo_t info{};
  if (waitid(P_PID, static_cast<id_t>(pid), &info, WEXITED | WNOHANG | WNOWAIT) != 0)
    return errno != EINTR;  // ECHILD: nothing left to wait for
  return info.si_pid != 0;
}

std::vector<std::string> Environment(const ProcessSpec& spec) {
  std::map<std::string, std::string> values;
  std::vector<std::string> order;
  for (char** entry = environ; entry && *entry; ++entry) {
    const std::string_view text(*entry);
    const auto equals = text.find('=');
    if (equals == std::string_view::npos) continue;
    std::string name(text.substr(0, equals));
    if (values.emplace(name, std::string(text.substr(equals + 1))).second) order.push_back(name);
  }
  for (const auto& [name, value] : spec.environment) {
    if (!values.contains(name)) order.push_back(name);
    values[name] = value;
  }
  std::vector<std::string> result;
  for (const auto& name : order)
    result.push_back(name + "=" + values[name]);
  return result;
}

std::vector<char*> Pointers(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  for (auto& text : texts)
    pointers.push_back(text.data());
  pointers.push_back(nullptr);
  return pointers;
}

Error SpawnError(const ProcessSpec& spec, int code) {
  return {"Could not start " + spec.program + ": " + std::strerror(code), code};
}

// posix_spawn with the standard error optionally on `stderrWrite`; the working directory is
// entered by the child alone (posix_spawn_file_actions_addchdir_np, glibc 2.29).
Result<pid_t> Spawn(const ProcessSpec& spec, int stderrWrite, int stderrRead) {
  std::error_code error;
  if (!spec.workingDirectory.empty() &&
      !std::filesystem::is_directory(spec.workingDirectory, error))
    return Error{"Could not start " + spec.program + ": the folder " +
                     PathToUtf8(spec.workingDirectory) + " does not exist",
                 ENOENT};
  std::vector<std::string> argv{spec.program};
  argv.insert(argv.end(), spec.arguments.begin(), spec.arguments.end());
  auto env = Environment(spec);
  auto argvPointers = Pointers(argv);
  auto envPointers = Pointers(env);

  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  if (!spec.workingDirectory.empty())
    posix_spawn_file_actions_addchdir_np(&actions, spec.workingDirectory.c_str());
  if (stderrWrite >= 0) {
    posix_spawn_file_actions_adddup2(&actions, stderrWrite, STDERR_FILENO);
    posix_spawn_file_actions_addclose(&actions, stderrRead);
  }
  // A fresh signal state: a caller that ignores SIGINT must not hand that on.
  posix_spawnattr_t attributes;
  posix_spawnattr_init(&attributes);
  sigset_t all;
  sigfillset(&all);
  sigset_t none;
  sigemptyset(&none);
  posix_spawnattr_setsigdefault(&attributes, &all);
  posix_spawnattr_setsigmask(&attributes, &none);
  // A process group of its own: ending the run reaches the helpers it starts too.
  posix_spawnattr_setpgroup(&attributes, 0);
  posix_spawnattr_setflags(&attributes,
                           POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETPGROUP);

  pid_t pid = -1;
  const int code = posix_spawnp(&pid, spec.program.c_str(), &actions, &attributes,
                                argvPointers.data(), envPointers.data());
  posix_spawnattr_destroy(&attributes);
  posix_spawn_file_actions_destroy(&actions);
  if (code != 0) return SpawnError(spec, code);
  return pid;
}

}  // namespace

ChildProcess::ChildProcess(pid_t pid, int stderrPipe)
    : m_pid(pid),
      m_stderr(stderrPipe),
      m_exitWatch(ExitWatch(pid)),
      m_started(std::chrono::steady_clock::now()) {
  if (m_stderr >= 0) fcntl(m_stderr, F_SETFL, fcntl(m_stderr, F_GETFL) | O_NONBLOCK);
}

ChildProcess::ChildProcess(ChildProcess&& other) noexcept
    : m_pid(std::exchange(other.m_pid, -1)),
      m_stderr(std::exchange(other.m_stderr, -1)),
      m_exitWatch(std::exchange(other.m_exitWatch, -1)),
      m_kept(std::move(other.m_kept)),
      m_started(other.m_started),
      m_waited(std::exchange(other.m_waited, true)) {}

ChildProcess::~ChildProcess() {
  if (!m_waited && m_pid > 0) End();
  if (m_stderr >= 0) close(m_stderr);
  if (m_exitWatch >= 0) close(m_exitWatch);
}

bool ChildProcess::IsRunning() const {
  return !m_waited && m_pid > 0 && !HasExited(m_pid);
}

void ChildProcess::Terminate() const {
  if (!m_waited && m_pid > 0) kill(-m_pid, SIGTERM);
}

void ChildProcess::Drain(bool toTheEnd) {
  char buffer[4096];
  while (m_stderr >= 0) {
    const ssize_t got = read(m_stderr, buffer, sizeof buffer);
    if (got < 0 && errno == EINTR) continue;
    if (got < 0 && errno == EAGAIN) {
      if (!toTheEnd) return;
      // Its own writers are gone, helpers it started may write on forever: stop here.
      break;
    }
    if (got <= 0) break;
    // Passed on, so the user still sees what the emulator says.
    [[maybe_unused]] const ssize_t shown = write(STDERR_FILENO, buffer, static_cast<size_t>(got));
    m_kept.append(buffer, static_cast<std::size_t>(got));
    if (m_kept.size() > 2 * kKeptStderrBytes) m_kept.erase(0, m_kept.size() - kKeptStderrBytes);
    if (!toTheEnd) return;
  }
  close(m_stderr);
  m_stderr = -1;
}

bool ChildProcess::AwaitExit(std::chrono::milliseconds limit) {
  const auto deadline = std::chrono::steady_clock::now() + limit;
  for (;;) {
    if (HasExited(m_pid)) return true;
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
        deadline - std::chrono::steady_clock::now());
    if (left.count() <= 0 || g_endRequested) return false;
    std::array<pollfd, 2> watched{};
    nfds_t count = 0;
    if (m_stderr >= 0) watched[count++] = {m_stderr, POLLIN, 0};
    if (m_exitWatch >= 0) watched[count++] = {m_exitWatch, POLLIN, 0};
    // Without a pidfd the exit is looked at every 50 ms; with one, a request to end that
    // reached another thread is still seen within 250 ms.
    const auto slice = std::min(left, std::chrono::milliseconds(m_exitWatch >= 0 ? 250 : 50));
    const int ready = poll(watched.data(), count, static_cast<int>(slice.count()));
    if (ready > 0 && m_stderr >= 0 && watched[0].revents != 0) Drain(false);
  }
}

ProcessOutcome ChildProcess::Wait() {
  ProcessOutcome outcome;
  if (m_waited || m_pid <= 0) return outcome;
  while (!AwaitExit(kForever)) {
    if (g_endRequested) return End();
  }
  m_waited = true;
  outcome.started = true;
  Drain(true);
  int status = 0;
  while (waitpid(m_pid, &status, 0) < 0 && errno == EINTR) {
  }
  outcome.seconds =
      std::chrono::duration<double>(std::chrono::steady_clock::now() - m_started).count();
  if (WIFEXITED(status)) {
    outcome.exitStatus = WEXITSTATUS(status);
  } else if (WIFSIGNALED(status)) {
    outcome.exitStatus = -1;
    outcome.signal = WTERMSIG(status);
  }
  outcome.stderrTail = LastLines(m_kept, kStderrTailLines);
  return outcome;
}

ProcessOutcome ChildProcess::End(std::chrono::milliseconds grace) {
  if (m_waited || m_pid <= 0) return {};
  g_endRequested = 0;
  Terminate();
  const auto deadline = std::chrono::steady_clock::now() + grace;
  while (!AwaitExit(std::chrono::duration_cast<std::chrono::milliseconds>(
             deadline - std::chrono::steady_clock::now())) &&
         std::chrono::steady_clock::now() < deadline) {
    g_endRequested = 0;
  }
  // The leader is not reaped yet, so its id still names its group: what is left of it goes.
  kill(-m_pid, SIGKILL);
  ProcessOutcome outcome = Wait();
  outcome.endedOnRequest = true;
  return outcome;
}

Result<ChildProcess> PosixProcessRunner::Start(const ProcessSpec& spec) {
  int fds[2];
  if (pipe2(fds, O_CLOEXEC) != 0) return Error{std::strerror(errno), errno};
  auto pid = Spawn(spec, fds[1], fds[0]);
  close(fds[1]);
  if (!pid) {
    close(fds[0]);
    return pid.error();
  }
  return ChildProcess(*pid, fds[0]);
}

ProcessOutcome PosixProcessRunner::Run(const ProcessSpec& spec,
                                       const std::function<void(pid_t)>& started) {
  auto child = Start(spec);
  if (!child) {
    ProcessOutcome outcome;
    outcome.startError = child.error().message;
    return outcome;
  }
  if (started) started(child->Pid());
  // Forwarded while we wait: the child ends, we stay to clean up after it.
  struct sigaction forward {};
  forward.sa_handler = RequestEnd;
  sigemptyset(&forward.sa_mask);
  constexpr std::array kForwarded{SIGINT, SIGTERM, SIGHUP};
  std::array<struct sigaction, kForwarded.size()> previous{};
  g_endRequested = 0;
  for (std::size_t i = 0; i < kForwarded.size(); ++i)
    sigaction(kForwarded[i], &forward, &previous[i]);
  ProcessOutcome outcome = child->Wait();
  for (std::size_t i = 0; i < kForwarded.size(); ++i)
    sigaction(kForwarded[i], &previous[i], nullptr);
  return outcome;
}

Status PosixProcessRunner::StartDetached(const ProcessSpec& spec) {
  auto pid = Spawn(spec, -1, -1);
  if (!pid) return pid.error();
  // Never waited for: a program that outlives us is adopted and reaped by init.
  int status = 0;
  waitpid(*pid, &status, WNOHANG);
  return {};
}

}  // namespace romsteward
