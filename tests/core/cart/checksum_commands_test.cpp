#include "core/cart/checksum_commands.h"

#include <gtest/gtest.h>

#include "core/cart/checksum.h"
#include "core/common/strings.h"
#include "core/settings/app_settings.h"
#include "store_fixture.h"
#include "support/cart_images.h"
#include "support/scripted_host.h"

namespace romsteward {
namespace {

constexpr std::string_view kEntry = "Harbor Lights (U).smd";
constexpr std::string_view kRegistryError = "Error in system registry! Is it corrupt?";

// A cartridge whose header stores `stored` while its contents sum to `actual`: the first word
// summed is nudged until the sum comes out right.
std::string CartridgeWithChecksums(std::uint16_t stored, std::uint16_t actual) {
  std::string logical = test::MakeCartridge(64 * 1024, 5);
  const auto word = static_cast<std::uint16_t>(BytesToNumber(logical.substr(0x200, 2)) + actual -
                                               ChecksumOfLogicalImage(logical));
  logical.replace(0x200, 2, NumberToBytes(word, 2));
  logical.replace(0x18E, 2, NumberToBytes(stored, 2));
  return logical;
}

class ChecksumCommandsTest : public test::StoreTest {
protected:
  std::filesystem::path WriteSmd(std::uint16_t stored, std::uint16_t actual) {
    const std::filesystem::path path = PathOf("image.smd");
    test::WriteImage(path, CartridgeWithChecksums(stored, actual), Layout::Smd);
    return path;
  }
  ChecksumState StateOf(const std::filesystem::path& path) {
    auto state = ReadChecksumState(path);
    EXPECT_TRUE(state) << state.error().message;
    return state ? *state : ChecksumState{};
  }
};

TEST_F(ChecksumCommandsTest, ACorrectChecksumIsReportedInShortHexadecimal) {
  const auto image = WriteSmd(0x00FF, 0x00FF);
  test::ScriptedHost host;
  CheckCrc(host, Settings(), image, kEntry);
  ASSERT_EQ(host.Events().size(), 1u) << host.Transcript();
  EXPECT_EQ(host.Events()[0].text, "The CRC FF is correct!");
  EXPECT_EQ(host.Events()[0].icon, MessageIcon::Exclamation);
}

TEST_F(ChecksumCommandsTest, AWrongChecksumAsksAndEachAnswerDoesItsPart) {
  struct Case {
    int answer;
    bool fixed;
    bool backedUp;
  };
  for (const Case c :
       {Case{6, true, false}, Case{7, false, false}, Case{2, true, true}, Case{0, false, false}}) {
    SCOPED_TRACE(c.answer);
    const auto image = WriteSmd(0x1234, 0xBEEF);
    const std::string before = test::ReadTestFile(image);
    test::ScriptedHost host;
    host.AnswerQuestionBox(c.answer);
    CheckCrc(host, Settings(), image, kEntry);

    const auto boxes = host.EventsOf(test::PromptKind::QuestionBox);
    ASSERT_EQ(boxes.size(), 1u) << host.Transcript();
    const QuestionBox& box = boxes[0].box;
    EXPECT_EQ(box.title, "CRC error!");
    EXPECT_EQ(box.text, "The CRC 1234 is wrong! It should be BEEF. Do you want to fix it?");
    EXPECT_EQ(box.yes.caption, "&Yes");
    EXPECT_EQ(box.cancel.caption, "&Fix 'n Save");
    EXPECT_EQ(box.cancel.tooltip, "Fixes CRC and backup the old one");
    EXPECT_FALSE(box.no.hidden);

    EXPECT_EQ(StateOf(image).stored, c.fixed ? 0xBEEF : 0x1234);
    if (!c.fixed) {
      EXPECT_EQ(test::ReadTestFile(image), before);
    }
    EXPECT_EQ(IsRestoreCrcEnabled(Settings(), kEntry), c.backedUp);
    if (c.backedUp) {
      ASSERT_TRUE(DeleteChecksumBackup(Settings(), kEntry));
    }
  }
}

TEST_F(ChecksumCommandsTest, BackupAndRestoreRoundTripKeepsZeroBytes) {
  // Both stored bytes 0x00 in one case, the high one in the other; MD and split layouts put
  // them in different places of the file.
  for (const std::uint16_t stored : {std::uint16_t{0x0000}, std::uint16_t{0x0012}}) {
    SCOPED_TRACE(stored);
    const auto volumes =
        test::WriteSplitSet(PathOf("game"), CartridgeWithChecksums(stored, 0xA5A5), 32 * 1024);
    test::ScriptedHost host;
    host.AnswerQuestionBox(kEscolhaCancel);
    CheckCrc(host, Settings(), volumes[0], "game.1");
    EXPECT_EQ(StateOf(volumes[0]).stored, 0xA5A5);
    Reopen();  // the backup outlives the program
    EXPECT_EQ(ReadChecksumBackup(Settings(), "GAME.1").value(), NumberToBytes(stored, 2));
    EXPECT_TRUE(IsRestoreCrcEnabled(Settings(), "game.1"));

    host.AnswerYesNo(Answer::No);
    RestoreCrc(host, Settings(), volumes[0], "game.1");
    EXPECT_EQ(StateOf(volumes[0]).stored, 0xA5A5);
    EXPECT_TRUE(IsRestoreCrcEnabled(Settings(), "game.1"));

    host.AnswerYesNo(Answer::Yes);
    RestoreCrc(host, Settings(), volumes[0], "game.1");
    EXPECT_EQ(StateOf(volumes[0]).stored, stored);
    EXPECT_FALSE(IsRestoreCrcEnabled(Settings(), "game.1"));
    EXPECT_EQ(host.EventsOf(test::PromptKind::YesNo).back().text,
              "Are you sure you want to restore the old CRC?");
  }
}

TEST_F(ChecksumCommandsTest, ALaterSplitVolumeHasNoHeaderToWrite) {
  const auto volumes =
      test::WriteSplitSet(PathOf("game"), test::MakeCartridge(64 * 1024), 32 * 1024);
  const std::string before = test::ReadTestFile(volumes[1]);
  test::ScriptedHost host;
  host.AnswerQuestionBox(kEscolhaYes);
  CheckCrc(host, Settings(), volumes[1], "game.2");
  EXPECT_EQ(host.EventsOf(test::PromptKind::QuestionBox).size(), 1u) << host.Transcript();
  EXPECT_EQ(test::ReadTestFile(volumes[1]), before);
}

TEST_F(ChecksumCommandsTest, RestoringWithoutABackupWritesNothing) {
  const auto image = WriteSmd(0x1234, 0xBEEF);
  const std::string before = test::ReadTestFile(image);
  test::ScriptedHost host;
  host.AnswerYesNo(Answer::Yes);
  RestoreCrc(host, Settings(), image, kEntry);
  EXPECT_EQ(host.Texts().back(), kRegistryError);
  EXPECT_EQ(test::ReadTestFile(image), before);
}

TEST_F(ChecksumCommandsTest, AReadOnlyImageIsNeverWritten) {
  const auto image = WriteSmd(0x1234, 0xBEEF);
  const std::string before = test::ReadTestFile(image);
  test::MakeReadOnly(image);

  test::ScriptedHost host;
  host.AnswerQuestionBox(kEscolhaCancel);
  CheckCrc(host, Settings(), image, kEntry);
  EXPECT_EQ(test::ReadTestFile(image), before);
  // No backup of a value that was never replaced.
  EXPECT_FALSE(IsRestoreCrcEnabled(Settings(), kEntry));
  EXPECT_EQ(host.Events().back().icon, MessageIcon::Critical);

  // A backup kept earlier stays while the image cannot take it back.
  ASSERT_TRUE(KeepChecksumBackup(Settings(), kEntry, 0x0102));
  host.AnswerYesNo(Answer::Yes);
  RestoreCrc(host, Settings(), image, kEntry);
  EXPECT_EQ(test::ReadTestFile(image), before);
  EXPECT_TRUE(IsRestoreCrcEnabled(Settings(), kEntry));
}

}  // namespace
}  // namespace romsteward
