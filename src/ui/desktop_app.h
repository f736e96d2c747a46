#pragma once

namespace romsteward::ui {

/// The desktop program: `romsteward [--settings FILE]`. Opens the settings (FILE, else
/// $ROMSTEWARD_SETTINGS, else the user's own), shows the main window and runs until it
/// closes. Returns the exit status.
int RunDesktop(int argc, char** argv);

/// The application's name and version, as the settings, the command line and the window
/// system see them; the captions stay exactly the program's.
void NameApplication();

}  // namespace romsteward::ui
