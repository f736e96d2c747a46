#pragma once

#include <sys/types.h>

#include <chrono>
#include <functional>
#include <memory>
#include <string>

#include "core/common/result.h"
#include "core/launch/process_runner.h"

namespace romsteward {

/// A child started by PosixProcessRunner, leader of a process group of its own (so ending it
/// reaches whatever it started, and a terminal's Ctrl+C reaches only us): its standard error
/// goes through a pipe (and on to ours), so the last lines are at hand when it fails.
class ChildProcess {
public:
  ChildProcess(pid_t pid, int stderrPipe);
  ChildProcess(ChildProcess&& other) noexcept;
  ChildProcess& operator=(ChildProcess&&) = delete;
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;
  /// Ends (see End) a child that was never waited for, so none is left running or a zombie.
  ~ChildProcess();

  pid_t Pid() const { return m_pid; }
  /// Whether it has not ended yet.
  bool IsRunning() const;
  /// Asks its process group to end (SIGTERM).
  void Terminate() const;
  /// Waits for it to end, passing its standard error through; once only. Its exit and its
  /// standard error are watched together: once it has exited, what is in the pipe is read
  /// and the wait is over, even while a process it started still holds the pipe open.
  ProcessOutcome Wait();
  /// Ends the run: SIGTERM to the group, SIGKILL to what is left of it after `grace`, then
  /// Wait.
  ProcessOutcome End(std::chrono::milliseconds grace = kEndGracePeriod);

private:
  /// Waits at most `limit` for the exit, without reaping (WNOWAIT), so the pid (and with it
  /// the group's id) stays reserved for a signal; passes the standard error on meanwhile.
  bool AwaitExit(std::chrono::milliseconds limit);
  void Drain(bool toTheEnd);

  pid_t m_pid = -1;
  int m_stderr = -1;
  int m_exitWatch = -1;  // a pidfd, readable once the child has exited; -1 without one
  std::string m_kept;
  std::chrono::steady_clock::time_point m_started;
  bool m_waited = false;
};

/// posix_spawn and waitpid: the terminal tool's and the tests' way to run an emulator.
class PosixProcessRunner : public DetachedStarter {
public:
  /// Starts the program; an Error says why it could not (not found, not executable, a
  /// working directory that is not there).
  Result<ChildProcess> Start(const ProcessSpec& spec);
  /// Start and Wait in one; a failed start comes back as an outcome that did not start.
  /// SIGINT, SIGTERM and SIGHUP meanwhile end the child (End) instead of us, so the caller
  /// still cleans up after it. `started`, when given, hears the child's pid first.
  ProcessOutcome Run(const ProcessSpec& spec, const std::function<void(pid_t)>& started = {});
  Status StartDetached(const ProcessSpec& spec) override;
};

}  // namespace romsteward
