#include "core/cart/header_repair.h"

#include <gtest/gtest.h>

#include "core/cart/convert.h"
#include "core/cart/interleave.h"
#include "support/cart_images.h"
#include "support/scripted_host.h"
#include "support/settings_fixture.h"

namespace romsteward {
namespace {

class HeaderRepairTest : public test::SettingsTest {
protected:
  static void Poke(const std::filesystem::path& path, std::size_t offset, char byte) {
    std::string bytes = test::ReadTestFile(path);
    bytes[offset] = byte;
    test::WriteTestFile(path, bytes);
  }
  static std::string CopierHeader(const std::filesystem::path& path) {
    return test::ReadTestFile(path).substr(0, kCopierHeaderSize);
  }
};

TEST_F(HeaderRepairTest, ACopierHeaderWithAWrongBlockCountIsRewritten) {
  const auto image = PathOf("game.smd");
  test::WriteImage(image, test::MakeCartridge(64 * 1024), Layout::Smd);
  Poke(image, 0, 9);
  test::ScriptedHost host;
  host.AnswerYesNo(Answer::No).AnswerYesNo(Answer::Yes);
  EXPECT_EQ(CheckEmbeddedHeader(host, Settings(), image, "game"), RepairOutcome::LeftAsIs);
  EXPECT_EQ(CopierHeader(image)[0], 9);
  EXPECT_EQ(CheckEmbeddedHeader(host, Settings(), image, "game"), RepairOutcome::Repaired);
  EXPECT_EQ(CopierHeader(image), BuildSmdHeader(4, false));
  EXPECT_EQ(host.Texts().back(), "The embedded SMD header is corrupt!\r\nDo you want to fix it?");
  EXPECT_EQ(CheckEmbeddedHeader(host, Settings(), image, "game"), RepairOutcome::Sound);
}

TEST_F(HeaderRepairTest, ASplitSetIsAskedOnceAndReadOnlyVolumesAreLeft) {
  const auto volumes =
      test::WriteSplitSet(PathOf("game"), test::MakeCartridge(128 * 1024), 32 * 1024);
  Poke(volumes[1], 0, 7);
  Poke(volumes[2], 0, 0);
  Poke(volumes[3], 2, 0x40);  // the last volume says more follow
  test::MakeReadOnly(volumes[1]);

  // Checked from a later volume, the whole set is compared all the same.
  test::ScriptedHost host;
  host.AnswerYesNo(Answer::Yes);
  EXPECT_EQ(CheckEmbeddedHeader(host, Settings(), volumes[3], "game.4"), RepairOutcome::LeftAsIs);
  EXPECT_EQ(host.Texts(),
            (std::vector<std::string>{
                "The embedded SMD header is corrupt, but you can't fix it while this "
                "file is read-only! (volume 2)",
                "The embedded SMD header is corrupt! (volume 3)\r\nDo you want to fix it?"}));
  EXPECT_EQ(CopierHeader(volumes[1])[0], 7);
  EXPECT_EQ(CopierHeader(volumes[2]), BuildSmdHeader(2, true));
  EXPECT_EQ(CopierHeader(volumes[3]), BuildSmdHeader(2, false));
}

TEST_F(HeaderRepairTest, AnInvalidSizeWarnsUntilSilencedForGood) {
  const auto image = PathOf("odd.smd");
  test::WriteTestFile(image, EncodeImage(test::MakeCartridge(64 * 1024), Layout::Smd) + "tail");
  Poke(image, 0, 3);  // the size is judged first: no copier-header question
  test::ScriptedHost host;
  host.AnswerQuestionBox(kEscolhaYes).AnswerQuestionBox(kEscolhaCancel);
  for (int i = 0; i < 3; ++i)
    EXPECT_EQ(CheckEmbeddedHeader(host, Settings(), image, "Odd.smd"), RepairOutcome::LeftAsIs);
  ASSERT_EQ(host.Events().size(), 2u) << host.Transcript();
  const QuestionBox& box = host.Events()[0].box;
  EXPECT_EQ(box.title, "Warning!");
  EXPECT_EQ(
      box.text,
      "This ROM has an unfixable error (invalid rom size), and probably will not work right.");
  EXPECT_TRUE(box.no.hidden);
  Reopen();
  EXPECT_EQ(Settings().GetSetting(kSectionCartridge, "Odd.smd.shutup"), "1");
  EXPECT_EQ(CheckEmbeddedHeader(host, Settings(), image, "Odd.smd"), RepairOutcome::LeftAsIs);
  EXPECT_EQ(CopierHeader(image)[0], 3);
}

}  // namespace
}  // namespace romsteward
