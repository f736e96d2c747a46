#include "core/app/main_window_model.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/common/strings.h"
#include "core/launch/zip_archive.h"
#include "core/library/place.h"
#include "support/place_fixture.h"

namespace romsteward {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class MainWindowModelTest : public test::PlaceTest {
protected:
  MainWindowModelTest() : model(host, Settings()) {}

  // A directory of three images, a second split volume and a text file.
  std::string Collection(std::string_view name = "roms") {
    const std::string dir = MakeDir(name);
    WriteImage(dir, "b game.smd", Layout::Smd);
    WriteImage(dir, "A Game.bin", Layout::Bin);
    WriteImage(dir, "c.1", Layout::Bin);
    test::WriteTestFile(Utf8ToPath(JoinDirName(dir, "c.2")), "second volume");
    test::WriteTestFile(Utf8ToPath(JoinDirName(dir, "notes.txt")), "text");
    return dir;
  }
  std::vector<std::string> History() const {
    std::vector<std::string> captions;
    for (int i = 0; i < 5; ++i)
      captions.push_back(model.Controls()[ElementName("mnu_dirs", i)].caption);
    return captions;
  }
  std::vector<std::string> SavedHistory() {
    std::vector<std::string> values;
    for (int i = 0; i < 5; ++i)
      values.push_back(Settings().GetSetting(kSectionSettings, "dir" + std::to_string(i)));
    return values;
  }
  void ExpectFileMenus(bool enabled) {
    const WindowControls& c = model.Controls();
    EXPECT_EQ(c["mnu_file"].caption, enabled ? "&File" : "Select a file!");
    EXPECT_EQ(c["mnu_conv"].caption, enabled ? "&Convert" : "Select a file!");
    for (const char* name :
         {"mnu_file", "mnu_tool", "mnu_conv", "mnu_addfav", "btncrc", "Btnlista"})
      EXPECT_EQ(c[name].enabled, enabled) << name;
  }

  MainWindowModel model;
};

TEST_F(MainWindowModelTest, ADirectoryListsItsRomsSortedAndCounted) {
  const std::string dir = Collection();
  ASSERT_TRUE(model.SetDiret(dir));
  EXPECT_EQ(model.Diret(), dir);
  EXPECT_THAT(model.Entries(), ElementsAre("A Game.bin", "b game.smd", "c.1"));
  EXPECT_EQ(model.Texts().txtFiles, "3 file(s)");
  EXPECT_EQ(model.Texts().caption, "Genesis Romsteward");
  EXPECT_EQ(model.Texts().txtarquivo, "Normal Archive");
  EXPECT_FALSE(model.IsZipListing());
  EXPECT_EQ(model.Selection(), std::nullopt);
  EXPECT_THAT(host.Events(), IsEmpty());

  model.ChooseFilter(ListFilter::AllFiles);
  EXPECT_TRUE(model.Controls()["mnu_showsub(0)"].checked);
  EXPECT_FALSE(model.Controls()["mnu_showsub(1)"].checked);
  EXPECT_EQ(model.Texts().txtFiles, "5 file(s)");

  model.ChooseSort(SortOrder::Type);
  EXPECT_TRUE(model.Controls()["mnu_sortsub(1)"].checked);
  EXPECT_THAT(model.Entries(), ElementsAre("c.1", "c.2", "A Game.bin", "b game.smd", "notes.txt"));

  model.ChooseTitle(1);  // only the radio change
  EXPECT_TRUE(model.Controls()["mnuTitle(1)"].checked);
  EXPECT_FALSE(model.Controls()["mnuTitle(0)"].checked);
  EXPECT_EQ(model.Entries().size(), 5u);
}

TEST_F(MainWindowModelTest, APlaceThatIsGoneLeavesEverythingAsItWas) {
  const std::string dir = Collection();
  ASSERT_TRUE(model.SetDiret(dir));
  model.Select(1);
  test::WriteTestFile(PathOf("plain.zip"), "not an archive at all");

  for (const std::string& bad : {PathToUtf8(PathOf("missing")), PathToUtf8(PathOf("plain.zip"))}) {
    EXPECT_FALSE(model.SetDiret(bad));
    EXPECT_EQ(model.Diret(), dir);
    EXPECT_EQ(model.Entries().size(), 3u);
    EXPECT_EQ(model.SelectedText(), "b game.smd");
  }
  EXPECT_THAT(host.Texts(),
              ElementsAre("Directory no longer exists", "Directory no longer exists"));
  EXPECT_EQ(host.Events()[0].icon, MessageIcon::Critical);
}

TEST_F(MainWindowModelTest, AnEmptyPlaceSwitchesTheFileMenusOff) {
  ASSERT_TRUE(model.SetDiret(Collection()));
  model.Select(0);
  ExpectFileMenus(true);

  ASSERT_TRUE(model.SetDiret(MakeDir("empty")));
  EXPECT_THAT(model.Entries(), IsEmpty());
  EXPECT_EQ(model.Texts().txtFiles, "0 file(s)");
  EXPECT_EQ(model.CurrentFileName(), "");
  ExpectFileMenus(false);
}

TEST_F(MainWindowModelTest, SelectionIsShownOnceAndAgainAfterAChangeOfPlace) {
  const std::string first = Collection("first");
  const std::string second = MakeDir("second");
  test::WriteTestFile(Utf8ToPath(JoinDirName(second, "A Game.bin")), "no image here");
  ASSERT_TRUE(model.SetDiret(first));

  model.Select(0);
  EXPECT_EQ(model.CurrentFileName(), "A Game.bin");
  EXPECT_EQ(model.Texts().txtTipo, "Super Magic Drive Binary (BIN)");
  ExpectFileMenus(true);

  // The same name in the new place is selected again, and shown afresh.
  ASSERT_TRUE(model.SetDiret(second));
  EXPECT_EQ(model.SelectedText(), "A Game.bin");
  EXPECT_EQ(model.Texts().txtTipo, "No rom");

  EXPECT_EQ(model.TooltipForRow(0), "A Game.bin");
  EXPECT_EQ(model.TooltipForRow(1), "");
  EXPECT_EQ(model.TooltipForRow(-1), "");
}

TEST_F(MainWindowModelTest, RefreshKeepsTheSelectionInNameOrderOnly) {
  const std::string dir = Collection();
  ASSERT_TRUE(model.SetDiret(dir));
  model.Select(1);
  WriteImage(dir, "0 first.bin", Layout::Bin);
  model.RefreshRomList();
  EXPECT_THAT(model.Entries(), ElementsAre("0 first.bin", "A Game.bin", "b game.smd", "c.1"));
  EXPECT_EQ(model.SelectedText(), "b game.smd");
  EXPECT_EQ(model.Texts().txtFiles, "4 file(s)");

  // In type order the halving search cannot find "c.1" at the front.
  model.Select(3);
  model.ChooseSort(SortOrder::Type);
  EXPECT_THAT(model.Entries(), ElementsAre("c.1", "0 first.bin", "A Game.bin", "b game.smd"));
  EXPECT_EQ(model.Selection(), std::nullopt);
}

TEST_F(MainWindowModelTest, AZipArchiveListsItsMembersInArchiveOrder) {
  const std::string dir = MakeDir("zips");
  const std::string zip = WriteZip(dir, "set.zip",
                                   {{"z last.bin", ImageBytes(Layout::Bin)},
                                    {"readme.txt", "text"},
                                    {"a first.smd", ImageBytes(Layout::Smd)}});
  ASSERT_TRUE(model.SetDiret(zip));
  EXPECT_THAT(model.Entries(), ElementsAre("z last.bin", "a first.smd"));
  EXPECT_TRUE(model.IsZipListing());
  EXPECT_EQ(model.Texts().txtarquivo, "ZIP file");
  EXPECT_EQ(model.Texts().txtarquivoColour, TextColour::Blue);
  EXPECT_EQ(model.Texts().txtFiles, "2 file(s)");

  model.Select(1);  // an archive member is known by name only
  EXPECT_EQ(model.Texts().txtTipo, "No rom");
  ExpectFileMenus(true);

  // Back in a directory, the marker gives way again.
  ASSERT_TRUE(model.SetDiret(dir));
  EXPECT_FALSE(model.IsZipListing());
  EXPECT_EQ(model.Texts().txtarquivoColour, TextColour::Normal);
  EXPECT_THAT(host.Events(), IsEmpty());
}

TEST_F(MainWindowModelTest, ADamagedArchiveListsWhatCanBeReadAndSaysSo) {
  std::string zip = test::ReadTestFile(Utf8ToPath(WriteZip(
      MakeDir("zips"), "whole.zip", {{"one.bin", "1"}, {"two.bin", std::string(5000, 'x')}})));
  const auto second = zip.find(std::string("PK\x03\x04", 4), 1);
  test::WriteTestFile(PathOf("cut.zip"), zip.substr(0, second + 40));

  ASSERT_TRUE(model.SetDiret(PathToUtf8(PathOf("cut.zip"))));
  EXPECT_EQ(model.Entries().front(), "one.bin");
  ASSERT_EQ(host.Texts().size(), 1u);
  EXPECT_THAT(host.Texts()[0], HasSubstr("damaged"));
}

TEST_F(MainWindowModelTest, OpeningAZipArchiveHasThreeRefusals) {
  const std::string dir = MakeDir("zips");
  const std::string zip = WriteZip(dir, "set.zip", {{"game.bin", ImageBytes(Layout::Bin)}});
  test::WriteTestFile(Utf8ToPath(JoinDirName(dir, "fake.zip")), "PK but no signature");

  host.AnswerOpenFile(std::nullopt);
  model.OpenZipDirectory();
  const test::HostEvent dialog = host.Events().back();
  EXPECT_EQ(dialog.title, "Choose a ZIP directory");
  ASSERT_EQ(dialog.dialog.filters.size(), 1u);
  EXPECT_EQ(dialog.dialog.filters[0].description, "Zipped volumes");
  EXPECT_EQ(dialog.dialog.filters[0].patterns, "*.zip");

  host.AnswerOpenFile("\\\\server\\share\\set.zip");
  model.OpenZipDirectory();
  host.AnswerOpenFile(JoinDirName(dir, "fake.zip"));
  model.OpenZipDirectory();
  host.AnswerOpenFile(zip);
  model.OpenZipDirectory();
  ASSERT_TRUE(Settings().SaveSetting(kSectionSettings, "temp", PathToUtf8(PathOf("gone"))).ok());
  host.AnswerOpenFile(zip);
  model.OpenZipDirectory();
  EXPECT_THAT(host.Texts(),
              ElementsAre(std::string(kUncRefused), "The selected file isn't a valid ZIP volume!",
                          std::string(kTempFolderMissing), std::string(kTempFolderMissing)));
  EXPECT_EQ(model.Diret(), "");

  ASSERT_TRUE(Settings().SaveSetting(kSectionSettings, "temp", MakeDir("temp")).ok());
  host.AnswerOpenFile(zip);
  model.OpenZipDirectory();
  EXPECT_EQ(model.Diret(), zip);
  EXPECT_THAT(model.Entries(), ElementsAre("game.bin"));
  EXPECT_EQ(SavedHistory()[0], zip);
}

TEST_F(MainWindowModelTest, OpeningADirectoryRefusesRemotePlacesAndRemembersTheRest) {
  const std::string dir = Collection();
  host.AnswerFolder("smb://server/roms");
  model.OpenRomDirectory();
  host.AnswerFolder(std::nullopt);
  model.OpenRomDirectory();
  EXPECT_THAT(host.Texts(), ElementsAre(std::string(kUncRefused)));
  EXPECT_EQ(host.EventsOf(test::PromptKind::Folder).at(0).title, "Choose a ROM directory");
  EXPECT_EQ(model.Diret(), "");
  EXPECT_THAT(SavedHistory(), ElementsAre("", "", "", "", ""));

  host.AnswerFolder(dir);
  model.OpenRomDirectory();
  EXPECT_EQ(model.Diret(), dir);
  EXPECT_THAT(SavedHistory(), ElementsAre(dir, "", "", "", ""));
  EXPECT_TRUE(model.Controls()["mnu_dirs(0)"].visible);
  EXPECT_FALSE(model.Controls()["mnu_dirs(1)"].visible);
}

TEST_F(MainWindowModelTest, HistoryMovesAChosenEntryToTheTop) {
  std::vector<std::string> dirs;
  for (const char* name : {"d1", "d2", "d3", "d4", "d5"}) {
    dirs.push_back(MakeDir(name));
    WriteImage(dirs.back(), std::string(name) + ".bin", Layout::Bin);
    model.AddDirHistory(dirs.back());
  }
  EXPECT_THAT(History(), ElementsAre(dirs[4], dirs[3], dirs[2], dirs[1], dirs[0]));

  model.ChooseDirHistory(3);
  EXPECT_EQ(model.Diret(), dirs[1]);
  EXPECT_THAT(History(), ElementsAre(dirs[1], dirs[4], dirs[3], dirs[2], dirs[0]));
  EXPECT_THAT(SavedHistory(), ElementsAre(dirs[1], dirs[4], dirs[3], dirs[2], dirs[0]));

  // A deleted directory: the message, the old list on screen, the history as it was.
  std::filesystem::remove_all(Utf8ToPath(dirs[2]));
  model.ChooseDirHistory(3);
  EXPECT_THAT(host.Texts(), ElementsAre("Directory no longer exists"));
  EXPECT_EQ(model.Diret(), dirs[1]);
  EXPECT_THAT(model.Entries(), ElementsAre("d2.bin"));
  EXPECT_THAT(SavedHistory(), ElementsAre(dirs[1], dirs[4], dirs[3], dirs[2], dirs[0]));
}

TEST_F(MainWindowModelTest, StartUpRestoresTheChoicesAndOpensTheLastPlace) {
  const std::string dir = Collection();
  for (const auto& [key, value] : std::vector<std::pair<std::string, std::string>>{
           {"ordem", "1"}, {"show", "0"}, {"title", "junk"}, {"dir0", dir}, {"dir1", "/elsewhere"}})
    ASSERT_TRUE(Settings().SaveSetting(kSectionSettings, key, value).ok());

  model.LoadListChoices();
  model.LoadDirHistory();
  EXPECT_EQ(model.Order(), SortOrder::Type);
  EXPECT_EQ(model.Filter(), ListFilter::AllFiles);
  EXPECT_TRUE(model.Controls()["mnuTitle(0)"].checked);  // an unreadable choice keeps its default
  EXPECT_EQ(model.Diret(), dir);
  EXPECT_EQ(model.Entries().size(), 5u);
  EXPECT_THAT(History(), ElementsAre(dir, "/elsewhere", "", "", ""));
  EXPECT_TRUE(model.Controls()["mnu_dirs(1)"].visible);
  EXPECT_FALSE(model.Controls()["mnu_dirs(2)"].visible);
}

TEST_F(MainWindowModelTest, TheTemporaryFolderIsChosenAndSavedAtOnce) {
  const std::string temp = MakeDir("temp");
  host.AnswerFolder(temp);
  model.SetTemporaryDirectory();
  EXPECT_EQ(host.EventsOf(test::PromptKind::Folder).at(0).title, "Choose temporary directory");
  EXPECT_EQ(Settings().GetSetting(kSectionSettings, "temp"), temp);

  host.AnswerFolder(std::nullopt);
  model.SetTemporaryDirectory();
  EXPECT_EQ(Settings().GetSetting(kSectionSettings, "temp"), temp);
}

TEST_F(MainWindowModelTest, AnOutdatedArchiveLibraryIsReported) {
  CheckArchiveLibraryVersion(host, 3006002);
  CheckArchiveLibraryVersion(host, 3007000);
  EXPECT_THAT(host.Events(), IsEmpty());
  CheckArchiveLibraryVersion(host, 3006001);
  EXPECT_THAT(host.Texts(), ElementsAre(HasSubstr("are outdated")));
}

}  // namespace
}  // namespace romsteward
