#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/common/result.h"
#include "core/settings/app_settings.h"
#include "core/settings/general_settings.h"

namespace romsteward {

/// Frame-skip sliders (`SlidGen`, `SlidK`): "Display every N th frame", 1 meaning no skip.
inline constexpr int kFrameSkipMin = 1;
inline constexpr int kFrameSkipMax = 10;
/// `cmbCystSnd` items, by index.
inline constexpr std::string_view kCystSoundRates[] = {"11025", "22050", "44100"};
/// Tabs of the emulator tab strip (`prefemu` is the selected one's index): the three classic
/// tabs, then BlastEm and Mednafen.
inline constexpr int kEmulatorTabCount = 5;

/// The emulator option set: the main window's option controls, the live copy of the
/// selected cartridge's options. Members are in saving order; the comment names the stored
/// key. A default-constructed set holds the general defaults.
struct EmulatorOptions {
  bool disableJoypad = true;          ///< Joy (`Check1`)
  bool disableSound = false;          ///< snd (`Check2`)
  bool enableZ80 = true;              ///< z80 (`Check3`)
  bool fakeZ80 = false;               ///< fz80 (`Check4`)
  bool modeX = false;                 ///< modex (`chkmodex`)
  int genFrameSkip = 2;               ///< frm (`SlidGen`)
  bool useGenNew = false;             ///< gnew (`chknew`)
  bool kgenDisableSound = false;      ///< ksnd (`chkKSom`)
  int kgenFrameSkip = 1;              ///< kfrm (`SlidK`)
  bool cystFpuCopies = false;         ///< cystFPU
  bool cystRdtscProfiling = false;    ///< cystTSC
  bool cystDisableZ80 = false;        ///< cystz80 (`cystZ80`)
  bool cystFakedZ80 = false;          ///< cystfakez80
  bool cystForceFm = false;           ///< cystforcefm (`cystforceFM`)
  bool cystNoFm = false;              ///< cystfm
  bool cystNoDac = false;             ///< cystdac (`cystDAC`)
  bool cystExclusive = false;         ///< cystexc (`cystexclusive`)
  int cystSoundRate = 2;              ///< cystsnd (`cmbCystSnd` index)
  bool cystCpuSkipper = false;        ///< cystskip
  bool cystWaitVsync = false;         ///< cystsync (`cystvsync`)
  int preferredEmulator = 0;          ///< prefemu (tab index)
  bool activateDynamicPatch = false;  ///< ativapatch (`chkIPS`)
  // The Debian emulators' own options, after the classic keys; a missing one reads as off.
  bool blastFullscreen = false;     ///< bemfull
  bool blastNoSound = false;        ///< bemsnd
  bool mednafenFullscreen = false;  ///< mdnfull
  bool mednafenNoSound = false;     ///< mdnsnd
  bool mednafenFrameSkip = false;   ///< mdnskip

  bool operator==(const EmulatorOptions&) const = default;
};

/// The option keys in saving order.
const std::vector<std::string_view>& OptionKeys();
/// One option as it is stored ("0"/"1", a number, an index); nullopt for an unknown key.
std::optional<std::string> OptionText(const EmulatorOptions& options, std::string_view key);
/// Sets one option from stored text, as reading a cartridge's set does; false (and nothing
/// changed) for an unknown key or a value its control cannot take.
bool SetOptionFromText(EmulatorOptions& options, std::string_view key, std::string_view text);

enum class OptionSection { Settings, Cartridge };

/// Writes the option set in saving order. Cartridge: to section `Cartridge`, each key
/// prefixed by `entryText` + "." (unguarded: no entry gives the prefix "." alone).
/// Settings: `cart`, `tray`, `ordem`, `show`, `title` from `general`, then the option set
/// unprefixed, to section `Settings`. All values go in one write.
Status SaveOptions(AppSettings& settings, OptionSection section, const EmulatorOptions& options,
                   const GeneralSettings& general, std::string_view entryText);

/// Reads the cartridge's set into `controls`. A missing value fails except for `frm`
/// (keeps the value shown), `kfrm` (1), `cystskip` and `cystsync` (0); a value its control
/// cannot take fails. A failure leaves that control as it was and reading goes on.
/// `ativapatch` is read only while `patchEnabled` (`chkIPS` is enabled). True when no
/// read failed.
bool LoadCartridgeOptions(const AppSettings& settings, std::string_view entryText,
                          bool patchEnabled, EmulatorOptions& controls);

/// Reads the general set into `controls`; a missing or unusable value gives its default,
/// `prefemu` is read leniently (its leading number, empty giving 0). `ativapatch` is read
/// only while `patchEnabled`.
void LoadDefaultOptions(const AppSettings& settings, bool patchEnabled, EmulatorOptions& controls);

/// Selecting a ROM that exists: the cartridge's set, or the general defaults over all of it
/// when that set is incomplete (never a mix).
void LoadOptionsForSelection(const AppSettings& settings, std::string_view entryText,
                             bool patchEnabled, EmulatorOptions& controls);

}  // namespace romsteward
