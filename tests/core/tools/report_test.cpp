#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/cart/header.h"
#include "core/common/strings.h"
#include "core/launch/zip_archive.h"
#include "core/tools/report_form.h"
#include "support/place_fixture.h"

namespace romsteward {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class ReportTest : public test::PlaceTest {
protected:
  // Three images of 2, 4 and 2 Mbit and a file that is no image, as an "All files" list.
  RomListSource Collection() {
    const std::string dir = MakeDir("roms");
    CartridgeSpec big;
    big.size = 512 * 1024;
    big.domesticName = "KONNICHIWA";
    big.overseasName = "HELLO";
    WriteImage(dir, "a.bin", Layout::Bin);
    WriteImage(dir, "b.smd", Layout::Smd, big);
    test::WriteTestFile(Utf8ToPath(JoinDirName(dir, "notes.txt")), "no image");
    WriteImage(dir, "c.md", Layout::Md);
    return {dir, false, {"a.bin", "b.smd", "notes.txt", "c.md"}};
  }
  // Runs the create button with `text` and returns what was written.
  std::string Create(std::string_view text, const RomListSource& source) {
    form.SetText(std::string(text));
    const std::string output = PathToUtf8(PathOf("romlist.txt"));
    host.AnswerSaveFile(output);
    form.CreateList(host, Settings(), source);
    return std::filesystem::exists(PathOf("romlist.txt"))
               ? test::ReadTestFile(PathOf("romlist.txt"))
               : std::string();
  }

  RomListForm form;
};

TEST_F(ReportTest, ABlockOfTheFileNameGivesOneNamePerLine) {
  EXPECT_EQ(Create("-BOL-%file%\r\n-EOL-", Collection()), "a.bin\r\nb.smd\r\nc.md\r\n");
  EXPECT_THAT(host.Texts(), ElementsAre("Rom list created!"));
  const test::HostEvent dialog = host.EventsOf(test::PromptKind::SaveFile).at(0);
  EXPECT_EQ(dialog.title, "Select list file");
  EXPECT_EQ(dialog.dialog.initialName, "romlist.txt");
  ASSERT_EQ(dialog.dialog.filters.size(), 1u);
  EXPECT_EQ(dialog.dialog.filters[0].patterns, "*.txt;*.html");
  EXPECT_EQ(host.ProgressReports().back(), 100);
}

TEST_F(ReportTest, CountsAndTotalsRunInTheBlockAndAreFinalInTheFooter) {
  EXPECT_EQ(Create("[%roms% %size% %file%]-BOL-<%roms% %romsize% %size%>-EOL-[%roms% %size%]"
                   "%countries%",
                   Collection()),
            "[0 0.00 Meg a.bin]<1 2 Meg 2.00 Meg><2 4 Meg 6.00 Meg><3 2 Meg 8.00 Meg>"
            "[3 8.00 Meg]Japan,USA,Europe");
}

TEST_F(ReportTest, SizesAreOnlyReadWhenTheTemplateAsksForCountries) {
  EXPECT_EQ(Create("-BOL-<%romsize%|%size%>-EOL-%size%", Collection()),
            "<|0.00 Meg><|0.00 Meg><|0.00 Meg>0.00 Meg");
}

TEST_F(ReportTest, TheDefaultTemplateReportsEveryField) {
  const std::string dir = MakeDir("one");
  CartridgeSpec spec;
  spec.backupRam = true;
  std::string image = ImageBytes(Layout::Bin, spec);
  image[0x18E] = 0x0A;  // the checksum shown with its leading zero
  image[0x18F] = 0x5F;
  test::WriteTestFile(Utf8ToPath(JoinDirName(dir, "game.bin")), image);

  const std::string maker = DecodeMakerDate(spec.makerDate);
  EXPECT_EQ(Create(kDefaultReportTemplate, {dir, false, {"game.bin"}}),
            "     MY ROM LIST\r\n\r\n"
            "\r\n\r\n"
            "FILE: game.bin\r\n"
            "FILE TYPE: Super Magic Drive Binary (BIN)\r\n"
            "GAME (overseas): DEMO CARTRIDGE   SIZE: 2 Meg\r\n"
            "GAME (domestic): DEMO CARTRIDGE   RAM: Yes\r\n"
            "COPYRIGHT: " +
                maker +
                "\r\n"
                "DEVELOPED FOR: Japan,USA,Europe\r\n"
                "SUPPORTS: Joypad\r\n"
                "CHECKSUM: 0A5F\r\n"
                "ROMS SO FAR: 1\r\n"
                "PARTIAL TOTAL SIZE: 2.00 Meg\r\n"
                "\r\n\r\n" +
                std::string(56, '-') +
                "\r\n"
                "NUMBER OF ROMS:  1\r\n"
                "TOTAL SIZE: 2.00 Meg\r\n");
}

TEST_F(ReportTest, TemplateErrorsStopBeforeAnyFileIsTouched) {
  const RomListSource source = Collection();
  form.SetText("no begin");
  form.CreateList(host, Settings(), source);
  form.SetText("-BOL- but no end");
  form.CreateList(host, Settings(), source);
  EXPECT_THAT(host.Texts(), ElementsAre("Expected: Begin of list", "Expected: End of list"));
  EXPECT_THAT(host.EventsOf(test::PromptKind::SaveFile), IsEmpty());

  // A cancelled output dialog ends quietly.
  form.SetText("-BOL-%file%-EOL-");
  host.AnswerSaveFile(std::nullopt);
  form.CreateList(host, Settings(), source);
  EXPECT_EQ(host.Texts().size(), 2u);
}

TEST_F(ReportTest, AnUnreadableImageEndsTheReportWithoutOutput) {
  RomListSource source = Collection();
  source.entries.push_back("vanished.bin");
  EXPECT_EQ(Create("-BOL-%file%-EOL-", source), "");
  ASSERT_EQ(host.Texts().size(), 1u);
  EXPECT_THAT(host.Texts()[0], HasSubstr("vanished.bin"));
}

TEST_F(ReportTest, TheOldRomNameOptionWarnsAndStillWorks) {
  const RomListSource source = Collection();
  form.ChooseRomName(host, RomNameChoice::Domestic);
  EXPECT_THAT(host.Texts(), ElementsAre(std::string(kRomNameWarning)));
  EXPECT_EQ(Create("-BOL-%romname%;-EOL-", {source.place, false, {"b.smd"}}), "KONNICHIWA;");
  form.ChooseRomName(host, RomNameChoice::Overseas);
  // The list is written over the earlier one without emptying it, so its tail stays.
  EXPECT_EQ(Create("-BOL-%romname%;-EOL-", {source.place, false, {"b.smd"}}), "HELLO;HIWA;");
}

TEST_F(ReportTest, ANameHoldingAPlaceholderIsPutInAsItIs) {
  const std::string dir = MakeDir("odd");
  WriteImage(dir, "%file%.bin", Layout::Bin);
  EXPECT_EQ(Create("-BOL-[%file%]-EOL-", {dir, false, {"%file%.bin"}}), "[%file%.bin]");
}

TEST_F(ReportTest, ArchiveMembersAreExtractedAndDeletedAfterwards) {
  const std::string dir = MakeDir("zips");
  const std::string zip = WriteZip(dir, "set.zip",
                                   {{"one.bin", ImageBytes(Layout::Bin)},
                                    {"two.smd", ImageBytes(Layout::Smd)},
                                    {"readme.txt", "no image"}});
  const RomListSource source{zip, true, {"one.bin", "two.smd", "readme.txt"}};

  form.SetText("-BOL-%file% -EOL-");
  form.CreateList(host, Settings(), source);
  EXPECT_THAT(host.Texts(), ElementsAre(std::string(kTempFolderMissing)));

  // A file of the user's own in the temporary folder is neither replaced nor deleted.
  const std::string temp = MakeDir("temp");
  test::WriteTestFile(Utf8ToPath(JoinDirName(temp, "one.bin")), "the user's own file");
  ASSERT_TRUE(Settings().SaveSetting(kSectionSettings, "temp", temp).ok());
  EXPECT_EQ(Create("-BOL-%file% -EOL-", source), "one.bin two.smd ");
  EXPECT_EQ(test::ReadTestFile(Utf8ToPath(JoinDirName(temp, "one.bin"))), "the user's own file");
  std::vector<std::string> left;
  for (const auto& entry : std::filesystem::directory_iterator(Utf8ToPath(temp)))
    left.push_back(PathToUtf8(entry.path().filename()));
  EXPECT_THAT(left, ElementsAre("one.bin"));
}

TEST_F(ReportTest, ScriptsAreSavedOverOldFilesAndOpenedWhole) {
  const std::string script = PathToUtf8(PathOf("list.rsc"));
  test::WriteTestFile(PathOf("list.rsc"), "an old and much longer script text");
  form.SetText("new");
  host.AnswerSaveFile(script);
  form.SaveScript(host);
  // Written over the start without emptying the file first, as scripts always were.
  EXPECT_EQ(test::ReadTestFile(PathOf("list.rsc")), "newold and much longer script text");

  test::WriteTestFile(PathOf("other.rsc"), "-BOL-%file%\r\n-EOL-\r\n");
  host.AnswerOpenFile(PathToUtf8(PathOf("other.rsc")));
  form.OpenScript(host);
  EXPECT_EQ(form.Text(), "-BOL-%file%\r\n-EOL-\r\n");

  host.AnswerOpenFile(PathToUtf8(PathOf("missing.rsc")));
  form.OpenScript(host);
  EXPECT_EQ(form.Text(), "-BOL-%file%\r\n-EOL-\r\n");
  EXPECT_THAT(host.Texts(), ElementsAre(HasSubstr("missing.rsc")));

  const auto save = host.EventsOf(test::PromptKind::SaveFile).at(0);
  const auto open = host.EventsOf(test::PromptKind::OpenFile).at(0);
  EXPECT_EQ(save.title, "Save Romsteward's script");
  EXPECT_EQ(open.title, "Save Romsteward's script");
  EXPECT_EQ(save.dialog.initialName, "*.rsc");
  EXPECT_EQ(open.dialog.filters.at(0).description, "Romsteward Scripts");
}

}  // namespace
}  // namespace romsteward
