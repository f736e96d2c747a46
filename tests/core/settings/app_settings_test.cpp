#include "core/settings/app_settings.h"

#include <gtest/gtest.h>

#include "core/settings/stored_values.h"
#include "support/settings_fixture.h"

namespace romsteward {
namespace {

using AppSettingsTest = test::SettingsTest;

TEST_F(AppSettingsTest, SectionsLiveUnderTheAppsKeyGetFallsBackAndDeleteReportsMissing) {
  EXPECT_EQ(SectionKeyPath("Settings"),
            "HKEY_CURRENT_USER\\Software\\VB and VBA Program Settings\\Genesis Romsteward - "
            "\\Settings");
  ASSERT_TRUE(Settings().SaveSetting("Cartridge", "SONIC.BIN.Joy", "0"));
  EXPECT_EQ(Store().GetValue(SectionKeyPath("Cartridge"), "SONIC.BIN.Joy").value(), "0");
  // Get falls back only when the value is missing.
  EXPECT_EQ(Settings().GetSetting("Settings", "frm", "2"), "2");
  EXPECT_EQ(Settings().GetSetting("Settings", "frm"), "");
  ASSERT_TRUE(Settings().SaveSetting("Settings", "Ksnd", ""));
  // A stored empty value is a value: the fallback does not replace it.
  EXPECT_EQ(Settings().GetSetting("settings", "ksnd", "c"), "");
  // Delete reports a missing value.
  ASSERT_TRUE(Settings().SaveSettings("Settings", {{"cart", "True"}, {"tray", "False"}}));
  EXPECT_TRUE(Settings().DeleteSetting("Settings", "CART"));
  EXPECT_FALSE(Settings().DeleteSetting("Settings", "cart"));
  EXPECT_EQ(Settings().GetSetting("Settings", "tray"), "False");
}

TEST(StoredValues, NumbersConvertAsAControlTakesThem) {
  EXPECT_EQ(StoredNumber(" 7 "), 7);
  EXPECT_EQ(StoredNumber("-2"), -2);
  EXPECT_EQ(StoredNumber("1.5"), 2);  // half to even
  EXPECT_EQ(StoredNumber("2.5"), 2);
  for (const char* bad : {"", "a", "c", "x", "1e3", "1,5", "99999999999"}) {
    EXPECT_EQ(StoredNumber(bad), std::nullopt) << bad;
  }
  EXPECT_EQ(StoredBoolean("true"), true);
  EXPECT_EQ(StoredBoolean("False"), false);
  EXPECT_EQ(StoredBoolean("-1"), true);
  EXPECT_EQ(StoredBoolean("yes"), std::nullopt);
}

}  // namespace
}  // namespace romsteward
