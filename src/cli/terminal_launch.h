#pragma once

#include "core/app/launch_step.h"

namespace romsteward::cli {

class ToolContext;

/// The launch command of the terminal tool: starts the selected entry's emulator and waits
/// for it, reporting through `context`.
LaunchStep TerminalLaunchStep(ToolContext& context);

}  // namespace romsteward::cli
