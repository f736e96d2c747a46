#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
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
  posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK);

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
    : m_pid(pid), m_stderr(stderrPipe), m_started(std::chrono::steady_clock::now()) {}

ChildProcess::ChildProcess(ChildProcess&& other) noexcept
    : m_pid(std::exchange(other.m_pid, -1)),
      m_stderr(std::exchange(other.m_stderr, -1)),
      m_started(other.m_started),
      m_waited(std::exchange(other.m_waited, true)) {}

ChildProcess::~ChildProcess() {
  if (!m_waited && m_pid > 0) Wait();
  if (m_stderr >= 0) close(m_stderr);
}

bool ChildProcess::IsRunning() const {
  if (m_waited || m_pid <= 0) return false;
  siginfo_t info{};
  // WNOWAIT: look without reaping, so Wait still gets the status.
  if (waitid(P_PID, static_cast<id_t>(m_pid), &info, WEXITED | WNOHANG | WNOWAIT) != 0)
    return false;
  return info.si_pid == 0;
}

void ChildProcess::Terminate() const {
  if (!m_waited && m_pid > 0) kill(m_pid, SIGTERM);
}

ProcessOutcome ChildProcess::Wait() {
  ProcessOutcome outcome;
  if (m_waited || m_pid <= 0) return outcome;
  m_waited = true;
  outcome.started = true;
  std::string kept;
  if (m_stderr >= 0) {
    char buffer[4096];
    for (;;) {
      const ssize_t got = read(m_stderr, buffer, sizeof buffer);
      if (got < 0 && errno == EINTR) continue;
      if (got <= 0) break;
      // Passed on, so the user still sees what the emulator says.
      [[maybe_unused]] const ssize_t shown = write(STDERR_FILENO, buffer, static_cast<size_t>(got));
      kept.append(buffer, static_cast<std::size_t>(got));
      if (kept.size() > 2 * kKeptStderrBytes) kept.erase(0, kept.size() - kKeptStderrBytes);
    }
    close(m_stderr);
    m_stderr = -1;
  }
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
  outcome.stderrTail = LastLines(kept, kStderrTailLines);
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

ProcessOutcome PosixProcessRunner::Run(const ProcessSpec& spec) {
  auto child = Start(spec);
  if (!child) {
    ProcessOutcome outcome;
    outcome.startError = child.error().message;
    return outcome;
  }
  return child->Wait();
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
