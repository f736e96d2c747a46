#pragma once

#include <sys/types.h>

#include <chrono>
#include <memory>
#include <string>

#include "core/common/result.h"
#include "core/launch/process_runner.h"

namespace romsteward {

/// A child started by PosixProcessRunner: its standard error goes through a pipe (and on to
/// ours), so the last lines are at hand when it fails.
class ChildProcess {
public:
  ChildProcess(pid_t pid, int stderrPipe);
  ChildProcess(ChildProcess&& other) noexcept;
  ChildProcess& operator=(ChildProcess&&) = delete;
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;
  /// Waits for a child that was never waited for, so none is left a zombie.
  ~ChildProcess();

  pid_t Pid() const { return m_pid; }
  /// Whether it has not ended yet.
  bool IsRunning() const;
  /// Asks it to end (SIGTERM).
  void Terminate() const;
  /// Waits for it to end, passing its standard error through; once only.
  ProcessOutcome Wait();

private:
  pid_t m_pid = -1;
  int m_stderr = -1;
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
  ProcessOutcome Run(const ProcessSpec& spec);
  Status StartDetached(const ProcessSpec& spec) override;
};

}  // namespace romsteward
