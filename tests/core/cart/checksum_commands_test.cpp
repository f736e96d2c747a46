#include "core/cart/checksum_commands.h"

#include <gtest/gtest.h>

#include "core/cart/checksum.h"
#include "core/common/strings.h"
#include "support/cart_images.h"
#include "support/scripted_host.h"
#include "support/settings_fixture.h"

namespace romsteward {
namespace {

constexpr std::string_view kEntry = "Harbor Lights (U).smd";

// A cartridge whose header stores `stored` while its contents sum to `actual`: the first word
// summed is nudged until the sum comes out right.
std::string CartridgeWithChecksums(std::uint16_t stored, std::uint16_t actual) {
  std::string logical = test::MakeCartridge(64 * 1024, 5);
  const auto word = static_cast<std::uint16_t>(BytesToNumber(logical.substr(0x200, 2)) + actual -
                                               ChecksumOfLogicalImage(logical));
  logical.replace(0x200, 2, NumberToBytes(word, 2));
  return logical.replace(0x18E, 2, NumberToBytes(stored, 2));
}

class ChecksumCommandsTest : public test::SettingsTest {
protected:
  std::filesystem::path WriteSmd(std::uint16_t stored, std::uint16_t actual) {
    test::WriteImage(PathOf("image.smd"), CartridgeWithChecksums(stored, actual), Layout::Smd);
    return PathOf("image.smd");
  }
  static std::uint16_t Stored(const std::filesystem::path& path) {
    return ReadChecksumState(path).value().stored;
  }
};

TEST_F(ChecksumCommandsTest, EachAnswerDoesItsPart) {
  test::ScriptedHost correct;
  CheckCrc(correct, Settings(), WriteSmd(0x00FF, 0x00FF), kEntry);
  EXPECT_EQ(correct.Texts(), std::vector<std::string>{"The CRC FF is correct!"});

  // Yes fixes, No and a closed box keep, "Fix 'n Save" keeps a backup and fixes.
  for (const auto& [answer, fixed] : {std::pair{6, true}, {7, false}, {0, false}, {2, true}}) {
    const auto image = WriteSmd(0x1234, 0xBEEF);
    test::ScriptedHost host;
    host.AnswerQuestionBox(answer);
    CheckCrc(host, Settings(), image, kEntry);
    const QuestionBox box = host.EventsOf(test::PromptKind::QuestionBox).at(0).box;
    EXPECT_EQ(box.title, "CRC error!");
    EXPECT_EQ(box.text, "The CRC 1234 is wrong! It should be BEEF. Do you want to fix it?");
    EXPECT_EQ(Stored(image), fixed ? 0xBEEF : 0x1234) << answer;
    EXPECT_EQ(IsRestoreCrcEnabled(Settings(), kEntry), answer == 2) << answer;
  }
}

TEST_F(ChecksumCommandsTest, BackupAndRestoreRoundTripKeepsZeroBytes) {
  // A split set: the checksum lives in the first volume, interleaved.
  const auto volumes =
      test::WriteSplitSet(PathOf("game"), CartridgeWithChecksums(0x0012, 0xA5A5), 32 * 1024);
  test::ScriptedHost host;
  host.AnswerQuestionBox(kEscolhaCancel).AnswerYesNo(Answer::No).AnswerYesNo(Answer::Yes);
  CheckCrc(host, Settings(), volumes[0], "game.1");
  Reopen();  // the backup outlives the program
  EXPECT_EQ(ReadChecksumBackup(Settings(), "GAME.1").value(), std::string("\x00\x12", 2));

  RestoreCrc(host, Settings(), volumes[0], "game.1");  // "No": nothing happens
  EXPECT_EQ(Stored(volumes[0]), 0xA5A5);
  EXPECT_TRUE(IsRestoreCrcEnabled(Settings(), "game.1"));
  RestoreCrc(host, Settings(), volumes[0], "game.1");
  EXPECT_EQ(host.Texts().back(), "Are you sure you want to restore the old CRC?");
  EXPECT_EQ(Stored(volumes[0]), 0x0012);
  EXPECT_FALSE(IsRestoreCrcEnabled(Settings(), "game.1"));
}

TEST_F(ChecksumCommandsTest, NothingIsWrittenWhereItCannotOrMustNotBe) {
  const auto image = WriteSmd(0x1234, 0xBEEF);
  const std::string before = test::ReadTestFile(image);
  test::MakeReadOnly(image);
  test::ScriptedHost host;
  host.AnswerQuestionBox(kEscolhaCancel).AnswerYesNo(Answer::Yes).AnswerQuestionBox(kEscolhaYes);
  CheckCrc(host, Settings(), image, kEntry);
  EXPECT_FALSE(IsRestoreCrcEnabled(Settings(), kEntry));  // no backup of an unchanged value
  RestoreCrc(host, Settings(), image, kEntry);
  EXPECT_EQ(host.Texts().back(), "Error in system registry! Is it corrupt?");
  EXPECT_EQ(test::ReadTestFile(image), before);

  // A later volume's bytes at 0x18E are ROM data: its "wrong" checksum is never written.
  const auto volumes =
      test::WriteSplitSet(PathOf("set"), test::MakeCartridge(64 * 1024), 32 * 1024);
  const std::string volume = test::ReadTestFile(volumes[1]);
  CheckCrc(host, Settings(), volumes[1], "set.2");
  EXPECT_EQ(test::ReadTestFile(volumes[1]), volume);
}

}  // namespace
}  // namespace romsteward
