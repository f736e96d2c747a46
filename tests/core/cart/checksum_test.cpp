#include "core/cart/checksum.h"

#include <gtest/gtest.h>

#include "core/cart/detect.h"
#include "core/cart/interleave.h"
#include "support/cart_images.h"
#include "support/scripted_host.h"
#include "support/temp_dir.h"

namespace romsteward {
namespace {

// The definition, summed the slow way: big-endian words from 0x200 to the last whole block.
std::uint16_t ReferenceChecksum(std::string_view logical) {
  std::uint64_t sum = 0;
  const std::size_t end = logical.size() / kBlockSize * kBlockSize;
  for (std::size_t i = 0x200; i < end; i += 2)
    sum +=
        static_cast<unsigned char>(logical[i]) * 256u + static_cast<unsigned char>(logical[i + 1]);
  return static_cast<std::uint16_t>(sum % 65536);
}

class CalcChecksumTest : public test::TempDirTest {
protected:
  Result<std::uint16_t> Sum(const std::filesystem::path& path, Host* host = nullptr) {
    auto file = BinaryFile::Open(path);
    if (!file) return file.error();
    return CalcChecksum(*file, DetectRomFormat(*file), host);
  }
  std::uint16_t SumOk(const std::filesystem::path& path) {
    auto sum = Sum(path);
    EXPECT_TRUE(sum) << sum.error().message;
    return sum ? *sum : 0;
  }
};

TEST_F(CalcChecksumTest, EveryLayoutGivesTheSumOfTheLogicalImage) {
  // Random filler, and bytes all 0xFF so that every partial sum is as large as it gets.
  std::string saturated(80 * 1024, '\xFF');
  saturated.replace(0x100, 4, "SEGA");
  for (const std::string& logical : {test::MakeCartridge(208 * 1024, 7), saturated}) {
    SCOPED_TRACE(logical.size());
    const std::uint16_t expected = ReferenceChecksum(logical);
    test::WriteImage(PathOf("game.bin"), logical, Layout::Bin);
    test::WriteImage(PathOf("game.smd"), logical, Layout::Smd);
    test::WriteImage(PathOf("game.md"), logical, Layout::Md);
    // Volumes of unequal length: the last is shorter.
    const auto volumes = test::WriteSplitSet(PathOf("game"), logical, 32 * 1024);
    ASSERT_GE(volumes.size(), 3u);

    EXPECT_EQ(SumOk(PathOf("game.bin")), expected);
    EXPECT_EQ(SumOk(PathOf("game.smd")), expected);
    EXPECT_EQ(SumOk(PathOf("game.md")), expected);
    EXPECT_EQ(SumOk(volumes[0]), expected);
    for (const auto& volume : volumes)
      std::filesystem::remove(volume);
  }
  EXPECT_EQ(ChecksumOfLogicalImage(saturated), ReferenceChecksum(saturated));
}

TEST_F(CalcChecksumTest, BytesBeyondTheLastWholeBlockAreIgnored) {
  const std::string logical = test::MakeCartridge(64 * 1024, 3);
  const std::uint16_t expected = ReferenceChecksum(logical);
  for (const std::size_t tail : {std::size_t{100}, kBlockSize - 1}) {
    test::WriteTestFile(PathOf("tail.bin"), logical + std::string(tail, '\x5A'));
    EXPECT_EQ(SumOk(PathOf("tail.bin")), expected) << tail;
  }
  // An SMD tail long enough that the file length would count one block more.
  test::WriteImage(PathOf("tail.smd"), logical, Layout::Smd);
  test::WriteTestFile(PathOf("tail.smd"),
                      test::ReadTestFile(PathOf("tail.smd")) + std::string(16000, '\x5A'));
  EXPECT_EQ(SumOk(PathOf("tail.smd")), expected);
}

TEST_F(CalcChecksumTest, NothingToSumGivesZero) {
  const auto volumes =
      test::WriteSplitSet(PathOf("set"), test::MakeCartridge(64 * 1024), 32 * 1024);
  auto later = BinaryFile::Open(volumes[1]);
  ASSERT_TRUE(later);
  ASSERT_EQ(DetectRomFormat(*later), Layout::SplitLater);
  EXPECT_EQ(SumOk(volumes[1]), 0);

  test::WriteTestFile(PathOf("notes.txt"), std::string(40000, 'x'));
  EXPECT_EQ(SumOk(PathOf("notes.txt")), 0);

  // An MD file too short to reach logical 0x200.
  std::string tiny(0x1F0, '\x11');
  tiny.replace(0x80, 2, "EA");
  test::WriteTestFile(PathOf("tiny.md"), tiny);
  EXPECT_EQ(SumOk(PathOf("tiny.md")), 0);
}

TEST_F(CalcChecksumTest, AFirstVolumeOutsideANumberedSetIsRefused) {
  const auto volumes =
      test::WriteSplitSet(PathOf("set"), test::MakeCartridge(64 * 1024), 32 * 1024);
  std::filesystem::rename(volumes[0], PathOf("set.smd"));
  auto sum = Sum(PathOf("set.smd"));
  ASSERT_FALSE(sum);
  EXPECT_NE(sum.error().message.find("set.smd"), std::string::npos) << sum.error().message;
}

TEST_F(CalcChecksumTest, ProgressNamesEachVolumeAndReachesTheEnd) {
  const auto volumes =
      test::WriteSplitSet(PathOf("set"), test::MakeCartridge(192 * 1024), 64 * 1024);
  test::ScriptedHost host;
  ASSERT_TRUE(Sum(volumes[0], &host));
  EXPECT_EQ(host.ProgressCaptions(),
            (std::vector<std::string>{"Progress", "Progress (volume 1)", "Progress (volume 2)",
                                      "Progress (volume 3)"}));
  const std::vector<int>& reports = host.ProgressReports();
  ASSERT_FALSE(reports.empty());
  EXPECT_EQ(std::count(reports.begin(), reports.end(), 100), 3);
  EXPECT_FALSE(host.ProgressShown());

  test::WriteImage(PathOf("game.md"), test::MakeCartridge(64 * 1024), Layout::Md);
  test::ScriptedHost mdHost;
  ASSERT_TRUE(Sum(PathOf("game.md"), &mdHost));
  EXPECT_EQ(mdHost.ProgressReports(), (std::vector<int>{0, 50}));
}

}  // namespace
}  // namespace romsteward
