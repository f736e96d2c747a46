#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/app/main_window_model.h"
#include "core/launch/emulator_profiles.h"
#include "support/place_fixture.h"
#include "support/recording_starter.h"

namespace romsteward {
namespace {

using ::testing::ElementsAre;

class LaunchControlsTest : public test::PlaceTest {
protected:
  MainWindowModel model{host, settings};
};

TEST_F(LaunchControlsTest, TheRequestCarriesTheControlsAsTheyStand) {
  const std::string dir = MakeDir("roms");
  CartridgeSpec brazilian;
  brazilian.countries = "4";
  Put(dir, "a.bin", ImageBytes(Layout::Bin, brazilian));
  ASSERT_TRUE(model.SetDiret(dir));
  model.Select(0);
  EXPECT_NE(model.LaunchRequestForSelection().country, "Japan");

  model.SetFakeZ80(true);
  model.ForceAnotherLanguage();
  model.ChooseCountry(2);
  model.SetExtraCommandLine("-x");
  const LaunchRequest request = model.LaunchRequestForSelection();
  EXPECT_EQ(request.country, "Japan");
  EXPECT_EQ(request.entryText, "a.bin");
  EXPECT_EQ(request.diret, dir);
  EXPECT_EQ(request.extraCommandLine, "-x");
  EXPECT_FALSE(request.options.enableZ80);
  EXPECT_TRUE(model.CalibrationRequest().calibrate);
}

TEST_F(LaunchControlsTest, EnterStartsTheExtraCommandLineAndEmptiesIt) {
  test::RecordingStarter starter;
  model.SetExtraCommandLine("  xterm -e  top ");
  model.ExecuteExtraCommandLine(starter);
  ASSERT_EQ(starter.started.size(), 1u);
  EXPECT_EQ(starter.started[0].program, "xterm");
  EXPECT_THAT(starter.started[0].arguments, ElementsAre("-e", "top"));
  EXPECT_EQ(model.ExtraCommandLine(), "");
}

TEST_F(LaunchControlsTest, FirstRunNoticeIgnoresGenEmnewAndLocatingWritesTheKey) {
  ASSERT_TRUE(settings.SaveSetting(kSectionSettings, "Genemnew", "/x/gennew.exe"));
  EXPECT_TRUE(ShowFirstRunNotice(host, settings));
  EXPECT_THAT(host.Texts(), ElementsAre(std::string(kFirstRunNotice)));

  host.AnswerOpenFile("/dos/kgen.exe");
  LocateEmulator(host, settings, *FindEmulatorProfile("kgen"));
  EXPECT_EQ(host.Events().back().dialog.title, "Locate KGen.exe");
  EXPECT_EQ(host.Events().back().dialog.filters[0].patterns, "kgen.exe");
  EXPECT_EQ(settings.GetSetting(kSectionSettings, "KGen"), "/dos/kgen.exe");
  EXPECT_FALSE(ShowFirstRunNotice(host, settings));
}

}  // namespace
}  // namespace romsteward
