#pragma once

#include <cstdint>
#include <ctime>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/common/result.h"

namespace romsteward {

class AppSettings;

/// The section of the play history: per cartridge (named by its list entry's text, as the
/// cartridge options are) `<entry>.lastrun`, the start of the last run in seconds since
/// 1970 (UTC), and `<entry>.playtime`, the seconds played in all.
inline constexpr std::string_view kSectionHistory = "History";

struct PlayRecord {
  std::string entry;
  std::int64_t lastRun = 0;   ///< seconds since 1970, UTC
  std::int64_t playTime = 0;  ///< seconds
};

/// Adds a run that started at `started` and lasted `seconds`.
Status RecordPlay(AppSettings& settings, std::string_view entry, std::int64_t started,
                  double seconds);
/// The record of one cartridge, nullopt when it never ran.
std::optional<PlayRecord> PlayHistory(const AppSettings& settings, std::string_view entry);
/// Every cartridge that ran, in the order they first ran.
std::vector<PlayRecord> AllPlayHistory(const AppSettings& settings);

/// "2026-11-23 01:45:00" (UTC) and "1 h 02 min 05 s".
std::string FormatRunTime(std::int64_t secondsSince1970);
std::string FormatPlayTime(std::int64_t seconds);

}  // namespace romsteward
