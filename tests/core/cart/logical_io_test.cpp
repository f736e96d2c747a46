#include "core/cart/logical_io.h"

#include <gtest/gtest.h>

#include <random>

#include "core/cart/convert.h"
#include "core/cart/detect.h"
#include "core/cart/header.h"
#include "core/cart/interleave.h"
#include "core/demo/cartridge_builder.h"
#include "support/temp_dir.h"

namespace romsteward {
namespace {

class LogicalIoTest : public ::testing::TestWithParam<Layout> {
protected:
  std::filesystem::path WriteImage(const std::string& logical) {
    return m_dir.Write("image", EncodeImage(logical, GetParam()));
  }
  test::TempDir m_dir;
};

TEST_P(LogicalIoTest, WritesLandWhereReadsFindThem) {
  CartridgeSpec spec;
  spec.size = 48 * 1024;
  const std::string logical = BuildCartridgeImage(spec);
  const auto path = WriteImage(logical);
  {
    auto file = BinaryFile::Open(path, BinaryFile::Mode::ReadWrite);
    EXPECT_TRUE(ReadHeaderBytes(*file, 0x100, 0x100) == logical.substr(0x100, 0x100));
    EXPECT_EQ(ReadHeaderBytes(*file, 16380, 9), logical.substr(16380, 9));  // across blocks
    ASSERT_TRUE(
        WriteHeaderBytes(std::string("\x12\x34\x00\xFF\x00", 5), *file, 0x18E, GetParam()).ok());
    ASSERT_TRUE(WriteHeaderBytes("xyz", *file, 16383, GetParam()).ok());
  }
  std::string expected = logical;
  expected.replace(0x18E, 5, std::string("\x12\x34\x00\xFF\x00", 5));
  expected.replace(16383, 3, "xyz");
  auto file = BinaryFile::Open(path);
  // Compared as booleans: a mismatch of two images is unreadable when printed.
  EXPECT_TRUE(ReadLogicalBytes(*file, GetParam(), 0, expected.size()) == expected);
  auto whole = ReadLogicalImage(*file, GetParam());
  ASSERT_TRUE(whole.ok()) << whole.error().message;
  EXPECT_TRUE(*whole == expected);
}

INSTANTIATE_TEST_SUITE_P(Layouts, LogicalIoTest,
                         ::testing::Values(Layout::Bin, Layout::Smd, Layout::Md),
                         [](const auto& param) { return std::string(LayoutCode(param.param)); });

TEST(LogicalIo, NoImageReadsEmptyAndIsNeverWrittenAndShortImagesReadZeroes) {
  test::TempDir dir;
  const std::string text(1024, 'x');
  const auto path = dir.Write("notes.txt", text);
  auto file = BinaryFile::Open(path, BinaryFile::Mode::ReadWrite);
  EXPECT_EQ(ReadHeaderBytes(*file, 0x100, 16), "");
  EXPECT_TRUE(WriteHeaderBytes("zz", *file, 0x18E, Layout::NoRom).ok());
  EXPECT_EQ(test::ReadTestFile(path), text);
  EXPECT_EQ(ReadCartridgeHeader(*file).countries, "NOT FOUND");
  // Bytes past the end of an image read as zero.
  std::string bytes(0x104, '\0');
  bytes.replace(0x100, 4, "SEGA");
  auto tiny = BinaryFile::Open(dir.Write("tiny.bin", bytes));
  EXPECT_EQ(ReadHeaderBytes(*tiny, 0x102, 4), std::string("GA\0\0", 4));
}

std::string RandomBytes(std::size_t size, unsigned seed) {
  std::mt19937 random(seed);
  std::string bytes(size, '\0');
  for (char& c : bytes)
    c = static_cast<char>(random());
  return bytes;
}

TEST(BuildSmdHeader, HoldsExactlyTheCopierBytes) {
  const std::string header = BuildSmdHeader(16, true);
  ASSERT_EQ(header.size(), 512u);
  std::string expected(512, '\0');
  expected[0] = 16;
  expected[1] = 0x03;
  expected[2] = 0x40;
  expected[8] = static_cast<char>(0xAA);
  expected[9] = static_cast<char>(0xBB);
  expected[10] = 0x06;
  EXPECT_EQ(header, expected);
  EXPECT_EQ(BuildSmdHeader(16, false)[2], 0x00);
  // Counts above 255 are zero, not wrapped.
  EXPECT_EQ(BuildSmdHeader(255, false)[0], static_cast<char>(255));
  EXPECT_EQ(BuildSmdHeader(256, false)[0], 0);
  EXPECT_EQ(BuildSmdHeader(257, false)[0], 0);  // not 1
}

TEST(Offsets, SmdPutsOddBytesFirstAndMdOffsetsInvert) {
  EXPECT_EQ(SmdOffset(0), 512u + 8192u);
  EXPECT_EQ(SmdOffset(1), 512u);
  EXPECT_EQ(SmdOffset(0x101), 512u + 0x80u);  // where "E" of "SEGA" lands
  EXPECT_EQ(SmdOffset(16383), 512u + 8191u);
  EXPECT_EQ(SmdOffset(16384), 512u + 16384u + 8192u);
  // The MD offset and its inverse agree.
  const std::uint64_t length = 64;
  for (std::uint64_t o = 0; o < length; ++o) {
    const std::uint64_t q = MdOffset(o, length) + 1;  // 1-based file position
    EXPECT_EQ(MdToBinOffset(q, length), o + 1) << "logical " << o;
  }
}

TEST(Transforms, RoundTripAndMatchTheOffsetMaps) {
  const std::string block = RandomBytes(kBlockSize, 1);
  EXPECT_EQ(SmdBlockToBin(BinBlockToSmd(block)), block);
  EXPECT_EQ(BinBlockToSmd(SmdBlockToBin(block)), block);
  const std::string logical = RandomBytes(3 * kBlockSize, 2);
  const std::string smd = BinToSmdData(logical);
  EXPECT_EQ(smd.substr(0, kBlockSize), BinBlockToSmd(logical.substr(0, kBlockSize)));
  const std::string md = BinToMd(logical);
  EXPECT_EQ(SmdDataToBin(smd), logical);
  EXPECT_EQ(MdToBin(md), logical);
  for (std::uint64_t o : {0ull, 1ull, 0x100ull, 0x101ull, 16384ull, 40001ull}) {
    EXPECT_EQ(smd[SmdOffset(o) - 512], logical[o]) << o;
    EXPECT_EQ(md[MdOffset(o, md.size())], logical[o]) << o;
  }
}

}  // namespace
}  // namespace romsteward
