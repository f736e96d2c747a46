#include <gtest/gtest.h>

#include "cli/tool_runner.h"

namespace romsteward::cli {
namespace {

using test::Bytes;

using PatchCommand = test::ToolSettingsTest;

TEST_F(PatchCommand, PatchesAreAddedListedAndRemovedByTheImagesFileName) {
  const auto sonic = Put("SONIC.BIN", "0123456789").string();
  const auto sequel = Put("SONIC.BIN2", "0123456789").string();
  const auto ips = Put("h.ips", "PATCH" + Bytes({0, 0, 7, 0, 1}) + "CEOF").string();
  ASSERT_EQ(Run({"patch", "add", sonic, "lives", "1", "ABC"}).status, kExitOk);
  ASSERT_EQ(Run({"patch", "from-ips", sequel, ips, " hack "}).status, kExitOk);
  EXPECT_EQ(Run({"patch", "add", sonic, "p", "A", "00"}).status, kExitError);  // past the end
  EXPECT_EQ(Run({"patch", "list", sonic}).out,
            "SONIC.BIN:\n"
            "  lives: at 1, 2 bytes, new 0ABC, old 3132\n"
            "Also applied at launch:\n"
            "  SONIC.BIN2|hack0: at 7, 1 byte, new 43, old 37\n");
  const test::ToolRun declined = Run({"patch", "remove", sonic, "LIVES"});  // no terminal: no
  EXPECT_EQ(declined.status, kExitOk);
  EXPECT_EQ(declined.out, "Nothing removed\n");
  ASSERT_EQ(Run({"patch", "remove", "--yes", sonic, "LIVES"}).status, kExitOk);
  EXPECT_EQ(Run({"patch", "remove", "--yes", sonic, "lives"}).status, kExitError);
}

// The patch goes beside the changed image by default; the format itself is the core's.
TEST_F(PatchCommand, IpsCreateThenApplyGivesTheChangedImage) {
  const auto game = Put("game.bin", "0123456789").string();
  const auto hack = Put("game-hack.bin", "0123x5678Y").string();
  ASSERT_EQ(Run({"ips", "create", game, hack}).status, kExitOk);
  ASSERT_EQ(Run({"ips", "apply", PathOf("game-hack.ips").string(), game}).status, kExitOk);
  EXPECT_EQ(test::ReadTestFile(game), "0123x5678Y");
  const test::ToolRun refused = Run({"ips", "create", game, Put("short.bin", "x").string()});
  EXPECT_EQ(refused.status, kExitError);
  EXPECT_EQ(refused.err, "The size of the files don't match!\n" + game + " and " +
                             PathOf("short.bin").string() +
                             " differ in length; no patch was written.\n");
  EXPECT_FALSE(std::filesystem::exists(PathOf("short.ips")));
}

}  // namespace
}  // namespace romsteward::cli
