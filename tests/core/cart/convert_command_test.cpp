#include "core/cart/convert_command.h"

#include <gtest/gtest.h>

#include "core/cart/convert.h"
#include "core/demo/cartridge_builder.h"
#include "support/scripted_host.h"
#include "support/temp_dir.h"

namespace romsteward {
namespace {

class ConvertCommandTest : public test::TempDirTest {
protected:
  std::string m_logical = [] {
    CartridgeSpec spec;
    spec.size = 32 * 1024;
    return BuildCartridgeImage(spec);
  }();
  test::ScriptedHost m_host;
};

TEST_F(ConvertCommandTest, AnExistingOutputIsReplacedOnlyAfterYes) {
  const auto source = PathOf("game.bin");
  test::WriteTestFile(source, m_logical);
  test::WriteTestFile(PathOf("game.smd"), "keep me");

  m_host.AnswerYesNo(Answer::No).AnswerYesNo(Answer::Yes);
  EXPECT_EQ(ConvertCommand(m_host, source, Layout::Smd), std::nullopt);
  EXPECT_EQ(test::ReadTestFile(PathOf("game.smd")), "keep me");
  EXPECT_EQ(ConvertCommand(m_host, source, Layout::Smd), PathOf("game.smd"));
  EXPECT_TRUE(test::ReadTestFile(PathOf("game.smd")) == EncodeImage(m_logical, Layout::Smd));
  EXPECT_EQ(m_host.Texts().front(), "The file game.smd exists! Do you want to replace it?");
  EXPECT_TRUE(test::ReadTestFile(source) == m_logical);
}

// Nothing to do, and a name that would make the output the source itself: said, not written.
TEST_F(ConvertCommandTest, SameLayoutAndOwnNameWriteNothing) {
  const auto source = PathOf("game.bin");
  test::WriteTestFile(source, m_logical);
  EXPECT_EQ(ConvertCommand(m_host, source, Layout::Bin), std::nullopt);
  EXPECT_EQ(m_host.Events().back().icon, MessageIcon::Information);
  EXPECT_EQ(m_host.Events().back().text,
            "game.bin is already in Super Magic Drive Binary (BIN) layout.");

  const std::string smd = EncodeImage(m_logical, Layout::Smd);
  const auto misnamed = PathOf("other.bin");
  test::WriteTestFile(misnamed, smd);
  EXPECT_EQ(ConvertCommand(m_host, misnamed, Layout::Bin), std::nullopt);
  EXPECT_EQ(m_host.Events().back().icon, MessageIcon::Critical);
  EXPECT_TRUE(test::ReadTestFile(misnamed) == smd);
}

}  // namespace
}  // namespace romsteward
