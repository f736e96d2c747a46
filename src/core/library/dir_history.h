#pragma once

#include <array>
#include <string>
#include <string_view>

namespace romsteward {

/// Entries of the Directory menu, index 0 the most recent.
inline constexpr std::size_t kDirHistorySize = 5;
using DirHistory = std::array<std::string, kDirHistorySize>;

/// Puts `path` on top: the entries above its old place (or above the first empty entry)
/// shift down by one, the entries below stay, and the oldest falls off when the path is
/// new. Paths compare exactly. Returns how many entries received a path.
std::size_t PushDirHistory(DirHistory& history, std::string_view path);

}  // namespace romsteward
