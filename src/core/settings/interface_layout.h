#pragma once

#include <array>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "core/common/result.h"
#include "core/settings/app_settings.h"

namespace romsteward {

class Host;

/// One numbered control of the main window's arrangement; its keys are `X`n, `Y`n, `W`n,
/// `H`n in section `Settings`.
struct LayoutControl {
  int number;
  std::string_view name;
};

/// The numbered controls in the order a save writes them. Number 4 is not used; 23 comes
/// twice, `cystexclusive` then `cystfm`, so the stored rectangle is `cystfm`'s.
inline constexpr std::array<LayoutControl, 27> kLayoutControls = {{
    {1, "cmdDeletaSave"}, {2, "CmdForce"},       {3, "CmdLaunch"}, {9, "CmdCalib"},
    {5, "List1"},         {6, "Picture1"},       {7, "Picture2"},  {8, "Picture3"},
    {10, "Picture5"},     {11, "SlidK"},         {12, "SlidGen"},  {13, "Check1"},
    {14, "Check2"},       {15, "Check3"},        {16, "Check4"},   {17, "chkmodex"},
    {18, "chknew"},       {19, "cystFPU"},       {20, "cystTSC"},  {21, "cystfakez80"},
    {22, "cystforceFM"},  {23, "cystexclusive"}, {23, "cystfm"},   {24, "cystDAC"},
    {25, "cystskip"},     {26, "cystvsync"},     {27, "chkKSom"},
}};
/// The window's `WF`/`HF` are written after this many controls (after number 8).
inline constexpr std::size_t kWindowSizeWrittenAfter = 8;

/// A control's left, top, width and height in pixels, relative to its container.
struct ControlRect {
  int x = 0;
  int y = 0;
  int width = 0;
  int height = 0;
  bool operator==(const ControlRect&) const = default;
};

/// The window as it is now: each control's rectangle by name and the window's size.
struct LayoutSnapshot {
  std::map<std::string, ControlRect, std::less<>> controls;
  int windowWidth = 0;
  int windowHeight = 0;
};

/// A stored rectangle; a key that is missing or no whole number, or a width or height below
/// 1, is nullopt.
struct StoredRect {
  std::optional<int> x;
  std::optional<int> y;
  std::optional<int> width;
  std::optional<int> height;
  bool operator==(const StoredRect&) const = default;
};

/// What the store holds of the arrangement. A control appears only when at least one of
/// its keys is usable; number 23 belongs to `cystfm` (whose rectangle a save keeps).
struct StoredLayout {
  std::map<std::string, StoredRect, std::less<>> controls;
  std::optional<int> windowWidth;
  std::optional<int> windowHeight;
};

/// The layout keys in saving order, as one all-or-nothing write. A control missing from the
/// snapshot is not written.
Status WriteInterfaceLayout(AppSettings& settings, const LayoutSnapshot& snapshot);

/// The save command: writes the layout and reports a store that cannot be written.
void SaveInterfaceLayout(Host& host, AppSettings& settings, const LayoutSnapshot& snapshot);

/// The erase command: deletes `X`n and `Y`n of every number, then `W`n and `H`n, then `WF`,
/// `HF`, `LaunchX`, `LaunchY`, `prevX`, `prevY` (a missing key is passed over), and asks
/// for a restart. A deletion the store refuses is reported and the rest still erased.
void EraseInterfaceLayout(Host& host, AppSettings& settings);

/// The stored arrangement, read at start.
StoredLayout ReadInterfaceLayout(const AppSettings& settings);

}  // namespace romsteward
