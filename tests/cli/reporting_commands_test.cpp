// The commands that describe images: identify, info, list and report, and the --json form of
// each, parsed as a script would.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <nlohmann/json.hpp>
#include <set>

#include "cli/tool_runner.h"
#include "core/demo/cartridge_builder.h"
#include "core/demo/demo_dat.h"
#include "core/host/forwarding_host.h"
#include "support/scripted_host.h"

namespace romsteward {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using Json = nlohmann::ordered_json;
using ::testing::StartsWith;

// Sends its own process SIGTERM at the first progress report, as a kill from outside would.
class TerminatedAtProgress : public ForwardingHost {
public:
  using ForwardingHost::ForwardingHost;
  bool SetProgress(int percent) override {
    std::raise(SIGTERM);
    return ForwardingHost::SetProgress(percent);
  }
};

class ReportingCommands : public test::DemoToolTest {
protected:
  std::string Dat() const { return Path("demo/" + std::string(kDemoDatName)); }
  static std::vector<std::string> Keys(const Json& object) {
    std::vector<std::string> keys;
    for (const auto& item : object.items())
      keys.push_back(item.key());
    return keys;
  }
};

TEST_F(ReportingCommands, IdentifiesTheDemoCollectionAsTextAndJson) {
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

TEST_F(ReportingCommands, RenamesOnlyAfterYesAndRemembersTheDatForReports) {
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

TEST_F(ReportingCommands, ABadDatFileStopsBeforeAnyOutput) {
  test::WriteTestFile(PathOf("bad.dat"), "<datafile><game name='x'>");
  const auto run = Run({"identify", "--json", "--dat", Path("bad.dat"), Path("demo")});
  EXPECT_EQ(run.status, cli::kExitError);
  EXPECT_EQ(run.out, "");
  EXPECT_THAT(run.err, HasSubstr("bad.dat is not a readable DAT file"));
}

TEST_F(ReportingCommands, EveryOtherReportingCommandPrintsParsableJson) {
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

TEST_F(ReportingCommands, ListPrintsTheListAsTheWindowShowsIt) {
  EXPECT_EQ(Run({"list", Path("demo")}).out,
            "Broken Lantern (E).bin\nCoral Archive (B).bin\nHarbor Lights (U).smd\n"
            "Iron Meadow.1\nQuiet Orbit (J).md\nStar Courier (W).bin\n6 file(s)\n");
  const auto all = Run({"list", "--all", "--sort", "type", Path("demo")});
  EXPECT_THAT(all.out, StartsWith("Iron Meadow.1\nIron Meadow.2\nIron Meadow.3\n"));
  EXPECT_THAT(all.out, HasSubstr("notes.txt\nPocket Pair.zip\n11 file(s)\n"));

  for (const std::string& bad :
       {Path("missing"), Path("demo/notes.txt"), std::string("\\\\s\\r")}) {
    const auto refused = Run({"list", bad});
    EXPECT_EQ(refused.status, cli::kExitError);
    EXPECT_EQ(refused.out, "");
  }
}

TEST_F(ReportingCommands, ReportWritesAListOfDirectoriesAndArchives) {
  const auto shown = Run({"report", Path("demo")});
  EXPECT_THAT(shown.out, StartsWith("     MY ROM LIST\r\n"));
  EXPECT_THAT(shown.out, HasSubstr("NUMBER OF ROMS:  6\r\n"));
  const auto written = Run({"report", "-o", Path("list.txt"), Path("demo")});
  EXPECT_EQ(test::ReadTestFile(PathOf("list.txt")), shown.out);
  EXPECT_THAT(written.err, HasSubstr("Rom list created!"));

  std::filesystem::create_directory(PathOf("temp"));
  ASSERT_EQ(Run({"settings", "set", "Settings", "temp", Path("temp")}).status, cli::kExitOk);
  test::WriteTestFile(PathOf("names.rsc"), "-BOL-%file%;%countries%\n-EOL-");
  EXPECT_EQ(Run({"report", "--template", Path("names.rsc"), Path("demo/Pocket Pair.zip")}).out,
            "Tin Soldier (U).bin;USA\nVelvet Comet (J).smd;Japan\n");
  EXPECT_TRUE(std::filesystem::is_empty(PathOf("temp")));

  // Terminated midway (here by itself, at its first progress), the report removes its
  // folder, writes nothing, and then ends by that signal.
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    test::ScriptedHost inner;
    TerminatedAtProgress host(inner);
    test::RunToolWith(
        {"--settings", StoreFile(), "report", "-o", Path("cut.txt"), Path("demo/Pocket Pair.zip")},
        {}, &host);
    _exit(0);
  }
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGTERM) << status;
  EXPECT_TRUE(std::filesystem::is_empty(PathOf("temp")));
  EXPECT_FALSE(std::filesystem::exists(PathOf("cut.txt")));
}

TEST_F(ReportingCommands, ReportTemplateErrorsWriteNothing) {
  test::WriteTestFile(PathOf("broken.rsc"), "-BOL-%file%");
  const auto broken =
      Run({"report", "--template", Path("broken.rsc"), "-o", Path("out.txt"), Path("demo")});
  EXPECT_EQ(broken.status, cli::kExitError);
  EXPECT_THAT(broken.err, HasSubstr("Expected: End of list"));
  EXPECT_FALSE(std::filesystem::exists(PathOf("out.txt")));
  EXPECT_THAT(Run({"report", "--template", Path("none.rsc"), Path("demo")}).err,
              HasSubstr("none.rsc"));
}

std::string SmallImage(CartridgeSpec spec = {}) {
  spec.size = 16 * 1024;
  return BuildCartridgeImage(spec);
}

TEST_F(ReportingCommands, JsonOfTheDemoCollectionHasExactlyTheDocumentedKeys) {
  std::vector<std::string> args{"info", "--json"};
  for (const auto& entry : std::filesystem::directory_iterator(PathOf("demo")))
    args.push_back(entry.path().string());
  const test::ToolRun run = Run(args);
  ASSERT_EQ(run.status, 0) << run.err;

  const Json json = Json::parse(run.out);
  ASSERT_EQ(json.size(), args.size() - 2);
  std::set<std::string> layouts;
  for (const Json& object : json) {
    EXPECT_THAT(
        Keys(object),
        ElementsAre("file", "layout", "layoutName", "makerDate", "domesticName", "overseasName",
                    "productType", "serial", "version", "checksum", "devices", "romStart", "romEnd",
                    "romSize", "sramStart", "sramEnd", "countries", "sizeMbit", "error"));
    layouts.insert(object["layout"].get<std::string>());
    EXPECT_TRUE(object["checksum"].is_number());
  }
  EXPECT_THAT(layouts, ::testing::IsSupersetOf({"BIN", "SMD", "MD", "1", "1*", "NOROM"}));
}

TEST_F(ReportingCommands, OddBytesGiveValidJsonAndUnreadableFilesAreNamed) {
  CartridgeSpec spec;
  spec.domesticName = std::string("\xE9t\xE9\x01\"\\\xFF\0", 8);
  spec.makerDate = "(C)\x80\x81\x82 1993.JAN";
  const test::ToolRun run = Run({"info", "--json", Put("odd\xE9.bin", SmallImage(spec)).string()});
  ASSERT_EQ(run.status, 0);
  const auto json = nlohmann::json::parse(run.out);  // throws on invalid UTF-8
  EXPECT_EQ(json[0]["domesticName"].get<std::string>(), "\xC3\xA9t\xC3\xA9\x01\"\\\xC3\xBF");

  // An unreadable file is named and the others are still reported.
  const test::ToolRun mixed =
      Run({"info", PathOf("missing.bin").string(), Put("good.bin", SmallImage()).string()});
  EXPECT_NE(mixed.status, 0);
  EXPECT_THAT(mixed.err, HasSubstr("missing.bin"));
  EXPECT_THAT(mixed.out, HasSubstr("DEMO CARTRIDGE"));
  EXPECT_THAT(mixed.out, ::testing::Not(HasSubstr("missing.bin")));
}

}  // namespace
}  // namespace romsteward
