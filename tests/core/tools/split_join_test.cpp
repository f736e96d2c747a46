#include "core/tools/split_join.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "core/cart/convert.h"
#include "core/cart/detect.h"
#include "core/cart/interleave.h"
#include "core/common/binary_file.h"
#include "core/common/strings.h"
#include "core/demo/cartridge_builder.h"
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

constexpr std::size_t kMbit = 131072;

// Bytes that differ from position to position, so a misplaced copy shows.
std::string Filler(std::size_t size, unsigned seed) {
  std::string bytes(size, '\0');
  for (std::size_t i = 0; i < size; ++i)
    bytes[i] = static_cast<char>((i * 31 + seed * 7) >> 3);
  return bytes;
}

// An SMD image of a real cartridge of `kib` KiB.
std::string SmdCartridge(std::size_t kib) {
  CartridgeSpec spec;
  spec.size = kib * 1024;
  return EncodeImage(BuildCartridgeImage(spec), Layout::Smd);
}

std::string SmdOfData(std::size_t dataBytes) {
  return BuildSmdHeader(static_cast<std::int64_t>((dataBytes + 512) / kBlockSize), false) +
         Filler(dataBytes, 1);
}

class SplitJoinTest : public test::TempDirTest {
protected:
  std::filesystem::path Image(std::string_view bytes) {
    const auto path = PathOf("GAME.smd");
    WriteTestFile(path, bytes);
    return path;
  }
  std::string Volume(int n) { return ReadTestFile(PathOf("GAME." + std::to_string(n))); }
  bool Has(std::string_view name) { return std::filesystem::exists(PathOf(name)); }
  std::vector<std::string> DirEntries() {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(Dir()))
      names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
  }
};

TEST_F(SplitJoinTest, FourMegabitsAtOneMakeFourDetectableVolumesThatJoinBackExactly) {
  const std::string image = SmdCartridge(512);
  ASSERT_EQ(image.size(), 512 + 4 * kMbit);
  const auto path = Image(image);

  ScriptedHost host;
  EXPECT_EQ(SplitImage(host, path, 1), CommandResult::Done);
  EXPECT_EQ(host.Texts(), Texts{"The ROM was splitted in 4 files"});
  for (int v = 1; v <= 4; ++v) {
    const std::string volume = Volume(v);
    ASSERT_EQ(volume.size(), 512 + kMbit) << v;
    EXPECT_EQ(volume.substr(0, 512), BuildSmdHeader(8, v < 4)) << v;
    EXPECT_EQ(volume.substr(512), image.substr(512 + (v - 1) * kMbit, kMbit)) << v;
  }
  auto first = BinaryFile::Open(PathOf("GAME.1"));
  auto later = BinaryFile::Open(PathOf("GAME.3"));
  EXPECT_EQ(DetectRomFormat(*first), Layout::SplitFirst);
  EXPECT_EQ(DetectRomFormat(*later), Layout::SplitLater);

  // Joined from a later volume, over the original (asked about first).
  ScriptedHost joiner;
  joiner.AnswerYesNo(Answer::Yes);
  EXPECT_EQ(JoinRom(joiner, PathOf("GAME.3")), CommandResult::Done);
  EXPECT_EQ(joiner.Texts(),
            (Texts{"The file GAME.smd exists! Do you want to delete it?", "4 file(s) joined"}));
  EXPECT_EQ(joiner.Events()[0].icon, MessageIcon::Critical);
  EXPECT_EQ(joiner.Events()[1].icon, MessageIcon::Information);
  EXPECT_EQ(ReadTestFile(path), image);
}

TEST_F(SplitJoinTest, AShortLastVolumeCountsItsOwnBlocksAndAtHalfAPartIsAskedAbout) {
  const auto path = Image(SmdOfData(2 * kMbit + kMbit / 2));
  WriteTestFile(PathOf("GAME.3"), "old");
  ScriptedHost host;
  host.AnswerYesNo(Answer::Yes);
  EXPECT_EQ(SplitImage(host, path, 1), CommandResult::Done);
  EXPECT_EQ(host.Texts(), (Texts{"The file '" + PathOf("GAME.3").string() + "' exists! Overwrite?",
                                 "The ROM was splitted in 3 files"}));
  EXPECT_EQ(Volume(2).substr(0, 3), std::string("\x08\x03\x40", 3));
  const std::string last = Volume(3);
  ASSERT_EQ(last.size(), 512 + 65536);
  EXPECT_EQ(last.substr(0, 512), BuildSmdHeader(4, false));
}

TEST_F(SplitJoinTest, AShortLastVolumeUnderHalfAPartIsWrittenOverInPlaceWithoutAQuestion) {
  const std::string image = SmdOfData(2 * kMbit + 32768);
  const auto path = Image(image);
  const std::string old(200000, 'Z');
  WriteTestFile(PathOf("GAME.3"), old);
  ScriptedHost host;
  EXPECT_EQ(SplitImage(host, path, 1), CommandResult::Done);
  const std::string last = Volume(3);
  ASSERT_EQ(last.size(), old.size());
  EXPECT_EQ(last.substr(0, 512), BuildSmdHeader(2, false));
  EXPECT_EQ(last.substr(512, 32768), image.substr(512 + 2 * kMbit));
  EXPECT_EQ(last.substr(512 + 32768), old.substr(512 + 32768));
}

TEST_F(SplitJoinTest, NothingIsWrittenWhenTheImageIsNotLargerThanOnePartOrTheSizeIsNotPositive) {
  const auto path = Image(SmdOfData(kMbit));
  ScriptedHost host;
  EXPECT_EQ(SplitImage(host, path, 1), CommandResult::Failed);
  EXPECT_EQ(host.Texts(), Texts{"You just can split ROMs in parts smaller than it."});
  EXPECT_EQ(host.Events()[0].icon, MessageIcon::Critical);

  ScriptedHost silent;
  EXPECT_EQ(SplitImage(silent, path, 0), CommandResult::Cancelled);
  EXPECT_EQ(SplitImage(silent, path, -3), CommandResult::Cancelled);
  EXPECT_TRUE(silent.Events().empty());
  EXPECT_EQ(DirEntries(), Texts{"GAME.smd"});
}

TEST_F(SplitJoinTest, NoToAnExistingVolumeStopsBeforeAnythingIsWritten) {
  const auto path = Image(SmdOfData(4 * kMbit));
  WriteTestFile(PathOf("GAME.1"), "one");
  WriteTestFile(PathOf("GAME.2"), "two");
  ScriptedHost host;
  host.AnswerYesNo(Answer::Yes).AnswerYesNo(Answer::No);
  EXPECT_EQ(SplitImage(host, path, 1), CommandResult::Cancelled);
  EXPECT_EQ(host.EventsOf(PromptKind::YesNo).size(), 2u);
  EXPECT_EQ(DirEntries(), (Texts{"GAME.2", "GAME.smd"}));  // Yes deleted GAME.1
  EXPECT_EQ(Volume(2), "two");
}

TEST_F(SplitJoinTest, AVolumeThatCannotBeWrittenTakesBackTheWholeSet) {
  const auto path = Image(SmdOfData(2 * kMbit + 16384));
  WriteTestFile(PathOf("GAME.3"), std::string(400000, 'Z'));
  ScriptedHost host;
  {
    test::FileSizeLimit limit(300000);
    EXPECT_EQ(SplitImage(host, path, 1), CommandResult::Failed);
  }
  ASSERT_EQ(host.Texts().size(), 1u);
  EXPECT_NE(host.Texts()[0].find("GAME.3"), std::string::npos) << host.Texts()[0];
  EXPECT_EQ(DirEntries(), (Texts{"GAME.3", "GAME.smd"}));
  EXPECT_EQ(Volume(3), std::string(400000, 'Z'));
}

TEST_F(SplitJoinTest, SplitRomAsksTheSizeAndTheChooserRefusesAbove32) {
  const auto path = Image(SmdCartridge(512));
  ScriptedHost host;
  host.AnswerSplitSize(33).AnswerSplitSize(2);
  EXPECT_EQ(SplitRom(host, path), CommandResult::Done);
  ASSERT_EQ(host.Events().size(), 3u);
  EXPECT_EQ(host.Events()[0].title, " Select split size (rom size: 4 Mbit)");
  EXPECT_EQ(host.Events()[1].icon, MessageIcon::Critical);
  EXPECT_EQ(host.Events()[2].text, "The ROM was splitted in 2 files");

  ScriptedHost cancelled;
  cancelled.AnswerSplitSize(std::nullopt);
  EXPECT_EQ(SplitRom(cancelled, PathOf("GAME.smd")), CommandResult::Cancelled);
}

TEST_F(SplitJoinTest, JoinStopsAtTheFirstMissingVolume) {
  const std::string first = BuildSmdHeader(8, true) + Filler(kMbit, 1);
  WriteTestFile(PathOf("GAME.1"), first);
  WriteTestFile(PathOf("GAME.3"), BuildSmdHeader(8, false) + Filler(kMbit, 3));
  ScriptedHost host;
  EXPECT_EQ(JoinRom(host, PathOf("GAME.1")), CommandResult::Done);
  EXPECT_EQ(host.Texts(), Texts{"1 file(s) joined"});
  EXPECT_EQ(ReadTestFile(PathOf("GAME.smd")), BuildSmdHeader(8, false) + first.substr(512));
}

TEST_F(SplitJoinTest, JoinedBlockCountIsZeroOnceTheImageIsLargerThan255Blocks) {
  for (const int secondBlocks : {126, 127}) {
    WriteTestFile(PathOf("GAME.1"), BuildSmdHeader(128, true) + Filler(128 * kBlockSize, 1));
    WriteTestFile(PathOf("GAME.2"),
                  BuildSmdHeader(secondBlocks, false) + Filler(secondBlocks * kBlockSize, 2));
    std::filesystem::remove(PathOf("GAME.smd"));
    ScriptedHost host;
    ASSERT_EQ(JoinRom(host, PathOf("GAME.2")), CommandResult::Done);
    const std::string joined = ReadTestFile(PathOf("GAME.smd"));
    ASSERT_EQ(joined.size(), 512 + (128 + secondBlocks) * kBlockSize);
    EXPECT_EQ(static_cast<unsigned char>(joined[0]), secondBlocks == 126 ? 254 : 0);
    EXPECT_EQ(joined[2], 0);
  }
}

TEST_F(SplitJoinTest, AFailedJoinKeepsTheOldTargetAndLeavesNoTemporaryFile) {
  WriteTestFile(PathOf("GAME.1"), BuildSmdHeader(8, true) + Filler(kMbit, 1));
  WriteTestFile(PathOf("GAME.2"), BuildSmdHeader(8, false) + Filler(kMbit, 2));
  WriteTestFile(PathOf("GAME.smd"), "old");
  ScriptedHost host;
  host.AnswerYesNo(Answer::Yes);
  {
    test::FileSizeLimit limit(kMbit);
    EXPECT_EQ(JoinRom(host, PathOf("GAME.1")), CommandResult::Failed);
  }
  EXPECT_NE(host.Texts().back().find("GAME.smd"), std::string::npos) << host.Transcript();
  EXPECT_EQ(DirEntries(), (Texts{"GAME.1", "GAME.2", "GAME.smd"}));
  EXPECT_EQ(ReadTestFile(PathOf("GAME.smd")), "old");

  ScriptedHost declined;
  declined.AnswerYesNo(Answer::No);
  EXPECT_EQ(JoinRom(declined, PathOf("GAME.2")), CommandResult::Cancelled);
  EXPECT_EQ(ReadTestFile(PathOf("GAME.smd")), "old");

  ScriptedHost none;
  EXPECT_EQ(JoinRom(none, PathOf("OTHER.2")), CommandResult::Failed);
  EXPECT_EQ(none.Events().size(), 1u);
}

TEST_F(SplitJoinTest, JoinFilesAppendsWholeFilesInTheOrderChosen) {
  WriteTestFile(PathOf("a"), "AAA");
  WriteTestFile(PathOf("b"), BuildSmdHeader(1, true));
  WriteTestFile(PathOf("c"), "C");
  const std::string dest = PathOf("out.bin").string();
  ScriptedHost host;
  host.AnswerSaveFile(dest).AnswerOpenFiles(
      {PathOf("c").string(), PathOf("a").string(), PathOf("b").string()});
  EXPECT_EQ(JoinFiles(host, Dir().string()), CommandResult::Done);
  EXPECT_EQ(ReadTestFile(dest), "CAAA" + BuildSmdHeader(1, true));
  const auto save = host.EventsOf(PromptKind::SaveFile).at(0).dialog;
  EXPECT_EQ(save.title, "Choose a destination file");
  EXPECT_EQ(save.filters.at(0).description, "All files");
  EXPECT_EQ(save.filters.at(0).patterns, "");
  const auto open = host.EventsOf(PromptKind::OpenFiles).at(0).dialog;
  EXPECT_EQ(open.title, "Choose multiple files to be appended");
  EXPECT_EQ(open.filters.at(0).patterns, "*.*");
  EXPECT_EQ(open.initialDir, Dir().string());
  EXPECT_EQ(host.Texts().back(), "3 files were joined!");

  ScriptedHost single;
  single.AnswerSaveFile(dest).AnswerOpenFiles({PathOf("a").string()});
  EXPECT_EQ(JoinFiles(single, Dir().string()), CommandResult::Done);
  EXPECT_EQ(ReadTestFile(dest), "AAA");
  EXPECT_EQ(single.Texts().back(), "1 files were joined!");
}

TEST_F(SplitJoinTest, JoinFilesWritesNothingWhenCancelledOrAFileIsMissing) {
  WriteTestFile(PathOf("a"), "AAA");
  const std::string dest = PathOf("out.bin").string();
  ScriptedHost host;
  host.AnswerSaveFile(std::nullopt).AnswerSaveFile(dest).AnswerOpenFiles({});
  EXPECT_EQ(JoinFiles(host, Dir().string()), CommandResult::Cancelled);
  EXPECT_EQ(JoinFiles(host, Dir().string()), CommandResult::Cancelled);
  EXPECT_FALSE(Has("out.bin"));

  WriteTestFile(dest, "keep");
  EXPECT_EQ(JoinFilesInto(host, dest, {PathOf("a").string(), PathOf("gone").string()}),
            CommandResult::Failed);
  EXPECT_NE(host.Texts().back().find("gone"), std::string::npos);
  EXPECT_EQ(ReadTestFile(dest), "keep");
}

}  // namespace
}  // namespace romsteward
