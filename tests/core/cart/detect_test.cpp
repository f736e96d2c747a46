#include "core/cart/detect.h"

#include <gtest/gtest.h>

#include "core/cart/convert.h"
#include "core/cart/interleave.h"
#include "core/common/binary_file.h"
#include "core/demo/cartridge_builder.h"
#include "support/temp_dir.h"

namespace romsteward {
namespace {

class DetectTest : public ::testing::Test {
protected:
  Layout Detect(std::string_view name, std::string_view bytes) {
    const auto path = m_dir.Write(name, bytes);
    auto file = BinaryFile::Open(path);
    EXPECT_TRUE(file.ok());
    return DetectRomFormat(*file);
  }

  static std::string Logical(std::size_t kib = 64) {
    CartridgeSpec spec;
    spec.size = kib * 1024;
    return BuildCartridgeImage(spec);
  }

  test::TempDir m_dir;
};

TEST_F(DetectTest, EachLayoutByItsSignatureWhateverTheExtension) {
  const std::string logical = Logical();
  EXPECT_EQ(Detect("a.txt", logical), Layout::Bin);
  EXPECT_EQ(Detect("a.smd", EncodeImage(logical, Layout::Smd)), Layout::Smd);
  EXPECT_EQ(Detect("a.md", EncodeImage(logical, Layout::Md)), Layout::Md);
  EXPECT_EQ(Detect("game.bin", std::string(0x400, 'x')), Layout::NoRom);
  std::string bytes = logical;
  bytes[0x280] = bytes[0x80] = 'E';  // interleaved marks lose to the plain signature
  bytes[0x281] = bytes[0x81] = 'A';
  EXPECT_EQ(Detect("a", bytes), Layout::Bin);
  std::string lower = logical;
  lower[0x100] = 's';  // the system mark minds the case
  EXPECT_EQ(Detect("a", lower), Layout::NoRom);
}

TEST_F(DetectTest, SplitVolumesByTheirCopierHeaders) {
  std::string smd = EncodeImage(Logical(), Layout::Smd);
  smd[2] = 0x40;
  EXPECT_EQ(Detect("a.1", smd), Layout::SplitFirst);
  smd[2] = 0x41;
  EXPECT_EQ(Detect("a.1", smd), Layout::Smd);

  // A later volume is known by its exact copier header.
  const std::size_t length = 2 * kBlockSize + kCopierHeaderSize;
  for (bool more : {false, true}) {
    std::string volume = BuildSmdHeader(2, more) + std::string(length - kCopierHeaderSize, '\x5A');
    EXPECT_EQ(Detect("a.2", volume), Layout::SplitLater) << "more volumes: " << more;
  }
  // Any other byte of the header differing makes it no image.
  for (std::size_t at : {0u, 1u, 3u, 8u, 10u, 11u, 511u}) {
    std::string volume = BuildSmdHeader(2, true) + std::string(length - kCopierHeaderSize, 0);
    volume[at] = static_cast<char>(volume[at] ^ 0x01);
    EXPECT_EQ(Detect("a.2", volume), Layout::NoRom) << "byte " << at;
  }
  std::string full = BuildSmdHeader(256, false) + std::string(256 * kBlockSize, 0);
  EXPECT_EQ(Detect("a.2", full), Layout::SplitLater);
  full[0] = 1;  // 256 blocks can only be written as 0
  EXPECT_EQ(Detect("a.2", full), Layout::NoRom);
}

TEST_F(DetectTest, ShortAndEmptyFilesAreNoImages) {
  EXPECT_EQ(Detect("empty.bin", ""), Layout::NoRom);
  EXPECT_EQ(Detect("short.bin", std::string(0x102, ' ') + "SE"), Layout::NoRom);
  // A copier header alone, shorter than 512 bytes, never passes the volume test.
  EXPECT_EQ(Detect("short.2", BuildSmdHeader(0, true).substr(0, 511)), Layout::NoRom);
  // ... but the full 512 bytes of one with a zero block count do.
  EXPECT_EQ(Detect("bare.2", BuildSmdHeader(0, true)), Layout::SplitLater);
}

TEST(DetectByName, OnlyKnownExtensionsInAnyCase) {
  EXPECT_EQ(DetectRomFormat(nullptr, "dir/Game.Bin"), Layout::Bin);
  EXPECT_EQ(DetectRomFormat(nullptr, "game.sMd"), Layout::Smd);
  EXPECT_EQ(DetectRomFormat(nullptr, "game.md"), Layout::Md);
  EXPECT_EQ(DetectRomFormat(nullptr, "game.1"), Layout::SplitFirst);
  EXPECT_EQ(DetectRomFormat(nullptr, "game.2"), Layout::NoRom);
  EXPECT_EQ(DetectRomFormat(nullptr, "game.mgd"), Layout::NoRom);
  EXPECT_EQ(DetectRomFormat(nullptr, "game"), Layout::NoRom);
}

TEST_F(DetectTest, RomSizeMbitNoRoundingOneHeaderCountedAndEveryVolumeOfASet) {
  // 4,194,816 bytes of SMD (header included) is 32 Mbit; 4,194,303 bytes of BIN is 31.
  const auto smd = m_dir.Write("big.smd", std::string(4194816, '\0'));
  const auto bin = m_dir.Write("big.bin", std::string(4194303, '\0'));
  auto smdFile = BinaryFile::Open(smd);
  auto binFile = BinaryFile::Open(bin);
  EXPECT_EQ(RomSizeMbit(*smdFile, smd.string(), Layout::Smd), 32);
  EXPECT_EQ(RomSizeMbit(*binFile, bin.string(), Layout::Bin), 31);
  // A split set counts every volume and one header.
  const std::string volume = BuildSmdHeader(32, true) + std::string(32 * kBlockSize, 0);
  for (const char* name : {"g.1", "g.2", "g.3"})
    m_dir.Write(name, volume);
  m_dir.Write("g.5", volume);  // after a gap: not part of the set
  auto file = BinaryFile::Open(m_dir / "g.2");
  // 3 x (512 KiB + 512) - 1024 = 1.5 MiB + 512 bytes: 12 Mbit.
  EXPECT_EQ(RomSizeMbit(*file, (m_dir / "g.2").string(), Layout::SplitLater), 12);
}

}  // namespace
}  // namespace romsteward
