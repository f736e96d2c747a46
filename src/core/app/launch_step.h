#pragma once

#include <functional>

namespace romsteward {

class MainWindowModel;

/// The launch command of the launch button (`CmdLaunch`): runs the selected entry with the
/// option controls as they stand, and calls `done` once when the launch is over (at once
/// when nothing started). The terminal tool may call it before returning; the desktop
/// program calls it when the emulator has ended, so the window never blocks.
using LaunchStep = std::function<void(MainWindowModel& model, std::function<void()> done)>;

}  // namespace romsteward
