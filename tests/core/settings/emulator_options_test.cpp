#include "core/settings/emulator_options.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/settings_fixture.h"

namespace romsteward {
namespace {

using ::testing::ElementsAreArray;

// A set in which every option differs from its general default.
EmulatorOptions Unusual() {
  EmulatorOptions options;
  for (std::string_view key : OptionKeys()) {
    const std::string value = key == "frm"                      ? "5"
                              : key == "kfrm"                   ? "3"
                              : key == "prefemu"                ? "2"
                              : key == "cystsnd"                ? "0"
                              : OptionText(options, key) == "1" ? "0"
                                                                : "1";
    EXPECT_TRUE(SetOptionFromText(options, key, value)) << key;
  }
  return options;
}

class EmulatorOptionsTest : public test::SettingsTest {
protected:
  void SaveCartridge(std::string_view entry, const EmulatorOptions& options) {
    ASSERT_TRUE(SaveOptions(Settings(), OptionSection::Cartridge, options, {}, entry));
  }
  std::vector<std::string> Names(std::string_view section) {
    return Store().EnumerateValueNames(SectionKeyPath(section)).value();
  }
};

TEST_F(EmulatorOptionsTest, CartridgeSetIsSavedPrefixedInOrderAndReadsBackWhole) {
  SaveCartridge("SONIC.BIN", Unusual());
  std::vector<std::string> expected;
  for (std::string_view key : OptionKeys())
    expected.push_back("SONIC.BIN." + std::string(key));
  EXPECT_THAT(Names("Cartridge"), ElementsAreArray(expected));
  EXPECT_EQ(Stored("Cartridge", "SONIC.BIN.Joy"), "0");
  EXPECT_FALSE(Store().KeyExists(SectionKeyPath("Settings")));
  EmulatorOptions controls;
  // The key is the listed name alone: the same name in another directory shares the set.
  EXPECT_TRUE(LoadCartridgeOptions(Settings(), "sonic.bin", true, controls));
  EXPECT_EQ(controls, Unusual());
}

TEST_F(EmulatorOptionsTest, GeneralSaveWritesTheMenusFirst) {
  GeneralSettings general;
  general.saveAllCartridges = true;
  general.sortBy = 1;
  ASSERT_TRUE(SaveOptions(Settings(), OptionSection::Settings, {}, general, "IGNORED.BIN"));
  std::vector<std::string> expected = {"cart", "tray", "ordem", "show", "title"};
  for (std::string_view key : OptionKeys())
    expected.emplace_back(key);
  EXPECT_THAT(Names("Settings"), ElementsAreArray(expected));
  EXPECT_EQ(Stored("Settings", "cart"), "True");
  EXPECT_EQ(Stored("Settings", "tray"), "False");
  EXPECT_FALSE(Store().KeyExists(SectionKeyPath("Cartridge")));
}

TEST_F(EmulatorOptionsTest, NoSavedSetShowsExactlyTheGeneralDefaults) {
  EmulatorOptions controls = Unusual();
  LoadOptionsForSelection(Settings(), "NEW.BIN", true, controls);
  EXPECT_EQ(controls, EmulatorOptions{});
}

TEST_F(EmulatorOptionsTest, ASetMissingOnlyAtivapatchLoadsTheGeneralSet) {
  EmulatorOptions general;
  general.genFrameSkip = 7;
  general.preferredEmulator = 1;
  ASSERT_TRUE(SaveOptions(Settings(), OptionSection::Settings, general, {}, ""));
  SaveCartridge("OLD.BIN", Unusual());
  ASSERT_TRUE(Settings().DeleteSetting("Cartridge", "OLD.BIN.ativapatch"));

  EmulatorOptions controls;
  LoadOptionsForSelection(Settings(), "OLD.BIN", true, controls);
  EXPECT_EQ(controls, general);  // all general, not a mix

  // While "Activate dynamic patch" is disabled the key is not read, so the set is whole.
  controls = {};
  EXPECT_TRUE(LoadCartridgeOptions(Settings(), "OLD.BIN", false, controls));
  EmulatorOptions expected = Unusual();
  expected.activateDynamicPatch = false;  // left as the control was
  EXPECT_EQ(controls, expected);
}

TEST_F(EmulatorOptionsTest, ADamagedSetFallsBackOrFailsKeyByKey) {
  // Four keys have fallbacks that never fail.
  SaveCartridge("A.BIN", Unusual());
  for (const char* key : {"A.BIN.frm", "A.BIN.kfrm", "A.BIN.cystskip", "A.BIN.cystsync"})
    ASSERT_TRUE(Settings().DeleteSetting("Cartridge", key));
  EmulatorOptions controls;
  controls.genFrameSkip = 9;  // shown before the selection
  controls.kgenFrameSkip = 6;
  ASSERT_TRUE(LoadCartridgeOptions(Settings(), "A.BIN", true, controls));
  EXPECT_EQ(controls.genFrameSkip, 9);
  EXPECT_EQ(controls.kgenFrameSkip, 1);
  EXPECT_FALSE(controls.cystCpuSkipper);
  EXPECT_FALSE(controls.cystWaitVsync);

  // Any other missing key (nullopt) or a value its control cannot take fails the read; the
  // bad one leaves its control alone and the rest is still read.
  std::vector<std::pair<std::string, std::optional<std::string>>> damage = {
      {"Joy", "a"},     {"Joy", "2"},     {"frm", "0"}, {"frm", "11"},
      {"cystsnd", "3"}, {"prefemu", "5"}, {"kfrm", "x"}};
  for (std::string_view key : OptionKeys()) {
    if (key != "frm" && key != "kfrm" && key != "cystskip" && key != "cystsync" &&
        !key.starts_with("bem") && !key.starts_with("mdn"))
      damage.emplace_back(key, std::nullopt);
  }
  for (const auto& [key, bad] : damage) {
    SCOPED_TRACE(key + "=" + bad.value_or("<missing>"));
    SaveCartridge("C.BIN", Unusual());
    const std::string name = "C.BIN." + key;
    ASSERT_TRUE(bad ? Settings().SaveSetting("Cartridge", name, *bad)
                    : Settings().DeleteSetting("Cartridge", name));
    EmulatorOptions read;
    EXPECT_FALSE(LoadCartridgeOptions(Settings(), "C.BIN", true, read));
    EXPECT_EQ(OptionText(read, key), OptionText(EmulatorOptions{}, key));
    EXPECT_TRUE(key == "ativapatch" || read.activateDynamicPatch);
  }
}

TEST_F(EmulatorOptionsTest, GeneralReadsFallBackToDefaults) {
  ASSERT_TRUE(Settings().SaveSettings(
      "Settings", {{"Joy", "0"}, {"frm", "abc"}, {"cystsnd", "7"}, {"ativapatch", "1"}}));
  EmulatorOptions controls = Unusual();
  LoadDefaultOptions(Settings(), false, controls);
  EmulatorOptions expected;
  expected.disableJoypad = false;
  expected.activateDynamicPatch = true;  // not read while disabled: the control keeps it
  EXPECT_EQ(controls, expected);

  // The tab index is read leniently: its leading number, nothing giving 0.
  for (const auto& [text, tab] :
       std::vector<std::pair<std::string, int>>{{"2abc", 2}, {"", 0}, {" 1", 1}, {"9", 0}}) {
    ASSERT_TRUE(Settings().SaveSetting("Settings", "prefemu", text));
    controls.preferredEmulator = 1;
    LoadDefaultOptions(Settings(), true, controls);
    EXPECT_EQ(controls.preferredEmulator, tab) << '"' << text << '"';
  }
}

}  // namespace
}  // namespace romsteward
