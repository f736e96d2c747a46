#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "core/app/main_window_model.h"
#include "core/common/strings.h"
#include "core/demo/demo_collection.h"
#include "support/cart_images.h"
#include "tool_runner.h"

namespace romsteward {
namespace {

using ::testing::HasSubstr;

class FavoritesCommandTest : public test::ToolSettingsTest {
protected:
  void SetUp() override {
    std::filesystem::create_directories(PathOf("roms"));
    test::WriteImage(PathOf("roms/game.bin"), test::MakeCartridge(256 * 1024), Layout::Bin);
    auto zip = BuildZipArchive({{"a.bin", test::ReadTestFile(PathOf("roms/game.bin"))}});
    ASSERT_TRUE(zip);
    test::WriteTestFile(PathOf("set.zip"), *zip);
  }
  std::string Image() const { return Path("roms/game.bin"); }
  std::string Member() const { return Path("set.zip") + "\\\\a.bin"; }

  // Runs with a launch step that records the entry it was given instead of an emulator.
  test::ToolRun RunLaunching(std::vector<std::string> args) {
    return Run(std::move(args), {}, [this](MainWindowModel& model, std::function<void()> done) {
      launched.push_back(JoinDirName(model.Diret(), model.SelectedText()));
      done();
    });
  }

  std::vector<std::string> launched;
};

TEST_F(FavoritesCommandTest, AddListAndRemoveKeepTheMenuInNameOrder) {
  EXPECT_EQ(Run({"favorites", "add", "zelda", Image()}).status, 0);
  EXPECT_EQ(Run({"favorites", "add", "Packed", Member()}).status, 0);
  const test::ToolRun replaced = Run({"favorites", "add", "ZELDA", Image()});
  EXPECT_THAT(replaced.out, HasSubstr("Replaced 'ZELDA'"));
  EXPECT_EQ(Run({"favorites", "add", "Gone", Path("roms/gone.bin")}).status, 2);
  EXPECT_EQ(Run({"favorites", "add", "No member", Path("set.zip") + "\\\\b.bin"}).status, 2);
  EXPECT_EQ(Run({"favorites", "add", "  ", Image()}).status, 2);

  std::filesystem::rename(PathOf("set.zip"), PathOf("moved.zip"));
  EXPECT_EQ(Run({"favorites", "list"}).out,
            "Packed\t" + Member() + "\t(not found)\nzelda\t" + Image() + "\n");
  const auto json = nlohmann::json::parse(Run({"favorites", "list", "--json"}).out);
  ASSERT_EQ(json.size(), 2u);
  EXPECT_EQ(json[0]["title"], "Packed");
  EXPECT_EQ(json[0]["archived"], false);  // the archive is gone, so it is a plain dead path
  EXPECT_EQ(json[0]["found"], false);
  EXPECT_EQ(json[1]["location"], Image());
  EXPECT_EQ(json[1]["found"], true);

  EXPECT_EQ(Run({"favorites", "remove", "PACKED"}).status, 0);
  const test::ToolRun unknown = Run({"favorites", "remove", "Packed"});
  EXPECT_EQ(unknown.status, 2);
  EXPECT_THAT(unknown.err, HasSubstr("No favorite is titled 'Packed'."));
  EXPECT_EQ(Run({"favorites", "list"}).out, "zelda\t" + Image() + "\n");
}

TEST_F(FavoritesCommandTest, RunLaunchesThroughTheLaunchStepAndOffersDeadOnesForRemoval) {
  ASSERT_EQ(Run({"settings", "set", "Settings", "temp", Path("roms")}).status, 0);
  ASSERT_EQ(Run({"favorites", "add", "Game", Image()}).status, 0);
  ASSERT_EQ(Run({"favorites", "add", "Packed", Member()}).status, 0);
  EXPECT_EQ(RunLaunching({"favorites", "run", "game"}).status, 0);
  EXPECT_EQ(RunLaunching({"favorites", "run", "Packed"}).status, 0);
  EXPECT_THAT(launched, ::testing::ElementsAre(Image(), Path("roms/a.bin")));
  EXPECT_FALSE(std::filesystem::exists(PathOf("roms/a.bin")));

  EXPECT_EQ(RunLaunching({"favorites", "run", "Nothing"}).status, 2);
  std::filesystem::remove(PathOf("roms/game.bin"));
  const test::ToolRun kept = RunLaunching({"favorites", "run", "Game"});
  EXPECT_EQ(kept.status, 1);
  EXPECT_THAT(kept.err, HasSubstr("Rom not found, remove favorite from menu?"));
  EXPECT_EQ(RunLaunching({"--yes", "favorites", "run", "Game"}).status, 1);
  EXPECT_THAT(Run({"favorites", "list"}).out, ::testing::Not(HasSubstr("Game")));
  EXPECT_EQ(launched.size(), 2u);
}

}  // namespace
}  // namespace romsteward
