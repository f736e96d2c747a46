#include "core/tools/report_template.h"

#include <gtest/gtest.h>

namespace romsteward {
namespace {

ReportRecord Record(std::string file, std::string romType = "T") {
  ReportRecord record;
  record[Placeholder::File] = std::move(file);
  record[Placeholder::RomType] = std::move(romType);
  return record;
}

std::string Expand(std::string_view text, const ReportRecord& record, std::int64_t count = 0,
                   std::int64_t total = 0) {
  return ExpandableText(text).Expand(record, count, total);
}

TEST(SplitTemplate, NeedsBothMarkersInOrder) {
  EXPECT_EQ(SplitTemplate("no markers").error().message, "Expected: Begin of list");
  EXPECT_EQ(SplitTemplate("-EOL- only").error().message, "Expected: Begin of list");
  EXPECT_EQ(SplitTemplate("-BOL- only").error().message, "Expected: End of list");
  // An end marker before the first begin marker does not close the list.
  EXPECT_EQ(SplitTemplate("-EOL- x -BOL- y").error().message, "Expected: End of list");

  auto pieces = SplitTemplate("head-BOL-block-EOL-mid-BOL-x-EOL-tail");
  ASSERT_TRUE(pieces.ok());
  EXPECT_EQ(pieces->header, "head");
  EXPECT_EQ(pieces->block, "block");
  EXPECT_EQ(pieces->footer, "mid-BOL-x-EOL-tail");
}

TEST(ExpandableText, ReplacesEveryOccurrenceWithRegardToCase) {
  ReportRecord record = Record("game.bin");
  record[Placeholder::Crc] = "0A5F";
  EXPECT_EQ(Expand("%file% and %file%, %crc%", record), "game.bin and game.bin, 0A5F");
  EXPECT_EQ(Expand("%FILE% %File% %file", record), "%FILE% %File% %file");
  EXPECT_EQ(Expand("%roms% of %size%", record, 1234, 1234567), "1234 of 1,234,567.00 Meg");
  EXPECT_EQ(Expand("", record), "");
  EXPECT_EQ(Expand("%%file%%", record), "%game.bin%");
}

TEST(ExpandableText, ValuesAreNeverExpandedAgain) {
  // Expanding values in turn would never end on the first one.
  EXPECT_EQ(Expand("[%file%]", Record("%file%")), "[%file%]");
  EXPECT_EQ(Expand("[%file%]", Record("x%romtype%y", "T")), "[x%romtype%y]");
}

TEST(ExpandableText, OverlappingPlaceholdersResolveInTheFixedOrder) {
  // "%romtype%" comes before "%size%" in the order, so it takes the shared "%".
  EXPECT_EQ(Expand("%size%romtype%", Record("f", "T"), 0, 5), "%sizeT");
  // "%file%" comes before "%roms%": the "%roms" left over stays as text.
  EXPECT_EQ(Expand("%roms%file%", Record("f")), "%romsf");
  // Later passes take the further occurrences, overlapping ones as they come free.
  EXPECT_EQ(Expand("%file%file%file%", Record("F")), "FfileF");
}

TEST(FormatStandard, GroupsThousandsAndKeepsTwoDecimals) {
  EXPECT_EQ(FormatStandard(0), "0.00");
  EXPECT_EQ(FormatStandard(999), "999.00");
  EXPECT_EQ(FormatStandard(1000), "1,000.00");
  EXPECT_EQ(FormatStandard(1234567), "1,234,567.00");
  EXPECT_EQ(FormatStandard(-1234), "-1,234.00");
}

}  // namespace
}  // namespace romsteward
