#pragma once

#include <string_view>

namespace romsteward {

/// The program's title: the title of its message boxes and the start of its window caption.
inline constexpr std::string_view kAppTitle = "Genesis Romsteward";

}  // namespace romsteward
