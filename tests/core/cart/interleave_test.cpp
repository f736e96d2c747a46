#include <gtest/gtest.h>

#include <random>

#include "core/cart/interleave.h"

namespace romsteward {
namespace {

std::string RandomBytes(std::size_t size, unsigned seed) {
  std::mt19937 random(seed);
  std::string bytes(size, '\0');
  for (char& c : bytes) c = static_cast<char>(random());
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
