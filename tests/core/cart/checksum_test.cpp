#include "core/cart/checksum.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "core/cart/checksum_commands.h"
#include "core/cart/convert.h"
#include "core/cart/detect.h"
#include "core/cart/interleave.h"
#include "core/common/strings.h"
#include "support/cart_images.h"
#include "support/scripted_host.h"
#include "support/settings_fixture.h"
#include "support/temp_dir.h"

namespace romsteward {
namespace {

// The definition, summed the slow way: big-endian words from 0x200 to the last whole block.
std::uint16_t ReferenceChecksum(std::string_view logical) {
  std::uint64_t sum = 0;
  for (std::size_t i = 0x200; i < logical.size() / kBlockSize * kBlockSize; i += 2)
    sum +=
        static_cast<unsigned char>(logical[i]) * 256u + static_cast<unsigned char>(logical[i + 1]);
  return static_cast<std::uint16_t>(sum);
}

class CalcChecksumTest : public test::TempDirTest {
protected:
  Result<std::uint16_t> Sum(const std::filesystem::path& path, Host* host = nullptr) {
    auto file = BinaryFile::Open(path);
    if (!file) return file.error();
    return CalcChecksum(*file, DetectRomFormat(*file), host);
  }
};

TEST_F(CalcChecksumTest, EveryLayoutGivesTheSumOfTheLogicalImage) {
  // Bytes all 0xFF make every partial sum as large as it gets.
  std::string saturated(80 * 1024, '\xFF');
  saturated.replace(0x100, 4, "SEGA");
  for (const std::string& logical : {test::MakeCartridge(208 * 1024, 7), saturated}) {
    const std::uint16_t expected = ReferenceChecksum(logical);
    EXPECT_EQ(ChecksumOfLogicalImage(logical), expected);
    for (const Layout layout : {Layout::Bin, Layout::Smd, Layout::Md}) {
      test::WriteImage(PathOf("game"), logical, layout);
      EXPECT_EQ(Sum(PathOf("game")).value(), expected) << LayoutCode(layout);
    }
    // The last volume is shorter; 0x000-0x1FF is left out of the first volume only.
    const auto stem = PathOf("set" + std::to_string(logical.size()));
    EXPECT_EQ(Sum(test::WriteSplitSet(stem, logical, 48 * 1024)[0]).value(), expected);
  }
}

TEST_F(CalcChecksumTest, HolesOfSparseFilesSumAsZeros) {
  // Data, a long run of zeros left as a hole, data again, and a hole up to the end.
  std::string logical = test::MakeCartridge(2 * 1024 * 1024, 5);
  std::fill(logical.begin() + 48 * 1024, logical.end() - 80 * 1024, '\0');
  std::fill(logical.end() - 16 * 1024, logical.end(), '\0');
  for (const Layout layout : {Layout::Bin, Layout::Smd, Layout::Md}) {
    const std::string image = EncodeImage(logical, layout);
    const auto path = PathOf("sparse");
    test::WriteTestFile(path, "");
    auto file = BinaryFile::Open(path, BinaryFile::Mode::ReadWrite);
    ASSERT_TRUE(file.ok());
    ASSERT_TRUE(file->Truncate(image.size()).ok());
    for (std::size_t at = 0; at < image.size(); at += 4096) {
      const std::string_view page = std::string_view(image).substr(at, 4096);
      if (page.find_first_not_of('\0') != std::string_view::npos) {
        ASSERT_TRUE(file->WriteAt(at, page).ok());
      }
    }
    EXPECT_EQ(Sum(path).value(), ReferenceChecksum(logical)) << LayoutCode(layout);
  }
}

TEST_F(CalcChecksumTest, BytesBeyondTheLastWholeBlockAreIgnored) {
  const std::string logical = test::MakeCartridge(64 * 1024, 3);
  // 16000 bytes after an SMD file's data would make its whole length one block longer.
  const std::pair<std::string, std::size_t> cases[] = {
      {logical, 100}, {logical, kBlockSize - 1}, {EncodeImage(logical, Layout::Smd), 16000}};
  for (const auto& [image, tail] : cases) {
    test::WriteTestFile(PathOf("tail"), image + std::string(tail, 'Z'));
    EXPECT_EQ(Sum(PathOf("tail")).value(), ReferenceChecksum(logical)) << tail;
  }
}

TEST_F(CalcChecksumTest, NoHeaderNoSumAndNoStrayFirstVolume) {
  const auto volumes =
      test::WriteSplitSet(PathOf("set"), test::MakeCartridge(64 * 1024), 32 * 1024);
  EXPECT_EQ(Sum(volumes[1]).value(), 0);
  test::WriteTestFile(PathOf("notes.txt"), std::string(40000, 'x'));
  EXPECT_EQ(Sum(PathOf("notes.txt")).value(), 0);
  // Outside its numbered set a first volume would be summed alone: refused instead.
  std::filesystem::rename(volumes[0], PathOf("set.smd"));
  EXPECT_FALSE(Sum(PathOf("set.smd")));
}

TEST_F(CalcChecksumTest, ProgressNamesEachVolume) {
  const auto volumes =
      test::WriteSplitSet(PathOf("set"), test::MakeCartridge(128 * 1024), 64 * 1024);
  test::ScriptedHost host;
  ASSERT_TRUE(Sum(volumes[0], &host));
  EXPECT_EQ(host.ProgressCaptions(),
            (std::vector<std::string>{"Progress", "Progress (volume 1)", "Progress (volume 2)"}));
  EXPECT_EQ(host.ProgressReports().back(), 100);
}

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
