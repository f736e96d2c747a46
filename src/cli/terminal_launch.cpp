#include "cli/terminal_launch.h"

#include "cli/tool.h"
#include "core/app/launch_command.h"
#include "core/app/main_window_model.h"
#include "core/launch/posix_process.h"
#include "core/settings/app_settings.h"

namespace romsteward::cli {

// The one place where the terminal tool's commands reach the emulator launch: the selection's
// launch, started and waited for, then the window model's clean-up.
LaunchStep TerminalLaunchStep(ToolContext& context) {
  return [&context](MainWindowModel& model, std::function<void()> done) {
    if (AppSettings* settings = context.SettingsOrReport()) {
      PosixProcessRunner runner;
      LaunchCommand launch(context.host(), *settings, runner);
      if (!RunAndWait(launch, runner, model.LaunchRequestForSelection()))
        context.status = kExitFailure;
      model.LaunchFinished(launch);
    }
    done();
  };
}

}  // namespace romsteward::cli
