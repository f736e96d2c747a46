#include "core/cart/convert.h"

#include <gtest/gtest.h>

#include "core/cart/convert_command.h"
#include "core/cart/detect.h"
#include "core/demo/cartridge_builder.h"
#include "support/scripted_host.h"
#include "support/temp_dir.h"

namespace romsteward {
namespace {

class ConvertTest : public ::testing::Test {
protected:
  void SetUp() override {
    CartridgeSpec spec;
    spec.size = 64 * 1024;
    m_logical = BuildCartridgeImage(spec);
  }
  test::TempDir m_dir;
  std::string m_logical;
};

TEST_F(ConvertTest, EveryPairOfLayoutsRoundTrips) {
  for (Layout from : {Layout::Bin, Layout::Smd, Layout::Md}) {
    for (Layout to : {Layout::Bin, Layout::Smd, Layout::Md}) {
      if (from == to) continue;
      const std::string original = EncodeImage(m_logical, from);
      const auto source = m_dir.Write("source", original);
      const auto there = m_dir / "there";
      const auto back = m_dir / "back";
      ASSERT_TRUE(ConvertImage(source, to, there, true).ok());
      ASSERT_TRUE(ConvertImage(there, from, back, true).ok());
      // Compared as booleans: a mismatch of two images is unreadable when printed.
      EXPECT_TRUE(test::ReadTestFile(there) == EncodeImage(m_logical, to));
      EXPECT_TRUE(test::ReadTestFile(back) == original);
      EXPECT_TRUE(test::ReadTestFile(source) == original);  // never touched
    }
  }
}

TEST_F(ConvertTest, RefusesWhatWouldLoseOrReplaceData) {
  const auto odd = m_dir.Write("odd.bin", m_logical + "tail");  // not a whole block
  const Status result = ConvertImage(odd, Layout::Smd, m_dir / "odd.smd", false);
  ASSERT_FALSE(result.ok());
  EXPECT_NE(result.error().message.find("16 KiB"), std::string::npos);
  EXPECT_FALSE(std::filesystem::exists(m_dir / "odd.smd"));
  const auto source = m_dir.Write("game.bin", m_logical);
  m_dir.Write("game.smd", "keep me");
  EXPECT_FALSE(ConvertImage(source, Layout::Smd, m_dir / "game.smd", false).ok());
  EXPECT_EQ(test::ReadTestFile(m_dir / "game.smd"), "keep me");
  EXPECT_TRUE(ConvertImage(source, Layout::Smd, m_dir / "game.smd", true).ok());

  EXPECT_FALSE(ConvertImage(source, Layout::Bin, m_dir / "copy.bin", false).ok());  // already
  const auto misnamed = m_dir.Write("real.smd", m_logical);
  EXPECT_FALSE(ConvertImage(misnamed, Layout::Smd, misnamed, true).ok());  // itself
  const auto split = m_dir.Write("set.1", [&] {
    std::string smd = EncodeImage(m_logical, Layout::Smd);
    smd[2] = 0x40;
    return smd;
  }());
  EXPECT_FALSE(ConvertImage(split, Layout::Bin, m_dir / "set.bin", false).ok());
  EXPECT_FALSE(
      ConvertImage(m_dir.Write("n.txt", "text"), Layout::Bin, m_dir / "n.bin", false).ok());
}

TEST(FileNameForLayout, ExtensionFitsTheLayout) {
  EXPECT_EQ(FileNameForLayout("dir/Game.smd", Layout::Bin), "dir/Game.bin");
  EXPECT_EQ(FileNameForLayout("Game.BIN", Layout::Bin), "Game.BIN");  // already fits
  EXPECT_EQ(FileNameForLayout("Game.mgd", Layout::Md), "Game.mgd");
  EXPECT_EQ(FileNameForLayout("Game.bin", Layout::Md), "Game.md");
  EXPECT_EQ(FileNameForLayout("Game", Layout::Smd), "Game.smd");
  EXPECT_EQ(FileNameForLayout("v1.2/Game", Layout::Smd), "v1.2/Game.smd");
  EXPECT_EQ(FileNameForLayout("Game.1", Layout::SplitFirst), "Game.1");
  EXPECT_EQ(FileNameForLayout("notes.txt", Layout::NoRom), "notes.txt");
}

// Each case writes nothing: a No to replacing, an image already in the layout, an SMD image
// named .bin whose BIN output would be the source itself, and a file that is no image.
TEST_F(ConvertTest, TheCommandWritesNothingUnlessThereIsSomethingToDoAndLeaveToReplace) {
  test::ScriptedHost host;
  const auto source = m_dir.Write("game.bin", m_logical);
  m_dir.Write("game.smd", "keep me");

  host.AnswerYesNo(Answer::No);
  EXPECT_EQ(ConvertCommand(host, source, Layout::Smd), std::nullopt);
  EXPECT_EQ(host.Texts().back(), "The file game.smd exists! Do you want to replace it?");
  EXPECT_EQ(test::ReadTestFile(m_dir / "game.smd"), "keep me");

  EXPECT_EQ(ConvertCommand(host, source, Layout::Bin), std::nullopt);
  EXPECT_EQ(host.Events().back().icon, MessageIcon::Information);
  EXPECT_EQ(host.Texts().back(),
            source.string() + " is already in Super Magic Drive Binary (BIN) layout.");

  const std::string smd = EncodeImage(m_logical, Layout::Smd);
  const auto misnamed = m_dir.Write("other.bin", smd);
  EXPECT_EQ(ConvertCommand(host, misnamed, Layout::Bin), std::nullopt);
  EXPECT_EQ(host.Events().back().icon, MessageIcon::Critical);
  EXPECT_TRUE(test::ReadTestFile(misnamed) == smd);
  EXPECT_TRUE(test::ReadTestFile(source) == m_logical);

  // Not an image: refused before the replace question is asked.
  const auto notes = m_dir.Write("notes.txt", "text");
  m_dir.Write("notes.smd", "keep me too");
  EXPECT_EQ(ConvertCommand(host, notes, Layout::Smd), std::nullopt);
  EXPECT_EQ(host.Texts().back(),
            notes.string() +
                " is no BIN, SMD or MD image; only those can be converted (join a split "
                "set first).");
}

}  // namespace
}  // namespace romsteward
