#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "cli/tool_runner.h"
#include "core/settings/app_settings.h"
#include "core/settings/registry_store.h"

namespace romsteward {
namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

using ListReportCommandTest = test::DemoToolTest;

TEST_F(ListReportCommandTest, ListPrintsTheListAsTheWindowShowsIt) {
  EXPECT_EQ(Run({"list", Path("demo")}).out,
            "Broken Lantern (E).bin\nCoral Archive (B).bin\nHarbor Lights (U).smd\n"
            "Iron Meadow.1\nQuiet Orbit (J).md\nStar Courier (W).bin\n6 file(s)\n");
  const auto all = Run({"list", "--all", "--sort", "type", Path("demo")});
  EXPECT_THAT(all.out, StartsWith("Iron Meadow.1\nIron Meadow.2\nIron Meadow.3\n"));
  EXPECT_THAT(all.out, HasSubstr("notes.txt\nPocket Pair.zip\n11 file(s)\n"));
  EXPECT_EQ(Run({"list", Path("demo/Pocket Pair.zip")}).out,
            "Tin Soldier (U).bin\nVelvet Comet (J).smd\n2 file(s)\n");

  for (const std::string& bad :
       {Path("missing"), Path("demo/notes.txt"), std::string("\\\\s\\r")}) {
    const auto refused = Run({"list", bad});
    EXPECT_EQ(refused.status, cli::kExitError);
    EXPECT_EQ(refused.out, "");
  }
}

TEST_F(ListReportCommandTest, ReportWritesAListOfDirectoriesAndArchives) {
  const auto shown = Run({"report", Path("demo")});
  EXPECT_THAT(shown.out, StartsWith("     MY ROM LIST\r\n"));
  EXPECT_THAT(shown.out, HasSubstr("NUMBER OF ROMS:  6\r\n"));
  const auto written = Run({"report", "-o", Path("list.txt"), Path("demo")});
  EXPECT_EQ(test::ReadTestFile(PathOf("list.txt")), shown.out);
  EXPECT_THAT(written.err, HasSubstr("Rom list created!"));

  {
    auto store = RegistryStore::Open(PathOf("settings.sqlite3"));
    std::filesystem::create_directory(PathOf("temp"));
    ASSERT_TRUE(AppSettings(**store).SaveSetting(kSectionSettings, "temp", Path("temp")).ok());
  }
  test::WriteTestFile(PathOf("names.rsc"), "-BOL-%file%;%countries%\n-EOL-");
  EXPECT_EQ(Run({"report", "--template", Path("names.rsc"), Path("demo/Pocket Pair.zip")}).out,
            "Tin Soldier (U).bin;USA\nVelvet Comet (J).smd;Japan\n");
  EXPECT_TRUE(std::filesystem::is_empty(PathOf("temp")));
}

TEST_F(ListReportCommandTest, ReportTemplateErrorsWriteNothing) {
  test::WriteTestFile(PathOf("broken.rsc"), "-BOL-%file%");
  const auto broken =
      Run({"report", "--template", Path("broken.rsc"), "-o", Path("out.txt"), Path("demo")});
  EXPECT_EQ(broken.status, cli::kExitError);
  EXPECT_THAT(broken.err, HasSubstr("Expected: End of list"));
  EXPECT_FALSE(std::filesystem::exists(PathOf("out.txt")));
  EXPECT_THAT(Run({"report", "--template", Path("none.rsc"), Path("demo")}).err,
              HasSubstr("none.rsc"));
}

}  // namespace
}  // namespace romsteward
