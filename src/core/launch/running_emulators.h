#pragma once

#include <string>
#include <vector>

namespace romsteward {

/// Whether an emulator is running: a process of the current user whose executable name
/// begins with "genem", "genecyst" or "kgen" (any case), or whose executable is one of
/// `emulatorPaths` (the configured ones).
bool IsEmulatorRunning(const std::vector<std::string>& emulatorPaths);

}  // namespace romsteward
