#include "core/settings/app_settings.h"

namespace romsteward {

std::string SectionKeyPath(std::string_view section) {
  std::string path(kVbSettingsKey);
  path += kAppName;
  path += '\\';
  path += section;
  return path;
}

Status AppSettings::SaveSetting(std::string_view section, std::string_view key,
                                std::string_view value) {
  return m_store.SetValue(SectionKeyPath(section), key, value);
}

std::string AppSettings::GetSetting(std::string_view section, std::string_view key,
                                    std::string_view fallback) const {
  auto value = m_store.GetValue(SectionKeyPath(section), key);
  return value ? std::move(value).value() : std::string(fallback);
}

Status AppSettings::DeleteSetting(std::string_view section, std::string_view key) {
  return m_store.DeleteValue(SectionKeyPath(section), key);
}

Status AppSettings::SaveSettings(std::string_view section,
                                 const std::vector<std::pair<std::string, std::string>>& values) {
  return m_store.SetValues(SectionKeyPath(section), values);
}

}  // namespace romsteward
