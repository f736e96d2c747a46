#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "cli/tool.h"
#include "core/common/strings.h"
#include "core/demo/demo_collection.h"
#include "core/settings/app_settings.h"
#include "core/settings/registry_store.h"
#include "support/temp_dir.h"

namespace romsteward {
namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

class ListReportCommandTest : public test::TempDirTest {
protected:
  ListReportCommandTest() { EXPECT_TRUE(WriteDemoCollection(PathOf("demo")).ok()); }

  int Run(std::vector<std::string> args) {
    out.str({});
    err.str({});
    args.insert(args.begin(), {"--settings", Path("settings.sqlite3")});
    return cli::RunTool(args, out, err);
  }
  std::string Path(std::string_view name) const { return PathToUtf8(PathOf(name)); }

  std::ostringstream out;
  std::ostringstream err;
};

TEST_F(ListReportCommandTest, ListPrintsTheListAsTheWindowShowsIt) {
  ASSERT_EQ(Run({"list", Path("demo")}), 0) << err.str();
  EXPECT_EQ(out.str(),
            "Broken Lantern (E).bin\nCoral Archive (B).bin\nHarbor Lights (U).smd\n"
            "Iron Meadow.1\nQuiet Orbit (J).md\nStar Courier (W).bin\n6 file(s)\n");
  EXPECT_EQ(err.str(), "");

  ASSERT_EQ(Run({"list", "--all", "--sort", "type", Path("demo")}), 0);
  EXPECT_THAT(out.str(), StartsWith("Iron Meadow.1\nIron Meadow.2\nIron Meadow.3\n"));
  EXPECT_THAT(out.str(), HasSubstr("notes.txt\nPocket Pair.zip\n10 file(s)\n"));

  ASSERT_EQ(Run({"list", Path("demo/Pocket Pair.zip")}), 0);
  EXPECT_EQ(out.str(), "Tin Soldier (U).bin\nVelvet Comet (J).smd\n2 file(s)\n");
}

TEST_F(ListReportCommandTest, ListRefusesWhatIsNoPlace) {
  EXPECT_EQ(Run({"list", Path("missing")}), cli::kExitError);
  EXPECT_THAT(err.str(), HasSubstr("Directory no longer exists"));
  EXPECT_EQ(Run({"list", Path("demo/notes.txt")}), cli::kExitError);
  EXPECT_EQ(Run({"list", "\\\\server\\roms"}), cli::kExitError);
  EXPECT_THAT(err.str(), HasSubstr("UNC pathnames"));
  EXPECT_NE(Run({"list", "--sort", "size", Path("demo")}), 0);
  EXPECT_THAT(out.str(), IsEmpty());
}

TEST_F(ListReportCommandTest, ReportWritesTheDefaultTemplate) {
  ASSERT_EQ(Run({"report", Path("demo")}), 0) << err.str();
  EXPECT_THAT(out.str(), StartsWith("     MY ROM LIST\r\n"));
  EXPECT_THAT(out.str(), HasSubstr("FILE: Iron Meadow.1\r\n"));
  EXPECT_THAT(out.str(), HasSubstr("NUMBER OF ROMS:  6\r\n"));

  ASSERT_EQ(Run({"report", "-o", Path("list.txt"), Path("demo")}), 0) << err.str();
  EXPECT_THAT(test::ReadTestFile(PathOf("list.txt")), HasSubstr("NUMBER OF ROMS:  6\r\n"));
  EXPECT_THAT(err.str(), HasSubstr("Rom list created!"));
}

TEST_F(ListReportCommandTest, ReportReadsArchiveMembersAndLeavesNothingBehind) {
  {
    auto store = RegistryStore::Open(PathOf("settings.sqlite3"));
    ASSERT_TRUE(store.ok());
    AppSettings settings(**store);
    std::filesystem::create_directory(PathOf("temp"));
    ASSERT_TRUE(settings.SaveSetting(kSectionSettings, "temp", Path("temp")).ok());
  }
  test::WriteTestFile(PathOf("names.rsc"), "-BOL-%file%;%countries%\n-EOL-");
  ASSERT_EQ(Run({"report", "--template", Path("names.rsc"), Path("demo/Pocket Pair.zip")}), 0)
      << err.str();
  EXPECT_EQ(out.str(), "Tin Soldier (U).bin;USA\nVelvet Comet (J).smd;Japan\n");
  EXPECT_TRUE(std::filesystem::is_empty(PathOf("temp")));
}

TEST_F(ListReportCommandTest, ReportTemplateErrorsWriteNothing) {
  test::WriteTestFile(PathOf("broken.rsc"), "-BOL-%file%");
  EXPECT_EQ(Run({"report", "--template", Path("broken.rsc"), "-o", Path("out.txt"), Path("demo")}),
            cli::kExitError);
  EXPECT_THAT(err.str(), HasSubstr("Expected: End of list"));
  EXPECT_FALSE(std::filesystem::exists(PathOf("out.txt")));

  EXPECT_EQ(Run({"report", "--template", Path("none.rsc"), Path("demo")}), cli::kExitError);
  EXPECT_THAT(err.str(), HasSubstr("none.rsc"));
}

}  // namespace
}  // namespace romsteward
