#include "core/settings/option_commands.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/scripted_host.h"
#include "support/settings_fixture.h"

namespace romsteward {
namespace {

using test::PromptKind;
using test::ScriptedHost;
using ::testing::ElementsAre;

class OptionCommandsTest : public test::SettingsTest {
protected:
  void ExpectDeleteErrorShownOnce(const ScriptedHost& host) {
    ASSERT_EQ(host.EventsOf(PromptKind::Message).size(), 1u) << host.Transcript();
    EXPECT_EQ(host.Events().at(0).icon, MessageIcon::Critical);
    EXPECT_EQ(host.Texts(), std::vector<std::string>{"There were errors deleting settings. "
                                                     "Maybe some wasn't deleted at all."});
  }
};

TEST_F(OptionCommandsTest, DeletingACartridgesSetKeepsTheUnlistedKeysAndReportsMissingOnes) {
  ASSERT_TRUE(SaveOptions(Settings(), OptionSection::Cartridge, {}, {}, "SONIC.BIN"));
  ScriptedHost host;
  EXPECT_TRUE(DeleteCartridgeSettings(host, Settings(), "SONIC.BIN"));
  EXPECT_TRUE(host.Events().empty());
  EXPECT_THAT(Store().EnumerateValueNames(SectionKeyPath("Cartridge")).value(),
              ElementsAre("SONIC.BIN.gnew", "SONIC.BIN.cystexc", "SONIC.BIN.cystsnd",
                          "SONIC.BIN.cystskip", "SONIC.BIN.cystsync", "SONIC.BIN.ativapatch",
                          // The Debian emulators' keys are not in the classic list either.
                          "SONIC.BIN.bemfull", "SONIC.BIN.bemsnd", "SONIC.BIN.mdnfull",
                          "SONIC.BIN.mdnsnd", "SONIC.BIN.mdnskip"));
  EmulatorOptions controls;
  EXPECT_FALSE(LoadCartridgeOptions(Settings(), "SONIC.BIN", true, controls));

  // Without a whole set: what can be deleted is gone, the error is shown once.
  ASSERT_TRUE(Settings().SaveSetting("Cartridge", "SONIC.BIN.z80", "0"));
  ScriptedHost again;
  EXPECT_FALSE(DeleteCartridgeSettings(again, Settings(), "SONIC.BIN"));
  ExpectDeleteErrorShownOnce(again);
  EXPECT_EQ(Stored("Cartridge", "SONIC.BIN.z80"), "<missing>");
  EXPECT_EQ(Stored("Cartridge", "SONIC.BIN.gnew"), "0");
}

TEST_F(OptionCommandsTest, DeletingGeneralSettingsKeepsWhatWasAlwaysKept) {
  std::vector<std::pair<std::string, std::string>> values;
  for (std::string_view key : kGeneralDeleteKeys)
    values.emplace_back(key, "1");
  const std::vector<std::string> kept = {"savex",      "tray",    "title",   "temp",     "Genemnew",
                                         "gnew",       "cystexc", "cystsnd", "cystskip", "cystsync",
                                         "ativapatch", "LaunchX", "LaunchY"};
  for (const std::string& key : kept)
    values.emplace_back(key, "1");
  ASSERT_TRUE(Settings().SaveSettings("Settings", values));

  ScriptedHost host;
  EXPECT_TRUE(DeleteGeneralSettings(host, Settings()));
  EXPECT_TRUE(host.Events().empty());
  EXPECT_EQ(Store().EnumerateValueNames(SectionKeyPath("Settings")).value(), kept);

  ScriptedHost again;
  EXPECT_FALSE(DeleteGeneralSettings(again, Settings()));
  ExpectDeleteErrorShownOnce(again);
}

TEST_F(OptionCommandsTest, ClosingSavesWhatTheTwoChecksSay) {
  EmulatorOptions options;
  options.genFrameSkip = 4;
  GeneralSettings general;
  general.sortBy = 1;

  ASSERT_TRUE(SaveOnClose(Settings(), general, options, "A.BIN", {10, 20}));
  EXPECT_EQ(Stored("Settings", "frm"), "<missing>");  // nothing but the position
  EXPECT_EQ(Stored("Settings", "LaunchX"), "10");
  EXPECT_EQ(Stored("Settings", "LaunchY"), "20");

  general.saveOnExit = true;
  general.saveAllCartridges = true;
  ASSERT_TRUE(SaveOnClose(Settings(), general, options, "A.BIN", {11, 21}));
  EXPECT_EQ(Stored("Cartridge", "A.BIN.frm"), "4");
  for (const char* key : {"cart", "tray", "ordem", "show", "title", "frm"}) {
    EXPECT_EQ(Stored("Settings", key), "<missing>") << key;
  }
  EXPECT_EQ(LoadWindowPosition(Settings()), (WindowPosition{11, 21}));

  general.saveAllCartridges = false;
  ASSERT_TRUE(SaveOnClose(Settings(), general, options, "A.BIN", {12, 22}));
  EXPECT_EQ(Stored("Settings", "frm"), "4");
  EXPECT_EQ(Stored("Settings", "ordem"), "1");
  EXPECT_EQ(Stored("Settings", "savex"), "<missing>");  // written only by its own menu
}

TEST_F(OptionCommandsTest, GeneralMenusReadWithTheirDefaults) {
  EXPECT_EQ(LoadGeneralSettings(Settings()), GeneralSettings{});
  EXPECT_EQ(LoadWindowPosition(Settings()), std::nullopt);

  ASSERT_TRUE(SaveSaveOnExit(Settings(), true));
  EXPECT_EQ(Stored("Settings", "savex"), "True");
  ASSERT_TRUE(Settings().SaveSettings("Settings", {{"cart", "True"},
                                                   {"tray", "bogus"},
                                                   {"ordem", "1"},
                                                   {"show", "5"},
                                                   {"title", "1"},
                                                   {"LaunchX", "7"}}));
  GeneralSettings expected;
  expected.saveOnExit = true;
  expected.saveAllCartridges = true;
  expected.sortBy = 1;
  expected.windowTitle = 1;
  EXPECT_EQ(LoadGeneralSettings(Settings()), expected);
  EXPECT_EQ(LoadWindowPosition(Settings()), std::nullopt);  // LaunchY is missing
}

}  // namespace
}  // namespace romsteward
