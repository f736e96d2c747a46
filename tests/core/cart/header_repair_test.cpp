#include "core/cart/header_repair.h"

#include <gtest/gtest.h>

#include "core/cart/interleave.h"
#include "core/settings/app_settings.h"
#include "store_fixture.h"
#include "support/cart_images.h"
#include "support/scripted_host.h"

namespace romsteward {
namespace {

constexpr std::string_view kCorrupt =
    "The embedded SMD header is corrupt!\r\nDo you want to fix it?";

class HeaderRepairTest : public test::StoreTest {
protected:
  static void Poke(const std::filesystem::path& path, std::size_t offset, char byte) {
    std::string bytes = test::ReadTestFile(path);
    bytes[offset] = byte;
    test::WriteTestFile(path, bytes);
  }
  static std::string CopierHeader(const std::filesystem::path& path) {
    return test::ReadTestFile(path).substr(0, kCopierHeaderSize);
  }
  RepairOutcome Check(test::ScriptedHost& host, const std::filesystem::path& image,
                      std::string_view entry = "game") {
    return CheckEmbeddedHeader(host, Settings(), image, entry);
  }
};

TEST_F(HeaderRepairTest, ACopierHeaderWithAWrongBlockCountIsRewritten) {
  const auto image = PathOf("game.smd");
  test::WriteImage(image, test::MakeCartridge(64 * 1024), Layout::Smd);
  const std::string good = CopierHeader(image);
  Poke(image, 0, 9);

  test::ScriptedHost declined;
  declined.AnswerYesNo(Answer::No);
  EXPECT_EQ(Check(declined, image), RepairOutcome::LeftAsIs);
  EXPECT_EQ(declined.Texts(), std::vector<std::string>{std::string(kCorrupt)});
  EXPECT_EQ(CopierHeader(image)[0], 9);

  test::ScriptedHost accepted;
  accepted.AnswerYesNo(Answer::Yes);
  EXPECT_EQ(Check(accepted, image), RepairOutcome::Repaired);
  EXPECT_EQ(CopierHeader(image), good);
  EXPECT_EQ(CopierHeader(image), BuildSmdHeader(4, false));

  test::ScriptedHost quiet;
  EXPECT_EQ(Check(quiet, image), RepairOutcome::Sound);
  EXPECT_TRUE(quiet.Events().empty());
}

TEST_F(HeaderRepairTest, ASplitSetIsAskedOnceForAllItsVolumes) {
  const auto volumes =
      test::WriteSplitSet(PathOf("game"), test::MakeCartridge(96 * 1024), 32 * 1024);
  ASSERT_EQ(volumes.size(), 3u);
  Poke(volumes[1], 0, 0);     // block count
  Poke(volumes[2], 2, 0x40);  // the last volume says more follow

  // Checked from a later volume, the whole set is compared all the same.
  test::ScriptedHost host;
  host.AnswerYesNo(Answer::Yes);
  EXPECT_EQ(Check(host, volumes[2]), RepairOutcome::Repaired);
  EXPECT_EQ(host.Texts(),
            std::vector<std::string>{
                "The embedded SMD header is corrupt! (volume 2)\r\nDo you want to fix it?"});
  EXPECT_EQ(CopierHeader(volumes[1]), BuildSmdHeader(2, true));
  EXPECT_EQ(CopierHeader(volumes[2]), BuildSmdHeader(2, false));
}

TEST_F(HeaderRepairTest, AReadOnlyVolumeIsReportedAndTheOthersStillFixed) {
  const auto volumes =
      test::WriteSplitSet(PathOf("game"), test::MakeCartridge(96 * 1024), 32 * 1024);
  Poke(volumes[1], 0, 7);
  Poke(volumes[2], 0, 7);
  test::MakeReadOnly(volumes[1]);

  test::ScriptedHost host;
  host.AnswerYesNo(Answer::Yes);
  EXPECT_EQ(Check(host, volumes[0]), RepairOutcome::LeftAsIs);
  ASSERT_EQ(host.Events().size(), 2u) << host.Transcript();
  EXPECT_EQ(host.Events()[0].text,
            "The embedded SMD header is corrupt, but you can't fix it while this file is "
            "read-only! (volume 2)");
  EXPECT_EQ(host.Events()[0].icon, MessageIcon::Critical);
  EXPECT_EQ(host.Events()[1].text,
            "The embedded SMD header is corrupt! (volume 3)\r\nDo you want to fix it?");
  EXPECT_EQ(CopierHeader(volumes[1])[0], 7);
  EXPECT_EQ(CopierHeader(volumes[2]), BuildSmdHeader(2, false));
}

TEST_F(HeaderRepairTest, AnInvalidSizeWarnsUntilSilencedForGood) {
  const auto image = PathOf("odd.smd");
  test::WriteImage(image, test::MakeCartridge(64 * 1024), Layout::Smd);
  test::WriteTestFile(image, test::ReadTestFile(image) + std::string(100, '\0'));
  Poke(image, 0, 3);  // a wrong copier header as well: the size decides first

  for (const int answer : {kEscolhaYes, kEscolhaClosed}) {
    test::ScriptedHost host;
    host.AnswerQuestionBox(answer);
    EXPECT_EQ(Check(host, image, "Odd (J).smd"), RepairOutcome::LeftAsIs);
    ASSERT_EQ(host.Events().size(), 1u) << host.Transcript();
    const QuestionBox& box = host.Events()[0].box;
    EXPECT_EQ(box.title, "Warning!");
    EXPECT_EQ(box.text,
              "This ROM has an unfixable error (invalid rom size), and probably will not work "
              "right.");
    EXPECT_EQ(box.yes.caption, "&Ok");
    EXPECT_TRUE(box.no.hidden);
    EXPECT_EQ(box.cancel.caption, "&Shut Up!");
  }

  test::ScriptedHost silencing;
  silencing.AnswerQuestionBox(kEscolhaCancel);
  Check(silencing, image, "Odd (J).smd");
  Reopen();
  EXPECT_EQ(Settings().GetSetting(kSectionCartridge, "Odd (J).smd.shutup"), "1");
  test::ScriptedHost later;
  EXPECT_EQ(Check(later, image, "Odd (J).smd"), RepairOutcome::LeftAsIs);
  EXPECT_TRUE(later.Events().empty()) << later.Transcript();
  EXPECT_EQ(CopierHeader(image)[0], 3);  // nothing was written

  // Silencing is per list entry: another name for the same file still warns.
  test::ScriptedHost other;
  other.AnswerQuestionBox(kEscolhaYes);
  Check(other, image, "Odd (J) [copy].smd");
  EXPECT_EQ(other.Events().size(), 1u);
}

TEST_F(HeaderRepairTest, PlainAndWholeImagesPassWithoutAWord) {
  const std::string logical = test::MakeCartridge(48 * 1024);
  test::WriteImage(PathOf("a.bin"), logical, Layout::Bin);
  test::WriteImage(PathOf("a.md"), logical, Layout::Md);
  test::WriteImage(PathOf("a.smd"), logical, Layout::Smd);
  test::WriteTestFile(PathOf("notes.txt"), "not an image, not a whole block");
  for (const char* name : {"a.bin", "a.md", "a.smd", "notes.txt"}) {
    test::ScriptedHost host;
    EXPECT_EQ(Check(host, PathOf(name)), RepairOutcome::Sound) << name;
  }
  test::WriteTestFile(PathOf("a.bin"), logical + "x");
  test::ScriptedHost host;
  host.AnswerQuestionBox(kEscolhaYes);
  EXPECT_EQ(Check(host, PathOf("a.bin")), RepairOutcome::LeftAsIs);
}

}  // namespace
}  // namespace romsteward
