#include "core/patch/ips_create.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

#include "core/patch/ips_format.h"
#include "support/byte_files.h"
#include "support/reference_ips.h"

namespace romsteward {
namespace {

using test::Bytes;

std::string Diff(const std::string& unchanged, const std::string& changed) {
  auto patch = DiffToIps(unchanged, changed);
  EXPECT_TRUE(patch.ok()) << (patch.ok() ? "" : patch.error().message);
  return patch.ok() ? patch->bytes : std::string();
}

TEST(IpsCreate, IdenticalFilesGiveMagicAndMarkerOnly) {
  const std::string image(100000, 'x');
  EXPECT_EQ(Diff(image, image), "PATCHEOF");
  EXPECT_EQ(Diff("", ""), "PATCHEOF");
}

TEST(IpsCreate, EachMaximalRunIsOneRecordNeverMergedNorSplit) {
  std::string unchanged(40000, '\0');
  std::string changed = unchanged;
  changed[10] = 'a';
  changed[12] = 'b';                                 // one equal byte between: two records
  changed.replace(16380, 10, std::string(10, 'c'));  // across the 16 KiB skip boundary
  changed.back() = 'z';                              // the very last byte
  EXPECT_EQ(Diff(unchanged, changed), "PATCH" + Bytes({0, 0, 10, 0, 1}) + "a" +
                                          Bytes({0, 0, 12, 0, 1}) + "b" +
                                          Bytes({0, 0x3F, 0xFC, 0, 10}) + "cccccccccc" +
                                          Bytes({0, 0x9C, 0x3F, 0, 1}) + "z" + "EOF");
}

TEST(IpsCreate, RefusesWhatTheFieldsCannotHold) {
  EXPECT_EQ(DiffToIps("abc", "abcd").error().message, "The size of the files don't match!");

  // The longest run a record holds is fine; one byte more stops with the run's offset.
  const std::string zeros(70000, '\0');
  std::string changed = zeros;
  changed.replace(0x123, 0xFFFF, std::string(0xFFFF, '\1'));
  ASSERT_TRUE(DiffToIps(zeros, changed).ok());
  changed[0x123 + 0xFFFF] = '\1';
  const auto tooLong = DiffToIps(zeros, changed);
  ASSERT_FALSE(tooLong.ok());
  EXPECT_NE(tooLong.error().message.find("0x000123"), std::string::npos);
  EXPECT_NE(tooLong.error().message.find("65,536 bytes"), std::string::npos);

  // A change at the last offset the field names is fine; one byte further is not.
  const std::string big(0x1000001, '\0');
  std::string far = big;
  far[0xFFFFFF] = '\1';
  const auto atLimit = DiffToIps(big, far);
  ASSERT_TRUE(atLimit.ok());
  EXPECT_EQ(atLimit->bytes, "PATCH" + Bytes({0xFF, 0xFF, 0xFF, 0, 1, 1}) + "EOF");
  far[0x1000000] = '\1';
  far[0xFFFFFF] = '\0';
  const auto beyond = DiffToIps(big, far);
  ASSERT_FALSE(beyond.ok());
  EXPECT_NE(beyond.error().message.find("0x1000000"), std::string::npos);
}

TEST(IpsCreate, RunAtAnOffsetSpellingEofStartsOneByteEarlier) {
  // 0x454F46 is "EOF" and 0x656F66 "eof": a record there would end the patch for readers.
  const std::string unchanged(0x700000, '\0');
  std::string changed = unchanged;
  changed[0x454F46] = 'A';
  changed[0x656F66] = 'B';
  const std::string patch = Diff(unchanged, changed);
  EXPECT_EQ(patch, "PATCH" + Bytes({0x45, 0x4F, 0x45, 0, 2, 0, 'A'}) +
                       Bytes({0x65, 0x6F, 0x65, 0, 2, 0, 'B'}) + "EOF");
  EXPECT_EQ(test::ReferenceApplyIps(patch, unchanged), changed);
}

TEST(IpsCreate, RandomChangesGiveMaximalRunsThatOtherReadersApply) {
  std::mt19937 random(20240607);
  for (int round = 0; round < 60; ++round) {
    const std::size_t size = random() % 70000;
    std::string unchanged(size, '\0');
    for (char& byte : unchanged)
      byte = static_cast<char>(random() % 4);  // many equal bytes
    std::string changed = unchanged;
    const int changes = size == 0 ? 0 : static_cast<int>(random() % 40);
    for (int i = 0; i < changes; ++i) {
      const std::size_t at = random() % size;
      const std::size_t length =
          std::min<std::size_t>(size - at, 1 + random() % (round % 3 ? 9 : 3000));
      for (std::size_t k = at; k < at + length; ++k)
        changed[k] = static_cast<char>(random() % 4);
    }
    const std::string patch = Diff(unchanged, changed);
    ASSERT_EQ(test::ReferenceApplyIps(patch, unchanged), changed) << "round " << round;

    const IpsContents contents = ParseIps(patch);
    EXPECT_EQ(contents.end, IpsEnd::Marker);
    std::size_t previousEnd = 0;
    for (const IpsRecord& record : contents.records) {
      const std::size_t begin = record.offset;
      const std::size_t end = begin + record.data.size();
      EXPECT_GE(begin, previousEnd);
      EXPECT_TRUE(begin == 0 || unchanged[begin - 1] == changed[begin - 1]);
      EXPECT_TRUE(end == size || unchanged[end] == changed[end]);
      for (std::size_t k = begin; k < end; ++k)
        ASSERT_NE(unchanged[k], changed[k]);
      previousEnd = end;
    }
  }
}

TEST(IpsCreate, DefaultNameReplacesTheExtension) {
  EXPECT_EQ(DefaultIpsName("/roms/Sonic.hack.bin"), "/roms/Sonic.hack.ips");
  EXPECT_EQ(DefaultIpsName("/roms/SONIC"), "/roms/SONIC.ips");
  EXPECT_EQ(DefaultIpsName("/roms.d/SONIC"), "/roms.d/SONIC.ips");
}

class IpsCreateFile : public test::ByteFileTest {};

TEST_F(IpsCreateFile, OverwritesTheStartOfAnExistingLongerFileKeepingItsTail) {
  const auto unchanged = Put("a.bin", "0123456789");
  const auto changed = Put("b.bin", "0123x56789");
  const auto output = Put("b.ips", std::string(30, '#'));
  const auto created = CreateIpsFile(unchanged, changed, output);
  ASSERT_TRUE(created.ok()) << created.error().message;
  EXPECT_EQ(created->records, 1u);
  EXPECT_EQ(test::ReadTestFile(output),
            "PATCH" + Bytes({0, 0, 4, 0, 1}) + "xEOF" + std::string(30 - 14, '#'));
}

TEST_F(IpsCreateFile, WritesNothingWhenThePatchCannotBeMade) {
  const auto unchanged = Put("a.bin", "0123456789");
  const auto changed = Put("b.bin", "0123x5678");
  const auto output = PathOf("b.ips");
  EXPECT_EQ(CreateIpsFile(unchanged, changed, output).error().message,
            "The size of the files don't match!");
  EXPECT_FALSE(std::filesystem::exists(output));

  // Naming an input as the output would destroy it.
  const auto same = CreateIpsFile(unchanged, changed, changed);
  ASSERT_FALSE(same.ok());
  EXPECT_EQ(test::ReadTestFile(changed), "0123x5678");

  const auto missing = CreateIpsFile(PathOf("none.bin"), changed, output);
  ASSERT_FALSE(missing.ok());
  EXPECT_NE(missing.error().message.find("none.bin"), std::string::npos);
}

}  // namespace
}  // namespace romsteward
