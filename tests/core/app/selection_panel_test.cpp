#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "core/app/main_window_model.h"
#include "core/demo/demo_dat.h"
#include "core/identify/chosen_dat.h"
#include "core/patch/dynamic_patches.h"
#include "support/cart_images.h"
#include "support/place_fixture.h"

namespace romsteward {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class SelectionPanelTest : public test::PlaceTest {
protected:
  // A battery-backed cartridge with different names, a second image, a split set of two
  // volumes and a file that is no image.
  std::string Collection() {
    dir = MakeDir("roms");
    CartridgeSpec spec;
    spec.domesticName = "NIHON NO NAMAE";
    spec.overseasName = "OVERSEAS NAME";
    spec.backupRam = true;
    Put(dir, "game.bin", ImageBytes(Layout::Bin, spec));
    Put(dir, "other.smd", ImageBytes(Layout::Smd));
    test::WriteSplitSet(PathOf("roms/set"), test::MakeCartridge(512 * 1024), 256 * 1024);
    Put(dir, "zz junk.bin", "not a cartridge");
    EXPECT_TRUE(model.SetDiret(dir));
    return dir;
  }
  void SelectName(std::string_view name) {
    const auto& entries = model.Entries();
    const auto it = std::find(entries.begin(), entries.end(), name);
    ASSERT_NE(it, entries.end()) << name;
    model.Select(static_cast<std::size_t>(it - entries.begin()));
  }
  bool On(std::string_view control) const { return model.Controls()[control].enabled; }
  void ExpectOn(std::initializer_list<std::string_view> names, bool enabled) const {
    for (std::string_view name : names)
      EXPECT_EQ(On(name), enabled) << name << " of " << model.SelectedText();
  }

  std::string dir;
  MainWindowModel model{host, settings};
};

TEST_F(SelectionPanelTest, EachLayoutShowsItsTextsAndTools) {
  Collection();
  SelectName("game.bin");
  const WindowTexts& texts = model.Texts();
  EXPECT_EQ(texts.caption, "Genesis Romsteward - OVERSEAS NAME");
  EXPECT_EQ(texts.txtbits, "Size: 2 Mb");
  EXPECT_EQ(texts.txtRAM, "RAM: 65535 bytes");
  EXPECT_THAT(texts.cmbCartLang, ElementsAre("Japan", "USA", "Europe"));
  ExpectOn({"mnu_conv", "mnu_split", "btncrc", "btnheader", "mnu_getcrc", "mnu_ren", "cmbCartLang"},
           true);
  ExpectOn({"mnu_join", "chkIPS", "cmbSave", "cmdDeletaSave"}, false);

  SelectName("set.1");  // the whole set counts, and the set is joined, not converted
  EXPECT_EQ(texts.txtbits, "Size: 4 Mb");
  EXPECT_EQ(texts.txtRAM, "RAM: 0 bytes");
  ExpectOn({"mnu_join", "btncrc", "mnu_tool"}, true);
  ExpectOn({"mnu_split", "mnu_conv"}, false);

  model.ChooseFilter(ListFilter::AllFiles);
  SelectName("set.2");
  EXPECT_EQ(texts.caption, "Genesis Romsteward - Splitted volume");
  EXPECT_EQ(texts.txtRAM, "RAM: ??? bytes");
  EXPECT_THAT(texts.cmbCartLang, ElementsAre("NOT FOUND"));
  ExpectOn({"chkIPS", "mnu_conv", "mnu_tool", "btncrc", "btnheader", "mnu_addfav", "cmbCartLang"},
           false);

  SelectName("zz junk.bin");
  EXPECT_EQ(texts.caption, "Genesis Romsteward - No valid roms selected");
  EXPECT_EQ(texts.txtbits, "Size: ??? MB");
  EXPECT_EQ(texts.txtRAM, "RAM: ??? bytes");
  EXPECT_THAT(texts.cmbSave, ElementsAre("No saved games"));
  EXPECT_THAT(texts.cmbCartLang, ElementsAre("NOT FOUND"));
  ExpectOn({"cmbSave", "cmdDeletaSave", "cmbCartLang", "mnu_split", "mnu_savthiscart",
            "mnu_previmg", "BtnImagem"},
           false);
  // Back on an image, the tools the junk file took away come back.
  SelectName("other.smd");
  ExpectOn({"mnu_conv", "mnu_tool", "btncrc", "mnu_addfav", "mnu_split", "BtnImagem"}, true);
  EXPECT_THAT(host.Events(), IsEmpty());

  // "Window's title" shows at the next selection, not at once.
  SelectName("game.bin");
  model.ChooseTitle(1);
  EXPECT_EQ(texts.caption, "Genesis Romsteward - OVERSEAS NAME");
  SelectName("other.smd");
  SelectName("game.bin");
  EXPECT_EQ(texts.caption, "Genesis Romsteward - NIHON NO NAMAE");
}

TEST_F(SelectionPanelTest, TheChosenDatNamesTheSelectedImageAndABadOneIsToldOnce) {
  Collection();
  SelectName("game.bin");
  EXPECT_EQ(model.Texts().txtDatName, "");  // no DAT chosen
  test::WriteTestFile(PathOf("set.dat"),
                      BuildDemoDat({{"Set (Europe)", test::MakeCartridge(512 * 1024)}}));
  ASSERT_TRUE(SaveChosenDatFile(settings, PathOf("set.dat")).ok());
  SelectName("set.1");
  EXPECT_EQ(model.Texts().txtDatName, "Set (Europe)");
  SelectName("other.smd");
  EXPECT_EQ(model.Texts().txtDatName, "unknown");
  SelectName("zz junk.bin");
  EXPECT_EQ(model.Texts().txtDatName, "");

  ASSERT_TRUE(SaveChosenDatFile(settings, PathOf("gone.dat")).ok());
  SelectName("game.bin");
  SelectName("other.smd");
  ASSERT_EQ(host.Texts().size(), 1u);
  EXPECT_THAT(host.Texts()[0], ::testing::HasSubstr("gone.dat is not a DAT file: no such file"));
  EXPECT_EQ(model.Texts().txtDatName, "");
}

TEST_F(SelectionPanelTest, AReadOnlyImageCanBeLaunchedButNotWritten) {
  Collection();
  PatchValue patch{0x200, "A", "B"};
  ASSERT_TRUE(StorePatch(settings.Store(), "game.bin", "lives", patch).ok());
  ASSERT_TRUE(StorePatch(settings.Store(), "other.smd", "lives", patch).ok());
  test::MakeReadOnly(PathOf("roms/game.bin"));

  SelectName("other.smd");
  EXPECT_TRUE(On("chkIPS"));
  model.Options().activateDynamicPatch = true;
  SelectName("game.bin");
  // Its patches cannot be written: the box is off and unticked, and a launch patches nothing.
  EXPECT_FALSE(model.LaunchRequestForSelection().options.activateDynamicPatch);
  EXPECT_EQ(model.Texts().txtarquivo, "Read-only archive");
  ExpectOn({"mnu_header", "btnheader", "mnu_crc", "btncrc", "mnu_getcrc", "chkIPS", "mnu_patch"},
           false);
  ExpectOn({"CmdLaunch", "mnu_addfav"}, true);
  SelectName("other.smd");
  EXPECT_EQ(model.Texts().txtarquivoColour, TextColour::Normal);
  ExpectOn({"btnheader", "mnu_getcrc", "chkIPS"}, true);
}

TEST_F(SelectionPanelTest, AnArchiveMemberCanOnlyBeLaunchedOrKept) {
  const std::string zip =
      Put(MakeDir("zips"), "set.zip", Zip({{"game.bin", ImageBytes(Layout::Bin)}}));
  ASSERT_TRUE(model.SetDiret(zip));
  model.Select(0);
  const WindowTexts& texts = model.Texts();
  EXPECT_EQ(texts.caption, "Genesis Romsteward -  ZIP directory");
  EXPECT_EQ(texts.txtarquivo, "ZIP file");
  ExpectOn({"mnu_move", "mnu_delete", "btnDeleta", "mnu_ren", "mnu_conv", "mnu_crc", "btncrc",
            "mnu_header", "btnheader", "mnu_join", "mnu_split", "mnu_patch", "mnu_ips2dyn",
            "mnu_tirapatch", "cmbSave", "cmdDeletaSave"},
           false);
  ExpectOn({"CmdLaunch", "mnu_addfav", "mnu_file"}, true);
}

TEST_F(SelectionPanelTest, AFirstVolumeWithoutItsNumberIsRenamedOnlyOnYes) {
  dir = MakeDir("roms");
  test::WriteSplitSet(PathOf("roms/set"), test::MakeCartridge(512 * 1024), 256 * 1024);
  std::filesystem::rename(PathOf("roms/set.1"), PathOf("roms/set.smd"));
  ASSERT_TRUE(model.SetDiret(dir));
  // No: unnumbered, it is measured alone and looks short, which the size check reports.
  host.AnswerYesNo(Answer::No).AnswerQuestionBox(2);
  SelectName("set.smd");
  EXPECT_EQ(host.Texts().at(0), kRenameFirstVolume);
  EXPECT_EQ(host.Texts().size(), 2u);
  EXPECT_THAT(model.Entries(), ElementsAre("set.smd"));

  host.AnswerYesNo(Answer::Yes);
  ASSERT_TRUE(model.SetDiret(dir));  // shows the same selection afresh
  EXPECT_EQ(host.Texts().size(), 3u);
  EXPECT_TRUE(std::filesystem::exists(PathOf("roms/set.1")));
  EXPECT_THAT(model.Entries(), ElementsAre("set.1"));
  EXPECT_EQ(model.CurrentFileName(), "set.1");
  EXPECT_EQ(model.Texts().txtbits, "Size: 4 Mb");
  EXPECT_TRUE(On("mnu_join"));
}

TEST_F(SelectionPanelTest, SavedGamesAreListedAndDeletedOneByOne) {
  Collection();
  const std::string kgen = MakeDir("kgen");
  ASSERT_TRUE(settings.SaveSetting(kSectionSettings, "KGen", JoinDirName(kgen, "kgen.exe")).ok());
  Put(dir, "game.gsv", "state");
  Put(dir, "game.gs1", "snapshot");
  Put(kgen, "game.ksb", "state");
  Put(kgen, "game0.kss", "snapshot");
  SelectName("game.bin");
  EXPECT_THAT(model.Texts().cmbSave,
              ElementsAre("Genecyst State", "Genecyst Snapshots:", " - game.gs1", "KGen State",
                          "KGen Snapshots:", " - game0.kss"));
  ExpectOn({"cmbSave", "cmdDeletaSave"}, true);

  model.DeleteSavedGame(1);  // a heading
  EXPECT_THAT(host.Texts(), ElementsAre("You can't Delete a file type"));
  host.AnswerYesNo(Answer::Yes);
  model.DeleteSavedGame(2);
  EXPECT_FALSE(std::filesystem::exists(PathOf("roms/game.gs1")));
  EXPECT_THAT(model.Texts().cmbSave,
              ElementsAre("Genecyst State", "KGen State", "KGen Snapshots:", " - game0.kss"));
}

TEST_F(SelectionPanelTest, ThePreviewShowsTheCartridgesPictureElseTheProgramsOne) {
  Collection();
  const std::string program = MakeDir("program");
  SelectName("game.bin");
  EXPECT_EQ(model.PreviewPicture(program), std::nullopt);  // the preview is off
  model.TogglePreview();
  EXPECT_EQ(settings.GetSetting(kSectionSettings, "showprev"), "True");
  EXPECT_EQ(model.PreviewPicture(program), std::nullopt);  // no picture anywhere
  const std::string fallback = Put(program, "romsteward.jpg", "jpeg");
  ASSERT_TRUE(settings.SaveSetting(kSectionCartridge, "game.bin.pic", "/gone/cover.jpg").ok());
  EXPECT_EQ(model.PreviewPicture(program), fallback);
  const std::string own = Put(dir, "cover.jpg", "jpeg");
  ASSERT_TRUE(settings.SaveSetting(kSectionCartridge, "game.bin.pic", own).ok());
  EXPECT_EQ(model.PreviewPicture(program), own);
  // A file that is no image has no picture, not even the program's.
  SelectName("zz junk.bin");
  EXPECT_EQ(model.PreviewPicture(program), std::nullopt);
}

TEST_F(SelectionPanelTest, AChosenPictureIsKeptOnlyWhenItDecodes) {
  Collection();
  SelectName("game.bin");
  const std::string good = Put(dir, "good.png", "png");
  const std::string bad = Put(dir, "bad.png", "text");
  const auto decodable = [&](const std::string& path) { return path == good; };
  host.AnswerOpenFile(good);
  model.ChoosePreviewPicture(decodable);
  EXPECT_EQ(settings.GetSetting(kSectionCartridge, "game.bin.pic"), good);
  host.AnswerOpenFile(bad);
  model.ChoosePreviewPicture(decodable);
  EXPECT_THAT(host.Texts(), ElementsAre("Preview picture is in a invalid file format!"));
  EXPECT_EQ(settings.GetSetting(kSectionCartridge, "game.bin.pic"), good);
  host.AnswerOpenFile(std::nullopt);  // cancelled: nothing changes
  model.ChoosePreviewPicture(decodable);
  EXPECT_TRUE(model.HasOwnPreviewPicture());
  model.ClearPreviewPicture();
  EXPECT_FALSE(model.HasOwnPreviewPicture());
  model.ClearPreviewPicture();  // nothing left to forget: no message
  EXPECT_THAT(host.Texts(), ElementsAre("Preview picture is in a invalid file format!"));
}

}  // namespace
}  // namespace romsteward
