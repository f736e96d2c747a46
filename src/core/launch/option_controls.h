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
inline constexpr int kGenecyst = static_cast<int>(EmulatorTab::Genecyst);
inline constexpr int kGenEm = static_cast<int>(EmulatorTab::GenEm);
inline constexpr int kKGen = static_cast<int>(EmulatorTab::KGen);
inline constexpr int kBlastEm = static_cast<int>(EmulatorTab::BlastEm);
inline constexpr int kMednafen = static_cast<int>(EmulatorTab::Mednafen);

/// Every option control with its caption and tooltip, tab by tab; the frame-skip sliders'
/// labels are "Display every" N "th frame".
inline constexpr OptionControl kOptionControls[] = {
    {"chknew", "Use GenNew", "Use the faster and buggier GenEm version", kGenEm},
    {"SlidGen", "Display every", "Number of frames to skip (1=no skip)", kGenEm},
    {"CmdCalib", "Calibrate Joystick", "", kGenEm},
    {"Check1", "Disable &Joypad", "Disable PC-joypad support", kGenEm},
    {"Check2", "Disable &Sound", "Disable all sound", kGenEm},
    {"Check3", "Enable Z80", "Enable Z80 Co-processor emulation needed for sound", kGenEm},
    {"Check4", "Fake Z80",
     "Fake the Z80 coprocessor emulation so the games that require it run anyway", kGenEm},
    {"chkmodex", "320x240 resolution", "Use ModeX,  a slower video mode", kGenEm},
    {"SlidK", "Display every", "Number of frames to skip (1=no skip)", kKGen},
    {"chkKSom", "Disable Sound", "Disable all sound, but not the Z80", kKGen},
    {"cmbCystSnd", "Sound rate:", "Set the sound quality", kGenecyst},
    {"cystvsync", "Wait V. sync", "Wait for the vertical sync to draw frames", kGenecyst},
    {"cystskip", "CPU skipper",
     "Prevents idle loops in rom code, just for fast machines! Can introduce a compatibility "
     "problems...",
     kGenecyst},
    {"cystexclusive", "Exclusive mode", "Freezes all windows programs to run faster", kGenecyst},
    {"cystDAC", "No DAC", "Disable all DAC sound", kGenecyst},
    {"cystfm", "No FM", "Disable all FM sound", kGenecyst},
    {"cystforceFM", "Force FM", "Forces the FM emulation on even if OPL3 is not detected",
     kGenecyst},
    {"cystfakez80", "Enable Faked Z80", "If a game locks without Z80, try this", kGenecyst},
    {"cystZ80", "Disable Z80", "Its emulation is needed for sound", kGenecyst},
    {"cystTSC", "Enable RDTSC profiling", "Don't use it in non-pentium processors!", kGenecyst},
    {"cystFPU", "Enable FPU copies", "Video Speed-up for Pentium processors", kGenecyst},
    {"bemfull", "Fullscreen", "Start BlastEm in fullscreen (-f)", kBlastEm},
    {"bemsnd", "Disable Sound", "Run BlastEm without a sound device", kBlastEm},
    {"mdnfull", "Fullscreen", "Start Mednafen in fullscreen (-video.fs 1)", kMednafen},
    {"mdnsnd", "Disable Sound", "Run Mednafen silent (-sound 0)", kMednafen},
    {"mdnskip", "Frame skip", "Skip frames when the machine is too slow (-video.frameskip 1)",
     kMednafen},
    {"cmbCartLang", "Country:", "Game main country lock", kSharedControls},
    {"CmdForce", "Force another language", "", kSharedControls},
    {"chkIPS", "Activate dynamic patch", "", kSharedControls},
    {"txtCmd", "Additional Comand-line:",
     "Extra command-line parameters (press ENTER to execute it as a independent command)",
     kSharedControls},
    {"CmdLaunch", "Run this game!", "", kSharedControls},
};

/// The control named `name` in kOptionControls; nullptr for an unknown name.
constexpr const OptionControl* FindOptionControl(std::string_view name) {
  for (const OptionControl& control : kOptionControls)
    if (control.name == name) return &control;
  return nullptr;
}

}  // namespace romsteward
