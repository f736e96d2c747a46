#include "core/settings/app_settings.h"

#include <gtest/gtest.h>

#include "support/temp_dir.h"

namespace romsteward {
namespace {

class AppSettingsTest : public test::TempDirTest {
protected:
  void SetUp() override {
    auto store = RegistryStore::Open(PathOf("settings.sqlite3"));
    ASSERT_TRUE(store) << store.error().message;
    m_store = std::move(store).value();
    m_settings = std::make_unique<AppSettings>(*m_store);
  }
  std::unique_ptr<RegistryStore> m_store;
  std::unique_ptr<AppSettings> m_settings;
};

TEST_F(AppSettingsTest, SectionsLiveUnderTheApplicationsKey) {
  EXPECT_EQ(SectionKeyPath("Settings"),
            "HKEY_CURRENT_USER\\Software\\VB and VBA Program Settings\\Genesis Romsteward - "
            "\\Settings");
  ASSERT_TRUE(m_settings->SaveSetting("Cartridge", "SONIC.BIN.Joy", "0"));
  EXPECT_EQ(m_store->GetValue(SectionKeyPath("Cartridge"), "SONIC.BIN.Joy").value(), "0");
}

TEST_F(AppSettingsTest, GetFallsBackOnlyWhenMissing) {
  EXPECT_EQ(m_settings->GetSetting("Settings", "frm", "2"), "2");
  EXPECT_EQ(m_settings->GetSetting("Settings", "frm"), "");
  ASSERT_TRUE(m_settings->SaveSetting("Settings", "Ksnd", ""));
  // A stored empty value is a value: the fallback does not replace it.
  EXPECT_EQ(m_settings->GetSetting("settings", "ksnd", "c"), "");
}

TEST_F(AppSettingsTest, DeleteReportsAMissingValue) {
  ASSERT_TRUE(m_settings->SaveSettings("Settings", {{"cart", "True"}, {"tray", "False"}}));
  EXPECT_TRUE(m_settings->DeleteSetting("Settings", "CART"));
  EXPECT_FALSE(m_settings->DeleteSetting("Settings", "cart"));
  EXPECT_EQ(m_settings->GetSetting("Settings", "tray"), "False");
}

}  // namespace
}  // namespace romsteward
