#include "core/launch/play_history.h"

#include <cmath>
#include <cstdio>

#include "core/common/strings.h"
#include "core/settings/app_settings.h"

namespace romsteward {

namespace {

constexpr std::string_view kLastRun = ".lastrun";
constexpr std::string_view kPlayTime = ".playtime";

std::int64_t StoredSeconds(const AppSettings& settings, std::string_view entry,
                           std::string_view suffix) {
  const std::string text =
      settings.GetSetting(kSectionHistory, std::string(entry) + std::string(suffix));
  return IsNumeric(text) ? LeadingNumber(text) : 0;
}

}  // namespace

Status RecordPlay(AppSettings& settings, std::string_view entry, std::int64_t started,
                  double seconds) {
  const std::int64_t total =
      StoredSeconds(settings, entry, kPlayTime) + static_cast<std::int64_t>(std::llround(seconds));
  return settings.SaveSettings(
      kSectionHistory, {{std::string(entry) + std::string(kLastRun), std::to_string(started)},
                        {std::string(entry) + std::string(kPlayTime), std::to_string(total)}});
}

std::optional<PlayRecord> PlayHistory(const AppSettings& settings, std::string_view entry) {
  const std::string name = std::string(entry) + std::string(kLastRun);
  if (settings.GetSetting(kSectionHistory, name).empty()) return std::nullopt;
  return PlayRecord{std::string(entry), StoredSeconds(settings, entry, kLastRun),
                    StoredSeconds(settings, entry, kPlayTime)};
}

std::vector<PlayRecord> AllPlayHistory(const AppSettings& settings) {
  std::vector<PlayRecord> records;
  const auto values = settings.Store().EnumerateValues(SectionKeyPath(kSectionHistory));
  if (!values) return records;
  for (const auto& [name, data] : *values) {
    if (!name.ends_with(kLastRun)) continue;
    if (auto record =
            PlayHistory(settings, std::string_view(name).substr(0, name.size() - kLastRun.size())))
      records.push_back(std::move(*record));
  }
  return records;
}

std::string FormatRunTime(std::int64_t secondsSince1970) {
  const std::time_t time = static_cast<std::time_t>(secondsSince1970);
  std::tm parts{};
  gmtime_r(&time, &parts);
  char text[32];
  std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", &parts);
  return text;
}

std::string FormatPlayTime(std::int64_t seconds) {
  char text[48];
  if (seconds >= 3600) {
    std::snprintf(text, sizeof text, "%lld h %02lld min %02lld s",
                  static_cast<long long>(seconds / 3600), static_cast<long long>(seconds / 60 % 60),
                  static_cast<long long>(seconds % 60));
  } else if (seconds >= 60) {
    std::snprintf(text, sizeof text, "%lld min %02lld s", static_cast<long long>(seconds / 60),
                  static_cast<long long>(seconds % 60));
  } else {
    std::snprintf(text, sizeof text, "%lld s", static_cast<long long>(seconds));
  }
  return text;
}

}  // namespace romsteward
