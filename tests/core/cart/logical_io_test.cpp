#include "core/cart/logical_io.h"

#include <gtest/gtest.h>

#include "core/cart/convert.h"
#include "core/cart/detect.h"
#include "core/cart/header.h"
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

}  // namespace
}  // namespace romsteward
