#include "core/launch/temp_folder.h"

#include <cstdlib>
#include <system_error>

#include "core/common/strings.h"
#include "core/host/app_title.h"
#include "core/host/host.h"
#include "core/library/place.h"
#include "core/settings/app_settings.h"

namespace romsteward {

std::filesystem::path DefaultTemporaryFolder() {
  std::filesystem::path cache;
  // The base-directory rules ignore a relative value.
  if (const char* xdg = std::getenv("XDG_CACHE_HOME"); xdg && *xdg == '/') {
    cache = Utf8ToPath(xdg);
  } else if (const char* home = std::getenv("HOME"); home && *home == '/') {
    cache = Utf8ToPath(home) / ".cache";
  } else {
    return {};
  }
  return cache / "romsteward" / "temp";
}

std::optional<std::filesystem::path> UsableTemporaryFolder(const AppSettings& settings) {
  const std::string folder = settings.GetSetting(kSectionSettings, "temp");
  if (TrimBlanks(folder).empty()) {
    const std::filesystem::path fallback = DefaultTemporaryFolder();
    std::error_code error;
    if (fallback.empty() || (!std::filesystem::create_directories(fallback, error) && error) ||
        !std::filesystem::is_directory(fallback, error))
      return std::nullopt;
    return fallback;
  }
  if (!PathExists(folder, PathKind::Directory)) return std::nullopt;
  return Utf8ToPath(folder);
}

void ChooseTemporaryDirectory(Host& host, AppSettings& settings) {
  std::string start = settings.GetSetting(kSectionSettings, "temp");
  if (TrimBlanks(start).empty()) start = PathToUtf8(DefaultTemporaryFolder());
  const std::optional<std::string> folder = host.ChooseFolder("Choose temporary directory", start);
  if (!folder || folder->empty()) return;
  if (Status saved = settings.SaveSetting(kSectionSettings, "temp", *folder); !saved)
    host.ShowMessage(saved.error().message, MessageIcon::Critical, kAppTitle);
}

}  // namespace romsteward
