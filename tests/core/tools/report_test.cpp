#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "core/cart/header.h"
#include "core/launch/run_owner.h"
#include "core/launch/zip_archive.h"
#include "core/tools/report_form.h"
#include "core/tools/report_generator.h"
#include "core/tools/report_template.h"
#include "support/place_fixture.h"

namespace romsteward {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

class ReportTest : public test::PlaceTest {
protected:
  // Images of 2, 4 and 2 Mbit and a file that is no image, as an "All files" list.
  RomListSource Collection() {
    const std::string dir = MakeDir("roms");
    CartridgeSpec big;
    big.size = 512 * 1024;
    big.domesticName = "KONNICHIWA";
    big.overseasName = "HELLO";
    Put(dir, "a.bin", ImageBytes(Layout::Bin));
    Put(dir, "b.smd", ImageBytes(Layout::Smd, big));
    Put(dir, "notes.txt", "no image");
    Put(dir, "c.md", ImageBytes(Layout::Md));
    return {dir, false, {"a.bin", "b.smd", "notes.txt", "c.md"}};
  }
  // The create button with `text`; what the output file then holds.
  std::string Create(std::string_view text, const RomListSource& source) {
    form.SetText(std::string(text));
    host.AnswerSaveFile(PathToUtf8(PathOf("romlist.txt")));
    form.CreateList(host, settings, source);
    std::error_code error;
    return std::filesystem::exists(PathOf("romlist.txt"), error)
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
  EXPECT_EQ(dialog.dialog.initialDir, PathToUtf8(PathOf("roms")));
}

TEST_F(ReportTest, CountsAndTotalsRunInTheBlockAndAreFinalInTheFooter) {
  EXPECT_EQ(Create("[%roms% %size% %file%]-BOL-<%roms% %romsize% %size%>-EOL-[%roms% %size%]"
                   "%countries%",
                   Collection()),
            "[0 0.00 Meg a.bin]<1 2 Meg 2.00 Meg><2 4 Meg 6.00 Meg><3 2 Meg 8.00 Meg>"
            "[3 8.00 Meg]Japan,USA,Europe");
  // Sizes are only read when the template asks for countries.
  std::filesystem::remove(PathOf("romlist.txt"));
  EXPECT_EQ(Create("-BOL-<%romsize%|%size%>-EOL-%size%", Collection()),
            "<|0.00 Meg><|0.00 Meg><|0.00 Meg>0.00 Meg");
}

TEST_F(ReportTest, TheDefaultTemplateReportsEveryField) {
  CartridgeSpec spec;
  spec.backupRam = true;
  std::string image = ImageBytes(Layout::Bin, spec);
  image.replace(0x18E, 2, "\x0A\x5F");  // the checksum shown with its leading zero
  const std::string dir = MakeDir("one");
  Put(dir, "game.bin", image);
  EXPECT_EQ(Create(kDefaultReportTemplate, {dir, false, {"game.bin"}}),
            "     MY ROM LIST\r\n\r\n\r\n\r\nFILE: game.bin\r\n"
            "FILE TYPE: Super Magic Drive Binary (BIN)\r\n"
            "GAME (overseas): DEMO CARTRIDGE   SIZE: 2 Meg\r\n"
            "GAME (domestic): DEMO CARTRIDGE   RAM: Yes\r\n"
            "COPYRIGHT: " +
                DecodeMakerDate(spec.makerDate) +
                "\r\n"
                "DEVELOPED FOR: Japan,USA,Europe\r\nSUPPORTS: Joypad\r\nCHECKSUM: 0A5F\r\n"
                "ROMS SO FAR: 1\r\nPARTIAL TOTAL SIZE: 2.00 Meg\r\n\r\n\r\n" +
                std::string(56, '-') + "\r\nNUMBER OF ROMS:  1\r\nTOTAL SIZE: 2.00 Meg\r\n");
}

TEST_F(ReportTest, ErrorsStopWithAMessageAndNoOutput) {
  RomListSource source = Collection();
  for (const char* text : {"no begin", "-BOL- but no end"}) {
    form.SetText(text);
    form.CreateList(host, settings, source);
  }
  EXPECT_THAT(host.EventsOf(test::PromptKind::SaveFile), IsEmpty());
  source.entries.push_back("vanished.bin");
  EXPECT_EQ(Create("-BOL-%file%-EOL-", source), "");
  EXPECT_THAT(host.Texts(), ElementsAre("Expected: Begin of list", "Expected: End of list",
                                        HasSubstr("vanished.bin")));
}

TEST_F(ReportTest, TheOldRomNameOptionWarnsAndStillWorks) {
  const RomListSource source{Collection().place, false, {"b.smd", "%file%.bin"}};
  Put(source.place, "%file%.bin", ImageBytes(Layout::Bin));
  form.ChooseRomName(host, RomNameChoice::Domestic);
  EXPECT_THAT(host.Texts(), ElementsAre(std::string(kRomNameWarning)));
  // A name holding a placeholder goes in as it stands.
  EXPECT_EQ(Create("-BOL-%romname% %file%;-EOL-", source),
            "KONNICHIWA b.smd;DEMO CARTRIDGE %file%.bin;");
  form.ChooseRomName(host, RomNameChoice::Overseas);
  // Written over the earlier list without emptying it first, so its tail stays.
  EXPECT_EQ(Create("-BOL-%romname%;-EOL-", {source.place, false, {"b.smd"}}),
            "HELLO;HIWA b.smd;DEMO CARTRIDGE %file%.bin;");
}

TEST_F(ReportTest, ArchiveMembersAreExtractedAndDeletedAfterwards) {
  const std::string zip = Put(MakeDir("zips"), "set.zip",
                              Zip({{"one.bin", ImageBytes(Layout::Bin)},
                                   {"two.smd", ImageBytes(Layout::Smd)},
                                   {"readme.txt", "no image"}}));
  const RomListSource source{zip, true, {"one.bin", "two.smd", "readme.txt"}};
  // A temporary folder the user chose and then deleted.
  ASSERT_TRUE(settings.SaveSetting(kSectionSettings, "temp", PathToUtf8(PathOf("gone"))).ok());
  form.CreateList(host, settings, source);
  EXPECT_THAT(host.Texts(), ElementsAre(std::string(kTempFolderMissing)));

  // A file of the user's own in the temporary folder is neither replaced nor deleted.
  const std::string temp = MakeDir("temp");
  Put(temp, "one.bin", "the user's own file");
  ASSERT_TRUE(settings.SaveSetting(kSectionSettings, "temp", temp).ok());
  EXPECT_EQ(Create("-BOL-%file% -EOL-", source), "one.bin two.smd ");
  // The list of an archive goes beside the archive.
  EXPECT_EQ(host.EventsOf(test::PromptKind::SaveFile).at(0).dialog.initialDir,
            PathToUtf8(PathOf("zips")));
  EXPECT_EQ(test::ReadTestFile(PathOf("temp/one.bin")), "the user's own file");
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(PathOf("temp")), {}), 1);
}

TEST_F(ReportTest, AnArchiveIsReadInOnePassAndFoldersOfKilledReportsGo) {
  // Many members, listed in the reverse of the archive's order: the report keeps the list's.
  std::vector<std::pair<std::string, std::string>> members{{"one.bin", ImageBytes(Layout::Bin)}};
  for (int i = 0; i < 1500; ++i)
    members.emplace_back("note" + std::to_string(i) + ".txt", "no image");
  members.emplace_back("two.smd", ImageBytes(Layout::Smd));
  RomListSource source{Put(MakeDir("zips"), "big.zip", Zip(members)), true, {}};
  for (auto it = members.rbegin(); it != members.rend(); ++it)
    source.entries.push_back(it->first);

  // Left by reports that were killed, by one still running, by an older version, the user's.
  const std::string temp = MakeDir("temp");
  const auto self = IdentifyProcess(getpid());
  ASSERT_TRUE(self.has_value());
  const std::string running =
      fmt::format("romsteward-report-{}-{}-0badf00d", self->pid, self->startTicks);
  for (const std::string& name :
       {fmt::format("romsteward-report-{}-{}-00000001", self->pid, self->startTicks + 1),
        std::string("romsteward-report-999999999-5-00000002"), running,
        std::string("romsteward-report-0badf00d")})
    std::filesystem::create_directory(PathOf("temp") / name);
  test::WriteTestFile(PathOf("temp/romsteward-report-999999999-5-00000002/one.bin"), "left");
  Put(temp, "romsteward-report-1-1-mine", "the user's own file");

  const auto opens = ArchiveOpenCount();
  auto report =
      BuildRomListReport("-BOL-%file% -EOL-", source, RomNameChoice::Overseas, temp, host);
  ASSERT_TRUE(report.ok()) << report.error().message;
  EXPECT_EQ(*report, "two.smd one.bin ");
  EXPECT_EQ(ArchiveOpenCount() - opens, 1u);
  std::vector<std::string> left;
  for (const auto& item : std::filesystem::directory_iterator(PathOf("temp")))
    left.push_back(PathToUtf8(item.path().filename()));
  EXPECT_THAT(left, UnorderedElementsAre(running, "romsteward-report-0badf00d",
                                         "romsteward-report-1-1-mine"));

  // A cancel stops the report and takes its folder with it, without a word in the window.
  host.CancelProgressAt(50);
  EXPECT_EQ(BuildRomListReport("-BOL-%file% -EOL-", source, RomNameChoice::Overseas, temp, host)
                .error()
                .message,
            kReportCancelled);
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(PathOf("temp")), {}), 3);
  ASSERT_TRUE(settings.SaveSetting(kSectionSettings, "temp", temp).ok());
  const std::size_t shown = host.Texts().size();
  EXPECT_EQ(Create("-BOL-%file% -EOL-", source), "");
  EXPECT_EQ(host.Texts().size(), shown);
}

TEST_F(ReportTest, ScriptsAreSavedOverOldFilesAndOpenedWhole) {
  const std::string script = Put(MakeDir("s"), "list.rsc", "an old and much longer script");
  form.SetText("new");
  host.AnswerSaveFile(script);
  form.SaveScript(host);
  EXPECT_EQ(test::ReadTestFile(Utf8ToPath(script)), "newold and much longer script");

  host.AnswerOpenFile(Put(MakeDir("s"), "other.rsc", "-BOL-%file%\r\n-EOL-\r\n"));
  form.OpenScript(host);
  host.AnswerOpenFile(PathToUtf8(PathOf("missing.rsc")));
  form.OpenScript(host);
  EXPECT_EQ(form.Text(), "-BOL-%file%\r\n-EOL-\r\n");
  EXPECT_THAT(host.Texts(), ElementsAre(HasSubstr("missing.rsc")));
  for (const test::HostEvent& dialog : host.Events())
    EXPECT_TRUE(dialog.kind == test::PromptKind::Message ||
                dialog.title == "Save Romsteward's script")
        << dialog.title;
}

std::string Expand(std::string_view text, std::string file, std::string romType = "T",
                   std::int64_t count = 0, std::int64_t total = 0) {
  ReportRecord record;
  record[Placeholder::File] = std::move(file);
  record[Placeholder::RomType] = std::move(romType);
  return ExpandableText(text).Expand(record, count, total);
}

TEST(SplitTemplate, NeedsBothMarkersInOrder) {
  EXPECT_EQ(SplitTemplate("-EOL- only").error().message, "Expected: Begin of list");
  // An end marker before the first begin marker does not close the list.
  EXPECT_EQ(SplitTemplate("-EOL- x -BOL- y").error().message, "Expected: End of list");
  auto pieces = SplitTemplate("head-BOL-block-EOL-mid-BOL-x-EOL-tail");
  EXPECT_EQ(pieces->header + "|" + pieces->block + "|" + pieces->footer,
            "head|block|mid-BOL-x-EOL-tail");
}

TEST(ExpandableText, ReplacesEveryCaseExactOccurrenceOnceFollowingTheOrder) {
  EXPECT_EQ(Expand("%file% and %file%, %FILE% %File% %file", "g.bin"),
            "g.bin and g.bin, %FILE% %File% %file");
  EXPECT_EQ(Expand("%%file%% %roms% of %size%", "g", "T", 1234, 1234567),
            "%g% 1234 of 1,234,567.00 Meg");
  EXPECT_EQ(FormatStandard(999), "999.00");
  EXPECT_EQ(FormatStandard(-1000), "-1,000.00");
  // Expanding values in turn would never end on the first one.
  EXPECT_EQ(Expand("[%file%]", "%file%"), "[%file%]");
  EXPECT_EQ(Expand("[%file%]", "x%romtype%y"), "[x%romtype%y]");
  // "%romtype%" comes before "%size%" in the order, so it takes the shared "%"; "%file%"
  // comes before "%roms%"; later passes take what earlier ones left free.
  EXPECT_EQ(Expand("%size%romtype%", "f", "T", 0, 5), "%sizeT");
  EXPECT_EQ(Expand("%roms%file%", "f"), "%romsf");
  EXPECT_EQ(Expand("%file%file%file%", "F"), "FfileF");
}

}  // namespace
}  // namespace romsteward
