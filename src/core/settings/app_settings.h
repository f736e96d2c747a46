#pragma once

#include <array>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/common/result.h"
#include "core/settings/registry_store.h"

namespace romsteward {

/// The application name every setting is filed under (the trailing blank, dash and blank
/// belong to it).
inline constexpr std::string_view kAppName = "Genesis Romsteward - ";
/// Where per-user application settings live.
inline constexpr std::string_view kVbSettingsKey =
    "HKEY_CURRENT_USER\\Software\\VB and VBA Program Settings\\";

/// Section names.
inline constexpr std::string_view kSectionSettings = "Settings";
inline constexpr std::string_view kSectionCartridge = "Cartridge";
inline constexpr std::string_view kSectionFavorite = "FAVORITE";
inline constexpr std::string_view kSectionPatch = "PATCH";
inline constexpr std::string_view kSectionCrcs = "CRCs";
/// Every section the application files settings under.
inline constexpr std::array<std::string_view, 5> kSections = {
    kSectionSettings, kSectionCartridge, kSectionFavorite, kSectionPatch, kSectionCrcs};

/// The full key path of a section: kVbSettingsKey + kAppName + "\" + section.
std::string SectionKeyPath(std::string_view section);

/// SaveSetting / GetSetting / DeleteSetting of the application, over the store.
class AppSettings {
public:
  explicit AppSettings(RegistryStore& store) : m_store(store) {}

  Status SaveSetting(std::string_view section, std::string_view key, std::string_view value);
  /// The stored value, or `fallback` when there is none.
  std::string GetSetting(std::string_view section, std::string_view key,
                         std::string_view fallback = {}) const;
  Status DeleteSetting(std::string_view section, std::string_view key);
  /// Several keys of one section, written together (all or none).
  Status SaveSettings(std::string_view section,
                      const std::vector<std::pair<std::string, std::string>>& values);

  RegistryStore& Store() { return m_store; }
  const RegistryStore& Store() const { return m_store; }

private:
  RegistryStore& m_store;
};

}  // namespace romsteward
