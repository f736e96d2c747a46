#pragma once

#include <signal.h>

#include <array>

#include "core/host/forwarding_host.h"

namespace romsteward::cli {

/// Until End(), SIGINT, SIGTERM and SIGHUP (those not ignored) no longer end the process at
/// once: they are noted, long work sees them through `host()` (whose progress then asks to
/// cancel) and cleans up after itself, and End() then ends the process by the signal that
/// came, as it would have ended without the guard.
class InterruptGuard {
public:
  explicit InterruptGuard(Host& inner);
  ~InterruptGuard();
  InterruptGuard(const InterruptGuard&) = delete;
  InterruptGuard& operator=(const InterruptGuard&) = delete;

  /// The host to do the work with: its progress reports a cancel once a signal came.
  Host& host() { return m_host; }
  /// Puts back the earlier handling and, when a signal came, ends the process by it.
  void End();

private:
  class CancellingHost : public ForwardingHost {
  public:
    using ForwardingHost::ForwardingHost;
    bool SetProgress(int percent) override;
  };

  static constexpr std::array kSignals{SIGINT, SIGTERM, SIGHUP};
  void Restore();

  CancellingHost m_host;
  std::array<struct sigaction, kSignals.size()> m_previous{};
  bool m_restored = false;
};

}  // namespace romsteward::cli
