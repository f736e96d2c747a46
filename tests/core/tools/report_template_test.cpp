#include "core/tools/report_template.h"

#include <gtest/gtest.h>

namespace romsteward {
namespace {

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
