#pragma once

#include <chrono>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "core/common/result.h"

namespace romsteward {

/// One program to start: never a shell. The program is a path, or a bare name looked up on
/// PATH (a runner such as "dosbox"); each argument reaches it as it stands.
struct ProcessSpec {
  std::string program;
  std::vector<std::string> arguments;
  /// Empty: the caller's own.
  std::filesystem::path workingDirectory;
  /// Added to (or replacing in) the caller's environment.
  std::vector<std::pair<std::string, std::string>> environment;

  bool operator==(const ProcessSpec&) const = default;
};

/// How a started process ended.
struct ProcessOutcome {
  bool started = false;
  /// Why it could not start, when it did not.
  std::string startError;
  /// The exit status, or -1 when a signal ended it.
  int exitStatus = 0;
  /// The signal that ended it, 0 when it exited.
  int signal = 0;
  /// The last lines it wrote to its standard error.
  std::string stderrTail;
  /// How long it ran.
  double seconds = 0;
  /// We ended it (the window closed, the tool interrupted): not a failure to report.
  bool endedOnRequest = false;

  bool Succeeded() const { return started && exitStatus == 0 && signal == 0; }
};

/// Starts programs the user will not wait for: the extra command line, a non-image file
/// opened with the desktop's default program. The desktop program implements it with
/// QProcess::startDetached; the terminal tool and tests with PosixProcessRunner.
class DetachedStarter {
public:
  virtual ~DetachedStarter() = default;
  virtual Status StartDetached(const ProcessSpec& spec) = 0;
};

/// How long an emulator asked to end (SIGTERM) gets before its process group is killed: some
/// ignore SIGTERM, or sit behind a dialog of their own that never reads it.
inline constexpr std::chrono::milliseconds kEndGracePeriod{3000};

/// At most this much of a process's standard error is kept for the failure message.
inline constexpr std::size_t kStderrTailLines = 8;

/// The last `lines` lines of `text` (a final line end does not count as a line of its own).
std::string LastLines(std::string_view text, std::size_t lines);

}  // namespace romsteward
