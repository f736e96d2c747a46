#include <gtest/gtest.h>

#include "cli/tool_runner.h"
#include "core/cart/convert.h"
#include "core/demo/cartridge_builder.h"

namespace romsteward::cli {
namespace {

using test::ReadTestFile;
using test::WriteTestFile;

class SplitJoinCommandTest : public test::ToolSettingsTest {
protected:
  // Runs the tool and gives its exit status; what it said goes to m_said.
  int Status(std::vector<std::string> args) {
    const test::ToolRun run = Run(std::move(args));
    m_said = run.out + run.err;
    return run.status;
  }
  bool Said(std::string_view text) const { return m_said.find(text) != std::string::npos; }
  std::string Game(std::string_view ext) { return PathOf("GAME" + std::string(ext)).string(); }
  std::string m_said;
};

TEST_F(SplitJoinCommandTest, ASplitSetIsDetectedAndJoinsBackByteForByte) {
  CartridgeSpec spec;
  spec.size = 640 * 1024;  // 5 Mbit at 2: two whole volumes and a short one
  const std::string image = EncodeImage(BuildCartridgeImage(spec), Layout::Smd);
  WriteTestFile(Game(".smd"), image);
  ASSERT_EQ(Status({"split", "--size", "2", Game(".smd")}), kExitOk) << m_said;
  EXPECT_TRUE(Said("The ROM was splitted in 3 files"));
  ASSERT_EQ(Status({"info", Game(".1"), Game(".3")}), kExitOk);
  EXPECT_TRUE(Said("Layout         1 (Splitted")) << m_said;
  EXPECT_TRUE(Said("Layout         1* (Splitted")) << m_said;
  // Without a terminal a question gets the answer that changes nothing, unless --yes.
  EXPECT_EQ(Status({"join", Game(".2")}), kExitFailure);
  EXPECT_TRUE(Said("The file GAME.smd exists!"));
  ASSERT_EQ(Status({"--yes", "join", Game(".2")}), kExitOk) << m_said;
  EXPECT_EQ(ReadTestFile(Game(".smd")), image);
  EXPECT_EQ(Status({"split", "--size", "2", Game(".smd")}), kExitFailure);
  EXPECT_TRUE(Said("GAME.1' exists! Overwrite?"));
}

TEST_F(SplitJoinCommandTest, SplitRefusesBadSizesAndImagesThatAreNotWholeSmdAndJoinFilesAsksFirst) {
  CartridgeSpec spec;
  spec.size = 256 * 1024;
  WriteTestFile(Game(".smd"), EncodeImage(BuildCartridgeImage(spec), Layout::Smd));
  WriteTestFile(Game(".bin"), BuildCartridgeImage(spec));
  EXPECT_EQ(Status({"split", "--size", "33", Game(".smd")}), kExitError);
  EXPECT_TRUE(Said("maximum ROM size for Genesis was 32 Megabits"));
  EXPECT_EQ(Status({"split", "--size", "1", Game(".bin")}), kExitError);
  EXPECT_TRUE(Said("only a whole SMD image"));
  EXPECT_FALSE(std::filesystem::exists(Game(".1")));
  // join-files asks before replacing its destination.
  ASSERT_EQ(Status({"join-files", Game(".out"), Game(".bin"), Game(".smd")}), kExitOk);
  EXPECT_EQ(Status({"join-files", Game(".out"), Game(".bin")}), kExitFailure);
  EXPECT_EQ(ReadTestFile(Game(".out")), ReadTestFile(Game(".bin")) + ReadTestFile(Game(".smd")));
}

}  // namespace
}  // namespace romsteward::cli
