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
  std::string Game(std::string_view extension) {
    return PathOf("GAME" + std::string(extension)).string();
  }
  std::ostringstream m_out;
  std::ostringstream m_err;
};

TEST_F(SplitJoinCommandTest, ASplitSetIsDetectedAndJoinsBackByteForByte) {
  CartridgeSpec spec;
  spec.size = 640 * 1024;  // 5 Mbit at 2: two whole volumes and a short one
  const std::string image = EncodeImage(BuildCartridgeImage(spec), Layout::Smd);
  WriteTestFile(Game(".smd"), image);

  ASSERT_EQ(Run({"split", "--size", "2", Game(".smd")}), kExitOk) << m_err.str();
  EXPECT_NE(m_err.str().find("The ROM was splitted in 3 files"), std::string::npos);
  ASSERT_EQ(Run({"info", Game(".1"), Game(".3")}), kExitOk) << m_err.str();
  EXPECT_NE(m_out.str().find("Layout         1 (Splitted"), std::string::npos) << m_out.str();
  EXPECT_NE(m_out.str().find("Layout         1* (Splitted"), std::string::npos) << m_out.str();

  // Without a terminal the question about the existing GAME.smd gets its safe answer.
  EXPECT_EQ(Run({"join", Game(".2")}), kExitFailure);
  EXPECT_NE(m_err.str().find("The file GAME.smd exists!"), std::string::npos) << m_err.str();
  ASSERT_EQ(Run({"--yes", "join", Game(".2")}), kExitOk) << m_err.str();
  EXPECT_NE(m_err.str().find("3 file(s) joined"), std::string::npos);
  EXPECT_EQ(ReadTestFile(Game(".smd")), image);

  // A second split finds the volumes and needs --yes to replace them.
  EXPECT_EQ(Run({"split", "--size", "2", Game(".smd")}), kExitFailure);
  EXPECT_NE(m_err.str().find("GAME.1' exists! Overwrite?"), std::string::npos) << m_err.str();
  EXPECT_EQ(Run({"split", "--size", "2", Game(".smd"), "--yes"}), kExitOk) << m_err.str();
}

TEST_F(SplitJoinCommandTest, SplitRefusesBadSizesAndImagesThatAreNotWholeSmd) {
  CartridgeSpec spec;
  spec.size = 256 * 1024;
  const std::string logical = BuildCartridgeImage(spec);
  WriteTestFile(Game(".smd"), EncodeImage(logical, Layout::Smd));
  WriteTestFile(Game(".bin"), logical);

  EXPECT_EQ(Run({"split", "--size", "33", Game(".smd")}), kExitError);
  EXPECT_NE(m_err.str().find("maximum ROM size for Genesis was 32 Megabits"), std::string::npos);
  EXPECT_EQ(Run({"split", "--size", "0", Game(".smd")}), kExitError);
  EXPECT_EQ(Run({"split", "--size", "1", Game(".bin")}), kExitError);
  EXPECT_NE(m_err.str().find("only a whole SMD image"), std::string::npos) << m_err.str();
  EXPECT_EQ(Run({"split", "--size", "2", Game(".smd")}), kExitError);
  EXPECT_NE(m_err.str().find("You just can split ROMs in parts smaller than it."),
            std::string::npos);
  EXPECT_FALSE(std::filesystem::exists(Game(".1")));
}

TEST_F(SplitJoinCommandTest, JoinFilesKeepsTheOrderAndAsksBeforeReplacing) {
  const std::string a = PathOf("a").string();
  const std::string b = PathOf("b").string();
  WriteTestFile(a, "A");
  WriteTestFile(b, "BB");
  const std::string dest = PathOf("out").string();
  ASSERT_EQ(Run({"join-files", dest, b, a, b}), kExitOk) << m_err.str();
  EXPECT_EQ(ReadTestFile(dest), "BBABB");
  EXPECT_NE(m_err.str().find("3 files were joined!"), std::string::npos);

  EXPECT_EQ(Run({"join-files", dest, a}), kExitFailure);
  EXPECT_EQ(ReadTestFile(dest), "BBABB");
  EXPECT_EQ(Run({"join-files", "--yes", dest, a, PathOf("missing").string()}), kExitError);
  EXPECT_NE(m_err.str().find("missing"), std::string::npos);
  EXPECT_EQ(ReadTestFile(dest), "BBABB");
}

}  // namespace
}  // namespace romsteward::cli
