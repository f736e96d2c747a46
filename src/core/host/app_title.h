#pragma once

#include <string_view>

namespace romsteward {

/// The program's title: the title of its message boxes and the start of its window caption.
inline constexpr std::string_view kAppTitle = "Genesis Romsteward";

/// The reverse-DNS application id: the desktop entry's file name (without ".desktop"), the
/// AppStream id, the icon name and the Wayland app id.
inline constexpr std::string_view kApplicationId = "io.github.romsteward.GenesisRomsteward";

}  // namespace romsteward
