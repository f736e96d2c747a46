#include "core/settings/preview_settings.h"

#include <string>

#include "core/settings/stored_values.h"

namespace romsteward {

bool LoadShowPreview(const AppSettings& settings) {
  return StoredBoolean(settings.GetSetting(kSectionSettings, "showprev")).value_or(false);
}

Status SaveShowPreview(AppSettings& settings, bool shown) {
  return settings.SaveSetting(kSectionSettings, "showprev", BooleanText(shown));
}

std::optional<WindowPosition> LoadPreviewPosition(const AppSettings& settings) {
  return LoadPosition(settings, "prevX", "prevY");
}

Status SavePreviewPosition(AppSettings& settings, WindowPosition position) {
  return settings.SaveSettings(kSectionSettings, {{"prevX", std::to_string(position.x)},
                                                  {"prevY", std::to_string(position.y)}});
}

std::string PictureKey(std::string_view entry) {
  return std::string(entry) + ".pic";
}

}  // namespace romsteward
