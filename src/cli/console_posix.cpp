#include <termios.h>
#include <unistd.h>

#include "cli/console.h"

namespace romsteward::cli {

bool StandardStreamsAreTerminals() {
  return isatty(STDIN_FILENO) == 1 && isatty(STDERR_FILENO) == 1;
}

bool StandardErrorIsTerminal() {
  return isatty(STDERR_FILENO) == 1;
}

ScopedEchoOff::ScopedEchoOff() {
  termios settings{};
  if (tcgetattr(STDIN_FILENO, &settings) != 0) return;
  m_savedFlags = static_cast<unsigned>(settings.c_lflag);
  settings.c_lflag &= ~static_cast<tcflag_t>(ECHO);
  m_changed = tcsetattr(STDIN_FILENO, TCSAFLUSH, &settings) == 0;
}

ScopedEchoOff::~ScopedEchoOff() {
  if (!m_changed) return;
  termios settings{};
  if (tcgetattr(STDIN_FILENO, &settings) != 0) return;
  settings.c_lflag = static_cast<tcflag_t>(m_savedFlags);
  tcsetattr(STDIN_FILENO, TCSAFLUSH, &settings);
}

}  // namespace romsteward::cli
