#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/app/main_window_model.h"
#include "core/launch/emulator_profiles.h"
#include "core/launch/emulator_runners.h"
#include "core/library/place.h"
#include "core/settings/option_commands.h"
#include "support/place_fixture.h"
#include "support/recording_starter.h"

namespace romsteward {
namespace {

using ::testing::ElementsAre;

class MainWindowCommandsTest : public test::PlaceTest {
protected:
  // No emulator of this machine's is found unless a test puts one in place.
  MainWindowCommandsTest() { model.SetProgramFolders({}); }
  std::string Collection() {
    const std::string dir = MakeDir("roms");
    Put(dir, "alpha.bin", ImageBytes(Layout::Bin));
    Put(dir, "beta.smd", ImageBytes(Layout::Smd));
    return dir;
  }
  std::size_t Notices() const {
    std::size_t count = 0;
    for (const test::HostEvent& event : host.Events())
      count += event.text == kFirstRunNotice ? 1 : 0;
    return count;
  }

  MainWindowModel model{host, settings};
};

TEST_F(MainWindowCommandsTest, StartUpReadsTheChecksShowsTheNoticeAndOpensTheLastPlace) {
  const std::string dir = Collection();
  Put(dir, "notes.txt", "text");
  // GenEmnew alone is no known emulator; an unreadable choice keeps its default.
  for (const auto& [key, value] :
       std::vector<std::pair<std::string, std::string>>{{"dir0", dir},
                                                        {"dir1", "/elsewhere"},
                                                        {"savex", "True"},
                                                        {"tray", "True"},
                                                        {"frm", "5"},
                                                        {"Genemnew", "/games/gennew.exe"},
                                                        {"ordem", "1"},
                                                        {"show", "0"},
                                                        {"title", "junk"}})
    ASSERT_TRUE(settings.SaveSetting(kSectionSettings, key, value));
  model.Start();
  EXPECT_EQ(Notices(), 1u);
  EXPECT_TRUE(model.Controls()["mnu_save"].checked);
  EXPECT_FALSE(model.Controls()["mnu_savcart"].checked);
  EXPECT_TRUE(model.Controls()["mnu_tray"].checked);
  EXPECT_EQ(model.Options().genFrameSkip, 5);
  EXPECT_EQ(model.Order(), SortOrder::Type);
  EXPECT_EQ(model.Filter(), ListFilter::AllFiles);
  EXPECT_TRUE(model.Controls()["mnuTitle(0)"].checked);
  EXPECT_EQ(model.Diret(), dir);
  EXPECT_THAT(model.Entries(), ElementsAre("alpha.bin", "beta.smd", "notes.txt"));
  EXPECT_EQ(model.Controls()["mnu_dirs(1)"].caption, "/elsewhere");

  // Locating an emulator writes its key, and the notice is not shown again.
  host.AnswerOpenFile("/games/kgen.exe");
  LocateEmulator(host, settings, *FindEmulatorProfile("kgen"), {});
  EXPECT_EQ(host.Events().back().dialog.title, "Locate KGen.exe");
  EXPECT_EQ(host.Events().back().dialog.filters[0].patterns, "kgen.exe");
  EXPECT_EQ(host.Events().back().dialog.initialDir, "/usr/games");
  EXPECT_EQ(settings.GetSetting(kSectionSettings, "KGen"), "/games/kgen.exe");
  // Located again, it opens where the emulator was found, while that folder is there.
  const std::string emulators = MakeDir("emulators");
  host.AnswerOpenFile(JoinDirName(emulators, "kgen.exe"));
  LocateEmulator(host, settings, *FindEmulatorProfile("kgen"));
  EXPECT_EQ(host.Events().back().dialog.initialDir, "/usr/games");  // /games is not there
  host.AnswerOpenFile(std::nullopt);
  LocateEmulator(host, settings, *FindEmulatorProfile("kgen"));
  EXPECT_EQ(host.Events().back().dialog.initialDir, emulators);
  MainWindowModel again(host, settings);
  again.SetProgramFolders({});
  again.Start();
  EXPECT_EQ(Notices(), 1u);
}

TEST_F(MainWindowCommandsTest, TheFirstStartFillsInTheInstalledEmulatorsAndSaysSo) {
  const std::string games = MakeDir("games");
  for (const char* name : {"mednafen", "blastem"})
    Put(games, name, "#!/bin/sh\n");
  ASSERT_TRUE(settings.SaveSetting(kSectionSettings, "dir0", Collection()));
  model.SetProgramFolders({PathOf("nowhere"), Utf8ToPath(games)});
  model.Start();
  EXPECT_EQ(Notices(), 0u);
  EXPECT_EQ(settings.GetSetting(kSectionSettings, "BlastEm"), JoinDirName(games, "blastem"));
  EXPECT_EQ(settings.GetSetting(kSectionSettings, "Mednafen"), JoinDirName(games, "mednafen"));
  ASSERT_EQ(host.Texts().size(), 1u);
  EXPECT_THAT(host.Texts()[0], ::testing::HasSubstr("BlastEm is now the emulator"));
  // A game without options of its own starts in it, as the next selection shows.
  const int blastEm = static_cast<int>(EmulatorTab::BlastEm);
  EXPECT_EQ(model.Options().preferredEmulator, blastEm);
  model.Select(1);
  EXPECT_EQ(model.LaunchRequestForSelection().options.preferredEmulator, blastEm);

  // Once one is known, a start neither looks nor speaks.
  ASSERT_TRUE(settings.SaveSetting(kSectionSettings, "BlastEm", ""));
  MainWindowModel again(host, settings);
  again.SetProgramFolders({Utf8ToPath(games)});
  again.Start();
  EXPECT_EQ(host.Texts().size(), 1u);
  EXPECT_EQ(settings.GetSetting(kSectionSettings, "BlastEm"), "");
}

TEST_F(MainWindowCommandsTest, ADosEmulatorFoundOrLocatedIsOfferedAnInstalledRunner) {
  const std::string games = MakeDir("games");
  for (const char* name : {"genem.exe", "kgen.exe"})
    Put(games, name, "MZ");
  const std::string bin = MakeDir("bin");
  Put(bin, "wine", "#!/bin/sh\n");
  host.AnswerYesNo(Answer::Yes).AnswerYesNo(Answer::No);
  model.SetProgramFolders({Utf8ToPath(games), Utf8ToPath(bin)});
  model.Start();
  EXPECT_EQ(settings.GetSetting(kSectionSettings, "Genemrun"), "wine");
  EXPECT_EQ(settings.GetSetting(kSectionSettings, "KGenrun"), "");
  EXPECT_EQ(model.Options().preferredEmulator, static_cast<int>(EmulatorTab::GenEm));
  const auto questions = host.EventsOf(test::PromptKind::YesNo);
  ASSERT_EQ(questions.size(), 2u);
  EXPECT_EQ(questions[0].text,
            SuggestRunnerQuestion(*FindEmulatorProfile("GenEm"), RunnerChoices()[1]));

  // Located by hand: offered while it has no runner, and only where a runner is installed.
  host.AnswerOpenFile("/games/genecyst.exe").AnswerYesNo(Answer::Yes);
  LocateEmulator(host, settings, *FindEmulatorProfile("Genecyst"), {Utf8ToPath(bin)});
  EXPECT_EQ(settings.GetSetting(kSectionSettings, "Genecystrun"), "wine");
  host.AnswerOpenFile("/games/genecyst.exe").AnswerOpenFile("/games/gennew.exe");
  LocateEmulator(host, settings, *FindEmulatorProfile("Genecyst"), {Utf8ToPath(bin)});
  LocateEmulator(host, settings, *FindEmulatorProfile("GenEmnew"), {});
  EXPECT_EQ(host.EventsOf(test::PromptKind::YesNo).size(), 3u);
}

TEST_F(MainWindowCommandsTest, ClosingSavesAsTheExitChecksSayAndAlwaysThePosition) {
  model.Start();
  model.Options().genFrameSkip = 7;
  model.Close({12, 34});
  EXPECT_EQ(settings.GetSetting(kSectionSettings, "LaunchX"), "12");
  EXPECT_EQ(settings.GetSetting(kSectionSettings, "frm"), "");
  model.ToggleSaveOnExit();
  EXPECT_EQ(settings.GetSetting(kSectionSettings, "savex"), "True");
  model.ChooseTitle(1);
  model.Close({0, 34});
  EXPECT_EQ(settings.GetSetting(kSectionSettings, "frm"), "7");
  EXPECT_EQ(settings.GetSetting(kSectionSettings, "title"), "1");
  EXPECT_EQ(settings.GetSetting(kSectionSettings, "LaunchY"), "34");
}

TEST_F(MainWindowCommandsTest, OptionRulesAndTheForcedCountryReachTheLaunch) {
  const std::string dir = MakeDir("roms");
  CartridgeSpec brazilian;
  brazilian.countries = "4";
  Put(dir, "a.bin", ImageBytes(Layout::Bin, brazilian));
  ASSERT_TRUE(model.SetDiret(dir));
  model.Select(0);
  EXPECT_NE(model.LaunchRequestForSelection().country, "Japan");

  model.SetEnableZ80(true);
  EXPECT_FALSE(model.Options().fakeZ80);
  model.SetEnableZ80(false);
  EXPECT_FALSE(model.Options().fakeZ80);  // both may be off
  model.SetFakeZ80(true);
  EXPECT_FALSE(model.Options().enableZ80);

  model.SetDisableJoypad(false);
  EXPECT_TRUE(model.Controls()["CmdCalib"].enabled);
  model.SetDisableJoypad(true);
  EXPECT_FALSE(model.Controls()["CmdCalib"].enabled);

  model.ForceAnotherLanguage();
  model.ForceAnotherLanguage();
  EXPECT_THAT(model.Texts().cmbCartLang, ElementsAre("USA", "Europe", "Japan"));
  EXPECT_TRUE(model.Controls()["cmbCartLang"].enabled);
  model.ChooseCountry(2);
  model.ChooseCountry(3);  // out of range: ignored
  model.SetExtraCommandLine("-x");
  const LaunchRequest request = model.LaunchRequestForSelection();
  EXPECT_EQ(request.country, "Japan");
  EXPECT_EQ(request.entryText, "a.bin");
  EXPECT_EQ(request.diret, dir);
  EXPECT_EQ(request.extraCommandLine, "-x");
  EXPECT_FALSE(request.options.enableZ80);
  EXPECT_TRUE(model.CalibrationRequest().calibrate);
}

TEST_F(MainWindowCommandsTest, EnterStartsTheExtraCommandLineAndEmptiesIt) {
  test::RecordingStarter starter;
  model.SetExtraCommandLine("  xterm -e  top ");
  model.ExecuteExtraCommandLine(starter);
  ASSERT_EQ(starter.started.size(), 1u);
  EXPECT_EQ(starter.started[0].program, "xterm");
  EXPECT_THAT(starter.started[0].arguments, ElementsAre("-e", "top"));
  EXPECT_EQ(model.ExtraCommandLine(), "");

  // Quoted as in a terminal; an open quote is told and the text stays to be mended.
  model.SetExtraCommandLine(R"(mednafen "/roms/my game.bin")");
  model.ExecuteExtraCommandLine(starter);
  ASSERT_EQ(starter.started.size(), 2u);
  EXPECT_THAT(starter.started[1].arguments, ElementsAre("/roms/my game.bin"));
  model.SetExtraCommandLine(R"(mednafen "/roms/my game.bin)");
  model.ExecuteExtraCommandLine(starter);
  EXPECT_EQ(starter.started.size(), 2u);
  EXPECT_EQ(model.ExtraCommandLine(), R"(mednafen "/roms/my game.bin)");
  EXPECT_THAT(host.Texts().back(), ::testing::HasSubstr("not closed"));
}

TEST_F(MainWindowCommandsTest, SavingAndDeletingTheCartridgesSettings) {
  ASSERT_TRUE(model.SetDiret(Collection()));
  model.Select(0);
  model.Options().kgenFrameSkip = 4;
  model.SaveThisCartridge();
  EXPECT_EQ(settings.GetSetting(kSectionCartridge, "alpha.bin.kfrm"), "4");
  model.DeleteThisCartridgeSettings();
  EXPECT_EQ(settings.GetSetting(kSectionCartridge, "alpha.bin.kfrm"), "");
  EXPECT_EQ(settings.GetSetting(kSectionCartridge, "alpha.bin.gnew"), "0");  // kept on purpose
  model.DeleteThisCartridgeSettings();
  EXPECT_EQ(host.Events().back().text, kDeleteSettingsError);
}

TEST_F(MainWindowCommandsTest, FileCommandsAndDropsRefreshTheList) {
  const std::string dir = Collection();
  ASSERT_TRUE(model.SetDiret(dir));
  model.Select(1);
  host.AnswerText("gamma.smd");
  model.RenameSelected();
  EXPECT_THAT(model.Entries(), ElementsAre("alpha.bin", "gamma.smd"));
  EXPECT_EQ(model.SelectedText(), "gamma.smd");
  // In type order the halving search would lose it: the renamed entry is found by its name.
  model.ChooseSort(SortOrder::Type);
  model.Select(1);
  host.AnswerText("aaa.smd");
  model.RenameSelected();
  EXPECT_THAT(model.Entries(), ElementsAre("alpha.bin", "aaa.smd"));
  EXPECT_EQ(model.SelectedText(), "aaa.smd");
  EXPECT_EQ(model.Texts().caption, "Genesis Romsteward - DEMO CARTRIDGE");
  model.ChooseSort(SortOrder::Name);

  const std::string outside = MakeDir("elsewhere");
  const std::string dropped = Put(outside, "delta.md", ImageBytes(Layout::Md));
  model.DropFiles(std::vector<std::string>{dropped});
  EXPECT_THAT(model.Entries(), ElementsAre("aaa.smd", "alpha.bin", "delta.md"));
  EXPECT_TRUE(PathExists(dropped, PathKind::File));  // copied, not moved

  model.DropFiles(std::nullopt);
  EXPECT_EQ(host.Events().back().text, "You can only drop files! Action cancelled.");

  model.Select(0);
  host.SetShiftHeld(true);
  host.AnswerYesNo(Answer::Yes);
  model.DeleteSelected();
  EXPECT_THAT(model.Entries(), ElementsAre("alpha.bin", "delta.md"));
  EXPECT_EQ(model.Selection(), std::nullopt);
}

TEST_F(MainWindowCommandsTest, RestoreCrcIsOfferedExactlyWhileAChecksumIsKept) {
  const std::string dir = MakeDir("roms");
  CartridgeSpec wrong;
  wrong.wrongChecksum = true;
  Put(dir, "bad.bin", ImageBytes(Layout::Bin, wrong));
  ASSERT_TRUE(model.SetDiret(dir));
  model.Select(0);
  model.OpenToolsMenu();
  EXPECT_FALSE(model.Controls()["mnu_getcrc"].enabled);

  host.AnswerQuestionBox(kEscolhaCancel);  // "&Fix 'n Save" keeps the old one
  model.CheckSelectedCrc();
  model.OpenToolsMenu();
  EXPECT_TRUE(model.Controls()["mnu_getcrc"].enabled);
  host.AnswerYesNo(Answer::Yes);
  model.RestoreSelectedCrc();
  model.OpenToolsMenu();
  EXPECT_FALSE(model.Controls()["mnu_getcrc"].enabled);
}

TEST_F(MainWindowCommandsTest, StartUpWarnsOnceOfAnOutdatedArchiveLibraryAndGoesOn) {
  const std::string dir = Collection();
  ASSERT_TRUE(settings.SaveSetting(kSectionSettings, "dir0", dir));
  ASSERT_TRUE(settings.SaveSetting(kSectionSettings, "KGen", "/games/kgen.exe"));
  model.Start(kMinimumArchiveLibraryVersion - 1);
  ASSERT_EQ(host.Events().size(), 1u);
  EXPECT_EQ(host.Events()[0].text,
            "The unzipping dlls found in your system are outdated. Get the latest version in "
            "info-ZIP or Romsteward's homepage (read docs)");
  EXPECT_EQ(host.Events()[0].icon, MessageIcon::Exclamation);
  EXPECT_EQ(model.Diret(), dir);

  // The library this program is linked with passes.
  MainWindowModel linked(host, settings);
  linked.Start();
  EXPECT_EQ(host.Events().size(), 1u);
}

}  // namespace
}  // namespace romsteward
