#include <gtest/gtest.h>

#include <sstream>

#include "cli/tool.h"
#include "core/cart/convert.h"
#include "core/demo/cartridge_builder.h"
#include "support/temp_dir.h"

namespace romsteward::cli {
namespace {

using test::ReadTestFile;
using test::WriteTestFile;

class SplitJoinCommandTest : public test::TempDirTest {
protected:
  int Run(std::vector<std::string> args) {
    m_out.str({});
    m_err.str({});
    args.insert(args.begin(), {"--settings", PathOf("settings.sqlite3").string()});
    return RunTool(args, m_out, m_err);
  }
  bool Said(std::string_view text) { return m_err.str().find(text) != std::string::npos; }
  std::string Game(std::string_view ext) { return PathOf("GAME" + std::string(ext)).string(); }
  std::ostringstream m_out;
  std::ostringstream m_err;
};

TEST_F(SplitJoinCommandTest, ASplitSetIsDetectedAndJoinsBackByteForByte) {
  CartridgeSpec spec;
  spec.size = 640 * 1024;  // 5 Mbit at 2: two whole volumes and a short one
  const std::string image = EncodeImage(BuildCartridgeImage(spec), Layout::Smd);
  WriteTestFile(Game(".smd"), image);
  ASSERT_EQ(Run({"split", "--size", "2", Game(".smd")}), kExitOk) << m_err.str();
  EXPECT_TRUE(Said("The ROM was splitted in 3 files"));
  ASSERT_EQ(Run({"info", Game(".1"), Game(".3")}), kExitOk);
  EXPECT_NE(m_out.str().find("Layout         1 (Splitted"), std::string::npos) << m_out.str();
  EXPECT_NE(m_out.str().find("Layout         1* (Splitted"), std::string::npos) << m_out.str();

  // Without a terminal a question gets the answer that changes nothing, unless --yes.
  EXPECT_EQ(Run({"join", Game(".2")}), kExitFailure);
  EXPECT_TRUE(Said("The file GAME.smd exists!"));
  ASSERT_EQ(Run({"--yes", "join", Game(".2")}), kExitOk) << m_err.str();
  EXPECT_EQ(ReadTestFile(Game(".smd")), image);
  EXPECT_EQ(Run({"split", "--size", "2", Game(".smd")}), kExitFailure);
  EXPECT_TRUE(Said("GAME.1' exists! Overwrite?"));
}

TEST_F(SplitJoinCommandTest, SplitRefusesBadSizesAndImagesThatAreNotWholeSmdAndJoinFilesAsksFirst) {
  CartridgeSpec spec;
  spec.size = 256 * 1024;
  WriteTestFile(Game(".smd"), EncodeImage(BuildCartridgeImage(spec), Layout::Smd));
  WriteTestFile(Game(".bin"), BuildCartridgeImage(spec));
  EXPECT_EQ(Run({"split", "--size", "33", Game(".smd")}), kExitError);
  EXPECT_TRUE(Said("maximum ROM size for Genesis was 32 Megabits"));
  EXPECT_EQ(Run({"split", "--size", "1", Game(".bin")}), kExitError);
  EXPECT_TRUE(Said("only a whole SMD image"));
  EXPECT_FALSE(std::filesystem::exists(Game(".1")));

  // join-files asks before replacing its destination.
  ASSERT_EQ(Run({"join-files", Game(".out"), Game(".bin"), Game(".smd")}), kExitOk);
  EXPECT_EQ(Run({"join-files", Game(".out"), Game(".bin")}), kExitFailure);
  EXPECT_EQ(ReadTestFile(Game(".out")), ReadTestFile(Game(".bin")) + ReadTestFile(Game(".smd")));
}

}  // namespace
}  // namespace romsteward::cli
