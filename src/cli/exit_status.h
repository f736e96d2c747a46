#pragma once

#include "cli/tool.h"
#include "core/tools/split_join.h"

namespace romsteward::cli {

/// The exit status of a tool command whose messages the Host has already shown: a No or a
/// cancel did not do what was asked (1), a refusal or failure is bad input (2).
inline int ExitStatusFor(CommandResult result) {
  switch (result) {
    case CommandResult::Done:
      return kExitOk;
    case CommandResult::Cancelled:
      return kExitFailure;
    case CommandResult::Failed:
      break;
  }
  return kExitError;
}

}  // namespace romsteward::cli
