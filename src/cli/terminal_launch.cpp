#include "cli/terminal_launch.h"

#include <ostream>

#include "cli/tool.h"

namespace romsteward::cli {

// The one place where the terminal tool's commands reach the emulator launch: until the
// launch command is built into this tool, a launch is refused with a clear message.
LaunchStep TerminalLaunchStep(ToolContext& context) {
  return [&context](MainWindowModel&, std::function<void()> done) {
    context.err << "romsteward-tool: starting an emulator is not available in this build\n";
    context.status = kExitError;
    done();
  };
}

}  // namespace romsteward::cli
