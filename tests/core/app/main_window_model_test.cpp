#include "core/app/main_window_model.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

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
  // Three images, a second split volume and a text file.
  std::string Collection(std::string_view name = "roms") {
    const std::string dir = MakeDir(name);
    Put(dir, "b game.smd", ImageBytes(Layout::Smd));
    Put(dir, "A Game.bin", ImageBytes(Layout::Bin));
    Put(dir, "c.1", ImageBytes(Layout::Bin));
    Put(dir, "c.2", "second volume");
    Put(dir, "notes.txt", "text");
    return dir;
  }
  std::vector<std::string> History(bool saved) {
    std::vector<std::string> captions;
    for (int i = 0; i < 5; ++i)
      captions.push_back(saved ? settings.GetSetting(kSectionSettings, "dir" + std::to_string(i))
                               : model.Controls()[ElementName("mnu_dirs", i)].caption);
    return captions;
  }
  void ExpectFileMenus(bool enabled) {
    EXPECT_EQ(model.Controls()["mnu_conv"].caption, enabled ? "&Convert" : "Select a file!");
    for (const char* name : {"mnu_file", "mnu_tool", "mnu_addfav", "Btnlista"})
      EXPECT_EQ(model.Controls()[name].enabled, enabled) << name;
  }

  // Nothing selected: no texts of an entry, and off whatever works on one.
  void ExpectNothingShown() {
    const WindowTexts& texts = model.Texts();
    EXPECT_EQ(texts.caption, "Genesis Romsteward");
    EXPECT_EQ(texts.txtTipo + texts.txtbits + texts.txtRAM, "");
    EXPECT_THAT(texts.cmbSave, IsEmpty());
    EXPECT_THAT(texts.cmbCartLang, IsEmpty());
    ExpectFileMenus(false);
    for (const char* name : {"CmdLaunch", "chkIPS", "cmbSave", "cmbCartLang", "CmdForce"})
      EXPECT_FALSE(model.Controls()[name].enabled) << name;
    EXPECT_FALSE(model.Options().activateDynamicPatch);
  }

  MainWindowModel model{host, settings};
};

TEST_F(MainWindowModelTest, ADirectoryIsListedSortedAndRefreshedKeepingTheSelection) {
  const std::string dir = Collection();
  ASSERT_TRUE(model.SetDiret(dir));
  EXPECT_THAT(model.Entries(), ElementsAre("A Game.bin", "b game.smd", "c.1"));
  EXPECT_EQ(model.Texts().txtarquivo, "Normal Archive");
  model.Select(1);
  Put(dir, "0 first.bin", ImageBytes(Layout::Bin));
  model.RefreshRomList();
  EXPECT_THAT(model.Entries(), ElementsAre("0 first.bin", "A Game.bin", "b game.smd", "c.1"));
  EXPECT_EQ(model.SelectedText(), "b game.smd");
  EXPECT_EQ(model.Texts().txtFiles, "4 file(s)");

  // In type order the halving search cannot find "c.1" at the front.
  model.Select(3);
  model.ChooseFilter(ListFilter::AllFiles);
  model.ChooseSort(SortOrder::Type);
  EXPECT_TRUE(model.Controls()["mnu_showsub(0)"].checked &&
              !model.Controls()["mnu_showsub(1)"].checked);
  EXPECT_TRUE(model.Controls()["mnu_sortsub(1)"].checked &&
              !model.Controls()["mnu_sortsub(0)"].checked);
  EXPECT_THAT(model.Entries(),
              ElementsAre("c.1", "c.2", "0 first.bin", "A Game.bin", "b game.smd", "notes.txt"));
  EXPECT_EQ(model.Selection(), std::nullopt);
  EXPECT_THAT(host.Events(), IsEmpty());
}

TEST_F(MainWindowModelTest, APlaceThatIsGoneLeavesEverythingAsItWas) {
  const std::string dir = Collection();
  ASSERT_TRUE(model.SetDiret(dir));
  model.Select(1);
  const std::string notAZip = Put(dir, "plain.zip", "not an archive at all");
  for (const std::string& bad : {PathToUtf8(PathOf("missing")), notAZip}) {
    EXPECT_FALSE(model.SetDiret(bad));
    EXPECT_EQ(model.Diret(), dir);
    EXPECT_EQ(model.Entries().size(), 3u);
    EXPECT_EQ(model.SelectedText(), "b game.smd");
  }
  EXPECT_THAT(host.Texts(),
              ElementsAre("Directory no longer exists", "Directory no longer exists"));
  EXPECT_EQ(host.Events()[0].icon, MessageIcon::Critical);
}

TEST_F(MainWindowModelTest, TheSelectionIsShownAfreshInEachPlace) {
  const std::string second = MakeDir("second");
  Put(second, "A Game.bin", "no image here");
  ASSERT_TRUE(model.SetDiret(Collection()));
  model.Select(0);
  EXPECT_EQ(model.CurrentFileName(), "A Game.bin");
  EXPECT_EQ(model.Texts().txtTipo, "Super Magic Drive Binary (BIN)");
  ExpectFileMenus(true);

  // The same name in the new place is selected again, and shown although it is the same.
  ASSERT_TRUE(model.SetDiret(second));
  EXPECT_EQ(model.SelectedText(), "A Game.bin");
  EXPECT_EQ(model.Texts().txtTipo, "No rom");

  ASSERT_TRUE(model.SetDiret(MakeDir("empty")));
  EXPECT_EQ(model.Texts().txtFiles, "0 file(s)");
  EXPECT_EQ(model.CurrentFileName(), "");
  ExpectFileMenus(false);
}

TEST_F(MainWindowModelTest, WithNothingSelectedThePanelIsEmptyAndNothingActsOnTheOldEntry) {
  const std::string other = MakeDir("other");
  Put(other, "z.bin", ImageBytes(Layout::Bin));
  const std::string dir = Collection();
  ASSERT_TRUE(model.SetDiret(other));
  ExpectNothingShown();  // a fresh place selects nothing
  model.Select(0);
  ExpectFileMenus(true);
  EXPECT_TRUE(model.Controls()["CmdLaunch"].enabled);

  // A place where the name is not listed.
  ASSERT_TRUE(model.SetDiret(dir));
  EXPECT_EQ(model.Selection(), std::nullopt);
  ExpectNothingShown();
  EXPECT_EQ(model.LaunchRequestForSelection().entryText, "");

  // A sort that loses the selection, and back on an entry everything returns.
  model.Select(2);
  EXPECT_EQ(model.SelectedText(), "c.1");
  EXPECT_NE(model.Texts().txtTipo, "");
  model.ChooseSort(SortOrder::Type);
  ExpectNothingShown();
  model.Select(1);
  EXPECT_EQ(model.SelectedText(), "A Game.bin");
  ExpectFileMenus(true);
  EXPECT_EQ(model.Texts().txtbits, "Size: 2 Mb");
  EXPECT_TRUE(model.Controls()["CmdForce"].enabled);
}

TEST_F(MainWindowModelTest, AFileGoneBehindOurBackIsReportedAndDropsFromTheList) {
  const std::string dir = Collection();
  ASSERT_TRUE(model.SetDiret(dir));
  model.Select(0);
  std::filesystem::remove(PathOf("roms/b game.smd"));
  model.Select(1);
  ASSERT_EQ(host.Texts().size(), 1u);
  EXPECT_THAT(host.Texts()[0], HasSubstr("b game.smd is no longer in " + dir));
  EXPECT_THAT(model.Entries(), ElementsAre("A Game.bin", "c.1"));
  EXPECT_EQ(model.Texts().txtFiles, "2 file(s)");
  ExpectNothingShown();
}

TEST_F(MainWindowModelTest, AZipArchiveListsItsMembersInArchiveOrder) {
  const std::string zip = Put(MakeDir("zips"), "set.zip",
                              Zip({{"z last.bin", ImageBytes(Layout::Bin)},
                                   {"readme.txt", "text"},
                                   {"a first.smd", ImageBytes(Layout::Smd)}}));
  ASSERT_TRUE(model.SetDiret(zip));
  EXPECT_THAT(model.Entries(), ElementsAre("z last.bin", "a first.smd"));
  EXPECT_TRUE(model.IsZipListing());
  EXPECT_EQ(model.Texts().txtarquivo, "ZIP file");
  EXPECT_EQ(model.Texts().txtarquivoColour, TextColour::Blue);
  model.Select(1);  // an archive member is known by name only
  EXPECT_EQ(model.Texts().txtTipo, "No rom");
  ExpectFileMenus(true);
  EXPECT_THAT(host.Events(), IsEmpty());

  const std::string whole = Zip({{"one.bin", "1"}, {"two.bin", "2"}});
  const std::string cut =
      Put(MakeDir("zips"), "cut.zip", whole.substr(0, whole.find("PK\x03\x04", 1) + 10));
  ASSERT_TRUE(model.SetDiret(cut));
  EXPECT_THAT(model.Entries(), ElementsAre("one.bin"));
  EXPECT_THAT(host.Texts(), ElementsAre(HasSubstr("damaged")));
}

TEST_F(MainWindowModelTest, TheOpenCommandsRefuseWhatCannotBeAPlace) {
  const std::string dir = Collection();
  const std::string zip = Put(dir, "set.zip", Zip({{"game.bin", ImageBytes(Layout::Bin)}}));
  host.AnswerFolder("smb://server/roms");
  model.OpenRomDirectory();
  host.AnswerOpenFile(std::nullopt);
  model.OpenZipDirectory();
  // A temporary folder the user chose and then deleted.
  ASSERT_TRUE(settings.SaveSetting(kSectionSettings, "temp", PathToUtf8(PathOf("gone"))));
  for (const std::string& path :
       {std::string("\\\\server\\share\\set.zip"), Put(dir, "fake.zip", "PK no signature"), zip}) {
    host.AnswerOpenFile(path);
    model.OpenZipDirectory();
  }
  EXPECT_THAT(host.Texts(), ElementsAre(std::string(kUncRefused), std::string(kUncRefused),
                                        "The selected file isn't a valid ZIP volume!",
                                        std::string(kTempFolderMissing)));
  EXPECT_EQ(host.Events()[0].title, "Choose a ROM directory");
  EXPECT_EQ(host.Events()[2].title, "Choose a ZIP directory");
  EXPECT_EQ(host.Events()[2].dialog.initialDir, "");  // no place yet
  EXPECT_EQ(model.Diret(), "");
  EXPECT_THAT(History(true), ElementsAre("", "", "", "", ""));

  host.AnswerFolder(dir);
  model.OpenRomDirectory();
  host.AnswerFolder(MakeDir("temp"));
  model.SetTemporaryDirectory();
  host.AnswerOpenFile(zip);
  model.OpenZipDirectory();
  EXPECT_EQ(model.Diret(), zip);
  EXPECT_EQ(host.Events().back().dialog.initialDir, dir);  // the dialog opened in the place
  EXPECT_THAT(model.Entries(), ElementsAre("game.bin"));
  EXPECT_THAT(History(true), ElementsAre(zip, dir, "", "", ""));
  EXPECT_TRUE(model.Controls()["mnu_dirs(1)"].visible && !model.Controls()["mnu_dirs(2)"].visible);
}

TEST_F(MainWindowModelTest, HistoryMovesAChosenEntryToTheTopOnlyWhenItOpens) {
  std::vector<std::string> dirs;
  for (const char* name : {"d1", "d2", "d3", "d4", "d5"}) {
    dirs.push_back(MakeDir(name));
    Put(dirs.back(), std::string(name) + ".bin", ImageBytes(Layout::Bin));
    model.AddDirHistory(dirs.back());
  }
  model.ChooseDirHistory(3);
  EXPECT_EQ(model.Diret(), dirs[1]);
  EXPECT_THAT(History(true), ElementsAre(dirs[1], dirs[4], dirs[3], dirs[2], dirs[0]));

  // A deleted directory: the message, the old list on screen, the history as it was.
  std::filesystem::remove_all(Utf8ToPath(dirs[2]));
  model.ChooseDirHistory(3);
  EXPECT_THAT(host.Texts(), ElementsAre("Directory no longer exists"));
  EXPECT_THAT(model.Entries(), ElementsAre("d2.bin"));
  EXPECT_THAT(History(false), ElementsAre(dirs[1], dirs[4], dirs[3], dirs[2], dirs[0]));
}

}  // namespace
}  // namespace romsteward
