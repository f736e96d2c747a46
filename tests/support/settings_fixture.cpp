#include "support/settings_fixture.h"

#include <gtest/gtest.h>

namespace romsteward::test {

void SettingsTest::Reopen() {
  Close();
  auto store = RegistryStore::Open(PathOf("settings.sqlite3"));
  ASSERT_TRUE(store) << store.error().message;
  m_store = std::move(store).value();
  m_settings = std::make_unique<AppSettings>(*m_store);
}

std::string SettingsTest::Stored(std::string_view section, std::string_view name) const {
  auto value = m_store->GetValue(SectionKeyPath(section), name);
  return value ? *value : "<missing>";
}

}  // namespace romsteward::test
