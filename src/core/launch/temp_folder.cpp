#include "core/launch/temp_folder.h"

#include "core/host/app_title.h"
#include "core/host/host.h"
#include "core/common/strings.h"
#include "core/library/place.h"
#include "core/settings/app_settings.h"

namespace romsteward {

std::optional<std::filesystem::path> UsableTemporaryFolder(const AppSettings& settings) {
  const std::string folder = settings.GetSetting(kSectionSettings, "temp");
  if (TrimBlanks(folder).empty() || !PathExists(folder, PathKind::Directory)) return std::nullopt;
  return Utf8ToPath(folder);
}

void ChooseTemporaryDirectory(Host& host, AppSettings& settings) {
  const std::optional<std::string> folder = host.ChooseFolder(
      "Choose temporary directory", settings.GetSetting(kSectionSettings, "temp"));
  if (!folder || folder->empty()) return;
  if (Status saved = settings.SaveSetting(kSectionSettings, "temp", *folder); !saved)
    host.ShowMessage(saved.error().message, MessageIcon::Critical, kAppTitle);
}

}  // namespace romsteward
