#include <csignal>

#include "cli/interrupt_guard.h"

namespace romsteward::cli {

namespace {

volatile std::sig_atomic_t g_caught = 0;

void Note(int signal) {
  g_caught = signal;
}

}  // namespace

InterruptGuard::InterruptGuard(Host& inner) : m_host(inner) {
  g_caught = 0;
  struct sigaction note {};
  note.sa_handler = Note;
  // Reads under way go on; the work looks at the note at its next step.
  note.sa_flags = SA_RESTART;
  sigemptyset(&note.sa_mask);
  for (std::size_t i = 0; i < kSignals.size(); ++i) {
    sigaction(kSignals[i], &note, &m_previous[i]);
    // A signal ignored on purpose (nohup) stays ignored.
    if (m_previous[i].sa_handler == SIG_IGN) sigaction(kSignals[i], &m_previous[i], nullptr);
  }
}

InterruptGuard::~InterruptGuard() {
  Restore();
}

void InterruptGuard::Restore() {
  if (m_restored) return;
  m_restored = true;
  for (std::size_t i = 0; i < kSignals.size(); ++i)
    sigaction(kSignals[i], &m_previous[i], nullptr);
}

void InterruptGuard::End() {
  Restore();
  const int signal = g_caught;
  g_caught = 0;
  if (signal != 0) std::raise(signal);
}

bool InterruptGuard::CancellingHost::SetProgress(int percent) {
  return ForwardingHost::SetProgress(percent) && g_caught == 0;
}

}  // namespace romsteward::cli
