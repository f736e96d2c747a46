#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/launch/emulator_profiles.h"
#include "core/launch/posix_process.h"

namespace romsteward::test {

/// An Xvfb display of its own for a test, ended with it.
class VirtualDisplay {
public:
  VirtualDisplay() = default;
  VirtualDisplay(const VirtualDisplay&) = delete;
  VirtualDisplay& operator=(const VirtualDisplay&) = delete;
  ~VirtualDisplay();

  /// False when no display could be started.
  bool Start();
  /// ":N", for DISPLAY.
  const std::string& Name() const { return m_name; }

private:
  bool StartServer(const std::string& number);

  pid_t m_server = -1;
  std::string m_name;
};

/// Whether the real-emulator tests can run here: the emulator and Xvfb installed. Empty when
/// they can, else why not.
std::string MissingForRealEmulator(std::string_view program);

/// The titles of the named top-level windows on `display` (xwininfo).
std::vector<std::string> WindowTitles(const std::string& display);

/// One smoke run of a Debian emulator under `display`: a home of its own in `folder` with a
/// configuration that keeps the emulator's own dialogs away, a launch of an archived
/// cartridge, the emulator seen running as itself for a moment, ended, and the launch's
/// clean-up checked. `emulatorPath` replaces the installed program (tests of the harness).
/// Returns what went wrong, empty when nothing did. A window of the emulator's other than
/// its game window is a dialog waiting for a click: reported with its title and the
/// emulator's last words, the emulator ended at once.
std::string SmokeRun(std::string_view program, EmulatorTab tab, const std::string& display,
                     const std::filesystem::path& folder, const std::string& emulatorPath = {});

}  // namespace romsteward::test
