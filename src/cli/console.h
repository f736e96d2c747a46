#pragma once

namespace romsteward::cli {

/// Whether standard input and standard error are both a terminal, so that a question
/// written to one can be answered on the other.
bool StandardStreamsAreTerminals();
/// Whether standard error is a terminal (progress lines are drawn only there).
bool StandardErrorIsTerminal();

/// Hides what is typed on standard input for the object's lifetime (a masked text input).
class ScopedEchoOff {
public:
  ScopedEchoOff();
  ~ScopedEchoOff();
  ScopedEchoOff(const ScopedEchoOff&) = delete;
  ScopedEchoOff& operator=(const ScopedEchoOff&) = delete;

private:
  bool m_changed = false;
  unsigned m_savedFlags = 0;
};

}  // namespace romsteward::cli
