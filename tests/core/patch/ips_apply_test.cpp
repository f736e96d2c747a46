#include "core/patch/ips_apply.h"

#include <gtest/gtest.h>

#include <string>

#include "core/patch/ips_create.h"
#include "support/byte_files.h"
#include "support/reference_ips.h"

namespace romsteward {
namespace {

using test::Bytes;

class IpsApply : public test::ByteFileTest {
protected:
  // Applies `patch` to a file holding `image` and returns the file afterwards.
  std::string Apply(const std::string& patch, const std::string& image,
                    IpsApplyReport* report = nullptr) {
    const auto imagePath = Put("image.bin", image);
    const auto patchPath = Put("patch.ips", patch);
    auto applied = ApplyIpsFile(patchPath, imagePath);
    EXPECT_TRUE(applied.ok()) << (applied.ok() ? "" : applied.error().message);
    if (applied.ok() && report) *report = *applied;
    return test::ReadTestFile(imagePath);
  }
};

TEST_F(IpsApply, PatchesWrittenByOtherToolsApplyAsTheyDoThere) {
  // Two records, the second lengthening the image past a gap of two bytes.
  const std::string patch = "PATCH" + Bytes({0x00, 0x00, 0x01, 0x00, 0x02}) + "XY" +
                            Bytes({0x00, 0x00, 0x0A, 0x00, 0x03}) + "abc" + "EOF";
  IpsApplyReport report;
  const std::string expected = "0XY3456789" + std::string("abc");
  EXPECT_EQ(Apply(patch, "0123456789", &report), expected);
  EXPECT_EQ(report.records, 2u);
  EXPECT_EQ(report.end, IpsEnd::Marker);
  EXPECT_EQ(test::ReferenceApplyIps(patch, "0123456789"), expected);

  const std::string gap = "PATCH" + Bytes({0x00, 0x00, 0x0C, 0x00, 0x01}) + "!EOF";
  EXPECT_EQ(Apply(gap, "0123456789"), "0123456789" + Bytes({0, 0}) + "!");
}

TEST_F(IpsApply, ReadsTheFileAsItAlwaysHasBeenRead) {
  const std::string record = Bytes({0x00, 0x00, 0x02, 0x00, 0x01}) + "#";
  // The magic is not examined.
  EXPECT_EQ(Apply("HELLO" + record + "EOF", "abcdef"), "ab#def");
  // "eof" ends the records as "EOF" does; what follows is never read.
  EXPECT_EQ(Apply("PATCHeof" + record, "abcdef"), "abcdef");
  EXPECT_EQ(Apply("PATCH" + record + "eOf" + record, "abcdefgh"), "ab#defgh");
  // A file that ends cleanly after a record needs no marker.
  IpsApplyReport report;
  EXPECT_EQ(Apply("PATCH" + record, "abcdef", &report), "ab#def");
  EXPECT_EQ(report.end, IpsEnd::EndOfFile);
  EXPECT_TRUE(report.damage.empty());
}

TEST_F(IpsApply, ZeroLengthRecordWritesNothingAndTheNextBytesAreAnOffset) {
  // Other tools would read 00 05 00 as a run-length count and fill byte; here they are the
  // offset of an ordinary record.
  const std::string patch = "PATCH" + Bytes({0x00, 0x00, 0x01, 0x00, 0x00}) +
                            Bytes({0x00, 0x00, 0x05, 0x00, 0x01}) + "Z" + "EOF";
  IpsApplyReport report;
  EXPECT_EQ(Apply(patch, "abcdefgh", &report), "abcdeZgh");
  EXPECT_EQ(report.records, 2u);
}

TEST_F(IpsApply, CutShortPatchKeepsTheCompleteRecordsAndSaysSo) {
  const std::string complete = "PATCH" + Bytes({0x00, 0x00, 0x00, 0x00, 0x01}) + "A";
  const std::vector<std::string> cuts = {
      Bytes({0x00, 0x00}),                            // inside the offset
      Bytes({0x00, 0x00, 0x03, 0x00}),                // inside the length
      Bytes({0x00, 0x00, 0x03, 0x00, 0x04}) + "BC"};  // inside the data
  for (const std::string& cut : cuts) {
    IpsApplyReport report;
    EXPECT_EQ(Apply(complete + cut, "abcdef", &report), "Abcdef");
    EXPECT_EQ(report.end, IpsEnd::Truncated);
    EXPECT_EQ(report.records, 1u);
    EXPECT_NE(report.damage.find("patch.ips"), std::string::npos) << report.damage;
    EXPECT_NE(report.damage.find("byte 11"), std::string::npos) << report.damage;
  }

  IpsApplyReport report;
  EXPECT_EQ(Apply("PAT", "abcdef", &report), "abcdef");
  EXPECT_EQ(report.end, IpsEnd::TooShort);
  EXPECT_FALSE(report.damage.empty());
}

TEST_F(IpsApply, CreatedPatchTurnsTheUnchangedFileIntoTheChangedOne) {
  std::string unchanged(300000, '\0');
  for (std::size_t i = 0; i < unchanged.size(); ++i)
    unchanged[i] = static_cast<char>(i * 7);
  std::string changed = unchanged;
  for (std::size_t i = 5; i < changed.size(); i += 4099)
    changed[i] = static_cast<char>(~changed[i]);
  for (std::size_t i = 100000; i < 100000 + 65535; ++i)
    changed[i] = static_cast<char>(~unchanged[i]);
  const auto patch = DiffToIps(unchanged, changed);
  ASSERT_TRUE(patch.ok());
  EXPECT_EQ(Apply(patch->bytes, unchanged), changed);
}

TEST_F(IpsApply, UnwritableImageIsReported) {
  const auto patchPath = Put("p.ips", "PATCHEOF");
  const auto applied = ApplyIpsFile(patchPath, PathOf("missing.bin"));
  ASSERT_FALSE(applied.ok());
  EXPECT_NE(applied.error().message.find("missing.bin"), std::string::npos);
}

}  // namespace
}  // namespace romsteward
