#include "core/common/strings.h"

#include <gtest/gtest.h>

#include "core/common/atomic_file.h"
#include "support/temp_dir.h"

namespace romsteward {
namespace {

using namespace std::string_view_literals;

TEST(Latin1FallbackToUtf8, KeepsValidUtf8AndReadsOtherBytesAsLatin1) {
  EXPECT_EQ(Latin1FallbackToUtf8("plain"), "plain");
  EXPECT_EQ(Latin1FallbackToUtf8("caf\xC3\xA9"), "caf\xC3\xA9");
  EXPECT_EQ(Latin1FallbackToUtf8("\xE9t\xE9"), "\xC3\xA9t\xC3\xA9");
  EXPECT_EQ(Latin1FallbackToUtf8("\xC3"), "\xC3\x83");                          // cut sequence
  EXPECT_EQ(Latin1FallbackToUtf8("\xC0\xAF"), "\xC3\x80\xC2\xAF");              // overlong form
  EXPECT_EQ(Latin1FallbackToUtf8("\xED\xA0\x80"), "\xC3\xAD\xC2\xA0\xC2\x80");  // surrogate
  EXPECT_EQ(Latin1FallbackToUtf8("a\0b"sv), "a\0b"sv);
}

TEST(DisplayText, ControlBytesBecomeHexAndPathsJoinWithOneSeparator) {
  EXPECT_EQ(EscapeForDisplay("a\0b\x1F\\"sv), "a\\x00b\\x1F\\x5C");
  EXPECT_EQ(EscapeForDisplay("\xFF"), "\xC3\xBF");
  // Stored values read back exactly: a byte outside valid UTF-8 is escaped, not shown as
  // Latin-1 (found by fuzzing: "caf\xC3)" came back as "caf\xC3\x83)").
  for (const std::string_view bytes : {"caf\xC3)\n"sv, "\xC3\xA9\\\0\xFF"sv}) {
    EXPECT_EQ(DecodeHexEscapes(EscapeExactly(bytes)).value(), bytes);
    EXPECT_EQ(EscapeExactly(bytes).find('\n'), std::string::npos);
  }
  EXPECT_EQ(EscapeExactly("\xC3\xA9\xC3)"), "\xC3\xA9\\xC3)");
  // One separator between folder and name.
  EXPECT_EQ(JoinDirName("/roms", "a.bin"), "/roms/a.bin");
  EXPECT_EQ(JoinDirName("/roms/", "a.bin"), "/roms/a.bin");
  EXPECT_EQ(JoinDirName("", "a.bin"), "/a.bin");
}

TEST(Numbers, LeadingDigitsAndNumericText) {
  EXPECT_EQ(LeadingNumber("  81 1993"), 81);
  EXPECT_EQ(LeadingNumber("SNK"), 0);
  EXPECT_EQ(LeadingNumber("99999999999999999999999"), INT64_MAX);
  EXPECT_TRUE(IsNumeric(" 1994 ") && IsNumeric("-1.5"));
  for (const char* text : {"199X", "", "1.2.3"})
    EXPECT_FALSE(IsNumeric(text)) << text;
  EXPECT_EQ(NumberToBytes(0x1234, 2), "\x12\x34");
  EXPECT_EQ(BytesToNumber(NumberToBytes(0xBEEF00, 3)), 0xBEEF00u);
}

TEST(AtomicFile, CommitReplacesAndDroppingLeavesNothing) {
  test::TempDir dir;
  const auto target = dir.Write("out.bin", "old");
  {
    auto writer = AtomicFileWriter::Create(target);
    ASSERT_TRUE(writer.ok());
    ASSERT_TRUE(writer->Write("half").ok());
  }  // dropped without Commit
  EXPECT_EQ(test::ReadTestFile(target), "old");
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.Path()), {}), 1);

  ASSERT_TRUE(WriteFileAtomically(target, "new").ok());
  EXPECT_EQ(test::ReadTestFile(target), "new");
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.Path()), {}), 1);

  EXPECT_FALSE(WriteFileAtomically(dir / "missing" / "x", "data").ok());
}

TEST(AtomicFile, AReplacedFileKeepsItsModeAndItsLinks) {
  namespace fs = std::filesystem;
  test::TempDir dir;
  const auto secret = dir.Write("secret.txt", "old");
  fs::permissions(secret, fs::perms::owner_read | fs::perms::owner_write);
  ASSERT_TRUE(WriteFileAtomically(secret, "new").ok());
  EXPECT_EQ(fs::status(secret).permissions(), fs::perms::owner_read | fs::perms::owner_write);

  // Through a chain of two links, one of them relative, into another folder: the target
  // is replaced there, beside itself, and both links stay links.
  fs::create_directory(dir / "real");
  const auto target = dir.Write("real/out.txt", "old");
  fs::permissions(target, fs::perms::owner_read | fs::perms::owner_write);
  fs::create_symlink("real/out.txt", dir / "near");
  fs::create_symlink(dir / "near", dir / "far");
  ASSERT_TRUE(WriteFileAtomically(dir / "far", "through").ok());
  EXPECT_TRUE(fs::is_symlink(dir / "far") && fs::is_symlink(dir / "near"));
  EXPECT_EQ(test::ReadTestFile(target), "through");
  EXPECT_EQ(fs::status(target).permissions(), fs::perms::owner_read | fs::perms::owner_write);
  // A link to nothing yet gets its file; a loop of links is refused.
  fs::create_symlink("later.txt", dir / "dangling");
  ASSERT_TRUE(WriteFileAtomically(dir / "dangling", "made").ok());
  EXPECT_EQ(test::ReadTestFile(dir / "later.txt"), "made");
  fs::create_symlink("loop", dir / "loop");
  EXPECT_FALSE(WriteFileAtomically(dir / "loop", "x").ok());
  EXPECT_EQ(std::distance(fs::directory_iterator(dir / "real"), {}), 1);
}

}  // namespace
}  // namespace romsteward
