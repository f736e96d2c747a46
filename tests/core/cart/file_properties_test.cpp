#include "core/cart/file_properties.h"

#include <gtest/gtest.h>

#include <map>

#include "core/cart/convert.h"
#include "core/common/strings.h"
#include "core/demo/demo_collection.h"
#include "core/identify/rom_hash.h"
#include "support/cart_images.h"
#include "support/temp_dir.h"

namespace romsteward {
namespace {

using Rows = std::map<std::string, std::string>;

Rows Read(std::string_view place, std::string_view entry, bool inArchive) {
  auto rows = ReadFileProperties(place, entry, inArchive);
  EXPECT_TRUE(rows.ok()) << (rows.ok() ? "" : rows.error().message);
  Rows byLabel;
  for (const PropertyRow& row : rows.value())
    byLabel[row.label] = row.value;
  return byLabel;
}

class FilePropertiesTest : public test::TempDirTest {};

TEST_F(FilePropertiesTest, AnImageAndTheSameImageInAnArchiveShowTheSameData) {
  std::string logical = test::MakeCartridge(64 * 1024, 8);
  logical.replace(0x18E, 2, "\x12\x34");
  test::WriteImage(PathOf("game.smd"), logical, Layout::Smd);
  test::WriteTestFile(
      PathOf("roms.zip"),
      BuildZipArchive({{"in/game.smd", EncodeImage(logical, Layout::Smd)}}).value());
  const std::string crc = Crc32Text(HashImageBytes(logical, "game").value().hashes.crc32);

  const Rows file = Read(PathToUtf8(Dir()), "game.smd", false);
  EXPECT_EQ(file.at("Size:"), "66,048 bytes");
  EXPECT_EQ(file.at("Layout:"), "Super Magic Drive Interleaved (SMD)");
  EXPECT_EQ(file.at("Access:"), "Read and write");
  EXPECT_EQ(file.at("CRC32:"), crc);
  EXPECT_EQ(file.at("Stored checksum:"), "1234");
  EXPECT_TRUE(file.at("Computed checksum:").ends_with("(wrong)"));

  const Rows member = Read(PathToUtf8(PathOf("roms.zip")), "in/game.smd", true);
  EXPECT_EQ(member.at("Member:"), "in/game.smd");
  for (const char* label : {"Size:", "Layout:", "CRC32:", "SHA-1:", "Computed checksum:"})
    EXPECT_EQ(member.at(label), file.at(label)) << label;
}

TEST_F(FilePropertiesTest, WhatIsNoImageStillShowsWhatItCan) {
  test::WriteTestFile(PathOf("notes.txt"), "hello");
  const Rows rows = Read(PathToUtf8(Dir()), "notes.txt", false);
  EXPECT_EQ(rows.at("Layout:"), "No rom");
  EXPECT_EQ(rows.at("Checksum:"), "none: no cartridge header");
  EXPECT_EQ(rows.at("Size:"), "5 bytes");

  EXPECT_FALSE(ReadFileProperties(PathToUtf8(Dir()), "missing.bin", false).ok());
  test::WriteTestFile(PathOf("roms.zip"), BuildZipArchive({{"a.bin", "x"}}).value());
  EXPECT_FALSE(ReadFileProperties(PathToUtf8(PathOf("roms.zip")), "b.bin", true).ok());
}

}  // namespace
}  // namespace romsteward
