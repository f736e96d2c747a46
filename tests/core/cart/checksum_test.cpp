#include "core/cart/checksum.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "core/cart/convert.h"
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

}  // namespace
}  // namespace romsteward
