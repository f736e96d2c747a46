// identify, and the --json form of every reporting command, parsed as a script would.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "cli/tool_runner.h"
#include "core/demo/demo_dat.h"

namespace romsteward {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using Json = nlohmann::ordered_json;

class IdentifyJsonCommand : public test::DemoToolTest {
protected:
  std::string Dat() const { return Path("demo/" + std::string(kDemoDatName)); }
  static std::vector<std::string> Keys(const Json& object) {
    std::vector<std::string> keys;
    for (const auto& item : object.items())
      keys.push_back(item.key());
    return keys;
  }
};

TEST_F(IdentifyJsonCommand, IdentifiesTheDemoCollectionAsTextAndJson) {
  const auto text = Run({"identify", "--dat", Dat(), Path("demo")});
  EXPECT_EQ(text.status, cli::kExitFailure);  // some are unknown
  EXPECT_THAT(text.out, HasSubstr("Star Courier (W).bin: Star Courier (World) (Rev 1) "
                                  "(crc32+sha1)\n"));
  EXPECT_THAT(text.out, HasSubstr("Coral Archive (B).bin: unknown\n"));
  EXPECT_THAT(text.out, HasSubstr("5 matched, 3 unknown, 0 not identified\n"));
  EXPECT_THAT(text.err, HasSubstr("line 34: game \"Torn Label (World)\""));

  const auto run = Run({"identify", "--json", "--dat", Dat(), Path("demo/Pocket Pair.zip"),
                        Path("demo/Iron Meadow.1"), Path("gone.bin")});
  EXPECT_EQ(run.status, cli::kExitError);  // one cannot be read
  const Json json = Json::parse(run.out);
  EXPECT_THAT(Keys(json["dat"]),
              ElementsAre("file", "name", "description", "version", "games", "problems"));
  EXPECT_EQ(json["dat"]["problems"].size(), 1u);
  const Json& images = json["images"];
  ASSERT_EQ(images.size(), 4u);
  for (const Json& image : images)
    EXPECT_THAT(Keys(image),
                ElementsAre("file", "member", "status", "layout", "laterVolumes", "size", "crc32",
                            "sha1", "game", "rom", "matchedBy", "error"));
  EXPECT_EQ(images[0]["member"], "Tin Soldier (U).bin");
  EXPECT_EQ(images[0]["matchedBy"], "sha1");
  EXPECT_EQ(images[1]["status"], "unknown");
  EXPECT_TRUE(images[1]["game"].is_null());
  EXPECT_EQ(images[2]["game"], "Iron Meadow (Europe)");
  EXPECT_EQ(images[2]["laterVolumes"].size(), 2u);
  EXPECT_EQ(images[3]["status"], "error");
  EXPECT_THAT(images[3]["error"].get<std::string>(), HasSubstr("gone.bin"));
}

TEST_F(IdentifyJsonCommand, RenamesOnlyAfterYesAndRemembersTheDatForReports) {
  const auto declined = Run({"identify", "--dat", Dat(), "--rename", Path("demo")});
  EXPECT_THAT(declined.out, HasSubstr("Would rename:\n"));
  EXPECT_THAT(declined.out, HasSubstr("Star Courier (W).bin -> Star Courier (World) (Rev 1).bin"));
  EXPECT_THAT(declined.out, HasSubstr("Nothing renamed\n"));
  EXPECT_TRUE(std::filesystem::exists(PathOf("demo/Star Courier (W).bin")));

  EXPECT_EQ(Run({"identify", Path("demo")}).status, cli::kExitError);  // no DAT chosen yet
  ASSERT_EQ(Run({"identify", "--remember", "--dat", Dat(), Path("demo/Quiet Orbit (J).md")}).status,
            cli::kExitOk);
  const auto renamed = Run({"identify", "--rename", "--yes", Path("demo")});
  EXPECT_THAT(renamed.out, HasSubstr("Renamed 6 files\n"));
  EXPECT_TRUE(std::filesystem::exists(PathOf("demo/Iron Meadow (Europe).3")));

  test::WriteTestFile(PathOf("dat.rsc"), "-BOL-%file%=%datname%\n-EOL-");
  EXPECT_EQ(Run({"report", "--template", Path("dat.rsc"), Path("demo")}).out,
            "Broken Lantern (E).bin=unknown\nCoral Archive (B).bin=unknown\n"
            "Harbor Lights (USA).smd=Harbor Lights (USA)\nIron Meadow (Europe).1=Iron Meadow "
            "(Europe)\nQuiet Orbit (Japan).md=Quiet Orbit (Japan)\n"
            "Star Courier (World) (Rev 1).bin=Star Courier (World) (Rev 1)\n");
}

TEST_F(IdentifyJsonCommand, ABadDatFileStopsBeforeAnyOutput) {
  test::WriteTestFile(PathOf("bad.dat"), "<datafile><game name='x'>");
  const auto run = Run({"identify", "--json", "--dat", Path("bad.dat"), Path("demo")});
  EXPECT_EQ(run.status, cli::kExitError);
  EXPECT_EQ(run.out, "");
  EXPECT_THAT(run.err, HasSubstr("bad.dat is not a readable DAT file"));
}

TEST_F(IdentifyJsonCommand, EveryOtherReportingCommandPrintsParsableJson) {
  const auto checksum = Run({"checksum", "--json", Path("demo/Broken Lantern (E).bin"),
                             Path("demo/notes.txt"), Path("demo/Star Courier (W).bin")});
  EXPECT_EQ(checksum.status, cli::kExitError);
  const Json sums = Json::parse(checksum.out);
  ASSERT_EQ(sums.size(), 3u);
  EXPECT_THAT(Keys(sums[0]),
              ElementsAre("file", "layout", "stored", "computed", "correct", "fixed", "error"));
  EXPECT_EQ(sums[0]["correct"], false);
  EXPECT_TRUE(sums[1]["error"].is_string());
  EXPECT_EQ(sums[2]["correct"], true);
  EXPECT_EQ(sums[2]["stored"], sums[2]["computed"]);

  const Json list = Json::parse(Run({"list", "--json", Path("demo/Pocket Pair.zip")}).out);
  EXPECT_THAT(Keys(list), ElementsAre("place", "archive", "entries", "count"));
  EXPECT_EQ(list["archive"], true);
  EXPECT_EQ(list["entries"], Json::array({"Tin Soldier (U).bin", "Velvet Comet (J).smd"}));

  const std::string star = Path("demo/Star Courier (W).bin");
  ASSERT_EQ(Run({"patch", "add", star, "lives", "1A", "0963"}).status, cli::kExitOk);
  const Json patches = Json::parse(Run({"patch", "list", "--json", star}).out);
  EXPECT_EQ(patches["image"], "Star Courier (W).bin");
  ASSERT_EQ(patches["patches"].size(), 1u);
  EXPECT_EQ(patches["patches"][0]["position"], 0x1A);
  EXPECT_EQ(patches["patches"][0]["newBytes"], "0963");
  EXPECT_TRUE(patches["alsoAtLaunch"].empty());
  const Json none = Json::parse(Run({"patch", "list", "--json", Path("demo/x.bin")}).out);
  EXPECT_TRUE(none["patches"].empty());

  const auto info = Run({"info", "--json", Path("gone.bin"), star});
  const Json infos = Json::parse(info.out);
  EXPECT_THAT(Keys(infos[0]), ElementsAre("file", "error"));
  EXPECT_TRUE(infos[1]["error"].is_null());
}

}  // namespace
}  // namespace romsteward
