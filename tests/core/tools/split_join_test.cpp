#include "core/tools/split_join.h"

#include <gtest/gtest.h>

#include "core/cart/convert.h"
#include "core/cart/interleave.h"
#include "core/demo/cartridge_builder.h"
#include "core/tools/split_size_chooser.h"
#include "support/file_size_limit.h"
#include "support/scripted_host.h"
#include "support/temp_dir.h"

namespace romsteward {
namespace {

using test::PromptKind;
using test::ReadTestFile;
using test::ScriptedHost;
using test::WriteTestFile;
using Texts = std::vector<std::string>;
namespace fs = std::filesystem;

constexpr std::size_t kMbit = 131072;

// Bytes that differ from place to place, so a misplaced copy shows.
std::string Filler(std::size_t size, unsigned seed) {
  std::string bytes(size, '\0');
  for (std::size_t i = 0; i < size; ++i)
    bytes[i] = static_cast<char>((i * 31 + seed * 7) >> 3);
  return bytes;
}

std::string Smd(std::size_t dataBytes, bool more = false) {
  return BuildSmdHeader(static_cast<std::int64_t>((dataBytes + 512) / kBlockSize), more) +
         Filler(dataBytes, 1);
}

class SplitJoinTest : public test::TempDirTest {
protected:
  fs::path Game(std::string_view extension, std::optional<std::string> bytes = {}) {
    const fs::path path = PathOf("GAME." + std::string(extension));
    if (bytes) WriteTestFile(path, *bytes);
    return path;
  }
  std::string Read(std::string_view extension) { return ReadTestFile(Game(extension)); }
  std::size_t FileCount() {
    return static_cast<std::size_t>(std::distance(fs::directory_iterator(Dir()), {}));
  }
  ScriptedHost m_host;
};

TEST_F(SplitJoinTest, FourMegabitsAtOneMakeFourDetectableVolumesThatJoinBackExactly) {
  CartridgeSpec spec;
  spec.size = 4 * kMbit;
  const std::string image = EncodeImage(BuildCartridgeImage(spec), Layout::Smd);
  const fs::path path = Game("smd", image);
  EXPECT_EQ(SplitImage(m_host, path, 1), CommandResult::Done);
  for (int v = 1; v <= 4; ++v) {
    const std::string volume = Read(std::to_string(v));
    EXPECT_EQ(volume, BuildSmdHeader(8, v < 4) + image.substr(512 + (v - 1) * kMbit, kMbit)) << v;
  }

  m_host.AnswerYesNo(Answer::Yes);  // the original GAME.smd is in the way
  EXPECT_EQ(JoinRom(m_host, Game("3")), CommandResult::Done);
  EXPECT_EQ(m_host.Texts(),
            (Texts{"The ROM was splitted in 4 files",
                   "The file GAME.smd exists! Do you want to delete it?", "4 file(s) joined"}));
  EXPECT_EQ(m_host.Events()[1].icon, MessageIcon::Critical);
  EXPECT_EQ(ReadTestFile(path), image);
}

TEST_F(SplitJoinTest, AShortLastVolumeIsAskedAboutFromHalfAPartAndOtherwiseWrittenOverInPlace) {
  Game("3", "old");
  m_host.AnswerYesNo(Answer::Yes);
  EXPECT_EQ(SplitImage(m_host, Game("smd", Smd(2 * kMbit + kMbit / 2)), 1), CommandResult::Done);
  EXPECT_EQ(m_host.Texts().at(0), "The file '" + Game("3").string() + "' exists! Overwrite?");
  EXPECT_EQ(Read("3"), BuildSmdHeader(4, false) + Filler(3 * kMbit, 1).substr(2 * kMbit, 65536));

  const std::string old(200000, 'Z');
  Game("3", old);
  fs::remove(Game("1"));
  fs::remove(Game("2"));
  ScriptedHost quiet;
  const std::string image = Smd(2 * kMbit + 32768);
  EXPECT_EQ(SplitImage(quiet, Game("smd", image), 1), CommandResult::Done);
  EXPECT_EQ(Read("3"),
            BuildSmdHeader(2, false) + image.substr(512 + 2 * kMbit) + old.substr(512 + 32768));
}

TEST_F(SplitJoinTest, NothingIsWrittenForAnImageOfOnePartASizeBelowOneOrANoToAVolume) {
  const fs::path onePart = Game("smd", Smd(kMbit));
  EXPECT_EQ(SplitImage(m_host, onePart, 1), CommandResult::Failed);
  EXPECT_EQ(SplitImage(m_host, onePart, 0), CommandResult::Cancelled);
  EXPECT_EQ(SplitImage(m_host, onePart, -3), CommandResult::Cancelled);
  EXPECT_EQ(m_host.Texts(), Texts{"You just can split ROMs in parts smaller than it."});
  EXPECT_EQ(FileCount(), 1u);

  Game("1", "one");
  Game("2", "two");
  m_host.AnswerYesNo(Answer::Yes).AnswerYesNo(Answer::No);
  EXPECT_EQ(SplitImage(m_host, Game("smd", Smd(4 * kMbit)), 1), CommandResult::Cancelled);
  EXPECT_FALSE(fs::exists(Game("1")));  // Yes deleted it
  EXPECT_EQ(Read("2"), "two");
  EXPECT_EQ(FileCount(), 2u);
}

TEST_F(SplitJoinTest, AVolumeThatCannotBeWrittenTakesBackTheWholeSet) {
  const std::string old(400000, 'Z');
  Game("3", old);
  {
    test::FileSizeLimit limit(300000);
    EXPECT_EQ(SplitImage(m_host, Game("smd", Smd(2 * kMbit + 16384)), 1), CommandResult::Failed);
  }
  EXPECT_NE(m_host.Texts().at(0).find("GAME.3"), std::string::npos) << m_host.Transcript();
  EXPECT_EQ(FileCount(), 2u);
  EXPECT_EQ(Read("3"), old);
}

TEST_F(SplitJoinTest, SplitRomTakesItsSizeFromTheChooserWhichStaysOpenAfterARefusal) {
  m_host.AnswerSplitSize(33).AnswerSplitSize(2).AnswerSplitSize(std::nullopt);
  const fs::path path = Game("smd", Smd(4 * kMbit));
  EXPECT_EQ(SplitRom(m_host, path), CommandResult::Done);
  EXPECT_EQ(m_host.Events().at(0).title, " Select split size (rom size: 4 Mbit)");
  EXPECT_EQ(m_host.Texts().back(), "The ROM was splitted in 2 files");
  EXPECT_EQ(SplitRom(m_host, path), CommandResult::Cancelled);
}

TEST_F(SplitJoinTest, JoinRefusesAGapAndZeroesTheBlockCountAbove255Blocks) {
  // The first volume says more follow, and the second is missing: nothing is joined.
  Game("1", Smd(kMbit, true));
  Game("3", Smd(kMbit));
  EXPECT_EQ(JoinRom(m_host, Game("1")), CommandResult::Failed);
  EXPECT_NE(m_host.Texts().back().find("there is no " + PathOf("GAME.2").string()),
            std::string::npos)
      << m_host.Transcript();
  EXPECT_FALSE(fs::exists(PathOf("GAME.smd")));

  // 512 + 255 blocks is larger than 255 blocks.
  Game("1", Smd(128 * kBlockSize, true));
  Game("2", Smd(127 * kBlockSize));
  fs::remove(Game("3"));
  fs::remove(Game("smd"));
  ASSERT_EQ(JoinRom(m_host, Game("2")), CommandResult::Done);
  const std::string joined = Read("smd");
  ASSERT_EQ(joined.size(), 512 + 255 * kBlockSize);
  EXPECT_EQ(joined.substr(0, 512), BuildSmdHeader(0, false));
}

TEST_F(SplitJoinTest, AJoinThatFailsOrIsDeclinedKeepsTheOldTargetAndNoTemporaryFile) {
  Game("1", Smd(kMbit, true));
  Game("2", Smd(kMbit));
  Game("smd", "old");
  m_host.AnswerYesNo(Answer::Yes).AnswerYesNo(Answer::No);
  {
    test::FileSizeLimit limit(kMbit);
    EXPECT_EQ(JoinRom(m_host, Game("1")), CommandResult::Failed);
  }
  EXPECT_NE(m_host.Texts().back().find("GAME.smd"), std::string::npos) << m_host.Transcript();
  EXPECT_EQ(JoinRom(m_host, Game("2")), CommandResult::Cancelled);
  EXPECT_EQ(FileCount(), 3u);
  EXPECT_EQ(Read("smd"), "old");
  EXPECT_EQ(JoinRom(m_host, PathOf("OTHER.2")), CommandResult::Failed);  // no first volume
}

TEST_F(SplitJoinTest, JoinFilesAppendsInTheOrderChosenAndWritesNothingOnAMissingFile) {
  WriteTestFile(PathOf("a"), "AAA");
  WriteTestFile(PathOf("c"), "C");
  const std::string dest = PathOf("out").string();
  m_host.AnswerSaveFile(dest)
      .AnswerOpenFiles({PathOf("c").string(), PathOf("a").string()})
      .AnswerSaveFile(dest)
      .AnswerOpenFiles({PathOf("a").string()})
      .AnswerSaveFile(std::nullopt);
  EXPECT_EQ(JoinFiles(m_host, Dir().string()), CommandResult::Done);
  EXPECT_EQ(ReadTestFile(dest), "CAAA");
  EXPECT_EQ(JoinFiles(m_host, Dir().string()), CommandResult::Done);  // a one-file answer
  EXPECT_EQ(ReadTestFile(dest), "AAA");
  EXPECT_EQ(JoinFiles(m_host, Dir().string()), CommandResult::Cancelled);
  EXPECT_EQ(m_host.Texts(), (Texts{"2 files were joined!", "1 files were joined!"}));
  EXPECT_EQ(m_host.EventsOf(PromptKind::SaveFile).at(0).title, "Choose a destination file");
  EXPECT_EQ(m_host.EventsOf(PromptKind::OpenFiles).at(0).dialog.initialDir, Dir().string());

  EXPECT_EQ(JoinFilesInto(m_host, dest, {PathOf("c").string(), PathOf("gone").string()}),
            CommandResult::Failed);
  EXPECT_NE(m_host.Texts().back().find("gone"), std::string::npos);
  EXPECT_EQ(ReadTestFile(dest), "AAA");
}

TEST(SplitSizeChooser, OptionsGiveTheirSizeAndTheCustomFieldTakesDigitsUpTo32) {
  SplitSizeChooser chooser(24);
  EXPECT_EQ(chooser.Caption(), " Select split size (rom size: 24 Mbit)");
  chooser.SelectOption(11);
  EXPECT_EQ(chooser.Accept().value(), 12);

  chooser.SetCustomText("32");
  EXPECT_EQ(chooser.Accept().value(), 32);
  chooser.SpinUp();
  ASSERT_FALSE(chooser.Accept().ok());
  EXPECT_EQ(chooser.Accept().error().message,
            "As the maximum ROM size for Genesis was 32 Megabits, there is no reason for a split "
            "with that size");
  chooser.SetCustomText("99999999999999999999");  // saturates instead of wrapping below 32
  EXPECT_FALSE(chooser.Accept().ok());

  // The custom field takes digits only and spins past zero.
  chooser.SetCustomText("");
  chooser.SelectOption(5);
  for (const char key : std::string("1a-2 .\b\b\b9"))
    chooser.TypeKey(key);
  EXPECT_EQ(chooser.CustomText(), "9");
  // Typing in the field means the custom size, whatever option was selected before.
  EXPECT_EQ(chooser.SelectedOption(), SplitSizeChooser::kCustomOption);

  chooser.SetCustomText("");
  EXPECT_EQ(chooser.Accept().value(), 0);
  chooser.SpinDown();
  EXPECT_EQ(chooser.CustomText(), "-1");
  EXPECT_EQ(chooser.Accept().value(), -1);  // passes the chooser; the split then ends
}

}  // namespace
}  // namespace romsteward
