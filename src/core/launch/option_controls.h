#pragma once

#include <string_view>

#include "core/launch/emulator_profiles.h"

namespace romsteward {

/// One option control of an emulator tab, or a shared one, as the window shows it.
struct OptionControl {
  std::string_view name;  ///< the control's name (`Check1`), or the key of a new option
  std::string_view caption;
  std::string_view tooltip;
  int tab;  ///< the tab it is on (EmulatorTab), -1 for the shared controls
};

inline constexpr int kSharedControls = -1;

/// Every option control with its caption and tooltip, tab by tab; the frame-skip sliders'
/// labels are "Display every" N "th frame".
inline constexpr OptionControl kOptionControls[] = {
    {"chknew", "Use GenNew", "Use the faster and buggier GenEm version", 0},
    {"SlidGen", "Display every", "Number of frames to skip (1=no skip)", 0},
    {"CmdCalib", "Calibrate Joystick", "", 0},
    {"Check1", "Disable &Joypad", "Disable PC-joypad support", 0},
    {"Check2", "Disable &Sound", "Disable all sound", 0},
    {"Check3", "Enable Z80", "Enable Z80 Co-processor emulation needed for sound", 0},
    {"Check4", "Fake Z80",
     "Fake the Z80 coprocessor emulation so the games that require it run anyway", 0},
    {"chkmodex", "320x240 resolution", "Use ModeX,  a slower video mode", 0},
    {"SlidK", "Display every", "Number of frames to skip (1=no skip)", 1},
    {"chkKSom", "Disable Sound", "Disable all sound, but not the Z80", 1},
    {"cmbCystSnd", "Sound rate:", "Set the sound quality", 2},
    {"cystvsync", "Wait V. sync", "Wait for the vertical sync to draw frames", 2},
    {"cystskip", "CPU skipper",
     "Prevents idle loops in rom code, just for fast machines! Can introduce a compatibility "
     "problems...",
     2},
    {"cystexclusive", "Exclusive mode", "Freezes all windows programs to run faster", 2},
    {"cystDAC", "No DAC", "Disable all DAC sound", 2},
    {"cystfm", "No FM", "Disable all FM sound", 2},
    {"cystforceFM", "Force FM", "Forces the FM emulation on even if OPL3 is not detected", 2},
    {"cystfakez80", "Enable Faked Z80", "If a game locks without Z80, try this", 2},
    {"cystZ80", "Disable Z80", "Its emulation is needed for sound", 2},
    {"cystTSC", "Enable RDTSC profiling", "Don't use it in non-pentium processors!", 2},
    {"cystFPU", "Enable FPU copies", "Video Speed-up for Pentium processors", 2},
    {"bemfull", "Fullscreen", "Start BlastEm in fullscreen (-f)", 3},
    {"bemsnd", "Disable Sound", "Run BlastEm without a sound device", 3},
    {"mdnfull", "Fullscreen", "Start Mednafen in fullscreen (-video.fs 1)", 4},
    {"mdnsnd", "Disable Sound", "Run Mednafen silent (-sound 0)", 4},
    {"mdnskip", "Frame skip", "Skip frames when the machine is too slow (-video.frameskip 1)", 4},
    {"cmbCartLang", "Country:", "Game main country lock", kSharedControls},
    {"CmdForce", "Force another language", "", kSharedControls},
    {"chkIPS", "Activate dynamic patch", "", kSharedControls},
    {"txtCmd", "Additional Comand-line:",
     "Extra command-line parameters (press ENTER to execute it as a independent command)",
     kSharedControls},
    {"CmdLaunch", "Run this game!", "", kSharedControls},
};

}  // namespace romsteward
