#include "core/cart/header_edit.h"

#include <gtest/gtest.h>

#include "core/cart/checksum.h"
#include "core/cart/detect.h"
#include "core/cart/header.h"
#include "core/cart/logical_io.h"
#include "core/common/binary_file.h"
#include "core/common/strings.h"
#include "support/cart_images.h"
#include "support/temp_dir.h"

namespace romsteward {
namespace {

using namespace std::string_view_literals;

constexpr std::size_t kSize = 64 * 1024;

class HeaderEditTest : public test::TempDirTest {
protected:
  static std::string Logical(const std::filesystem::path& path) {
    auto file = BinaryFile::Open(path);
    return ReadLogicalBytes(*file, DetectRomFormat(*file), 0, kSize);
  }
  HeaderEditor Open(const std::filesystem::path& path) {
    auto editor = HeaderEditor::Open(path);
    EXPECT_TRUE(editor.ok()) << (editor.ok() ? "" : editor.error().message);
    return std::move(editor).value();
  }
};

TEST_F(HeaderEditTest, EditsReachEveryLayoutAndNothingElseChanges) {
  const std::string original = test::MakeCartridge(kSize, 3);
  std::vector<std::filesystem::path> images = {PathOf("a.bin"), PathOf("a.smd"), PathOf("a.md")};
  test::WriteImage(images[0], original, Layout::Bin);
  test::WriteImage(images[1], original, Layout::Smd);
  test::WriteImage(images[2], original, Layout::Md);
  images.push_back(test::WriteSplitSet(PathOf("set"), original, 32 * 1024).front());

  for (const auto& image : images) {
    const std::string before = test::ReadTestFile(image);
    HeaderEditor editor = Open(image);
    ASSERT_TRUE(editor.SetText(HeaderText::OverseasName, "NEW NAME"));
    ASSERT_TRUE(editor.SetText(HeaderText::Countries, "JU"));
    ASSERT_TRUE(editor.SetAddress(HeaderAddress::RamStart, "200001"));
    ASSERT_TRUE(editor.SetAddress(HeaderAddress::RamEnd, "20ffff"));
    ASSERT_TRUE(editor.Save(false));

    std::string expected = original;
    expected.replace(0x150, 48, "NEW NAME" + std::string(40, ' '));
    expected.replace(0x1F0, 3, "JU ");
    expected.replace(0x1B4, 8, NumberToBytes(0x200001, 4) + NumberToBytes(0x20FFFF, 4));
    // A first volume holds only its share of the cartridge.
    const std::size_t held = image.extension() == ".1" ? kSize / 2 : kSize;
    EXPECT_TRUE(Logical(image).substr(0, held) == expected.substr(0, held)) << image;
    EXPECT_EQ(test::ReadTestFile(image).size(), before.size()) << image;

    const HeaderEditor reread = Open(image);
    EXPECT_EQ(reread.Text(HeaderText::OverseasName), "NEW NAME");
    EXPECT_EQ(reread.Decoded().countries, "Japan,USA");
    EXPECT_EQ(reread.Address(HeaderAddress::RamEnd), "0020FFFF");
  }
}

TEST_F(HeaderEditTest, UntouchedFieldsKeepOddBytesAndTheChecksumCanBeFixed) {
  std::string logical = test::MakeCartridge(kSize, 4);
  logical.replace(0x120, 4, std::string("\x82\xA0\0\\", 4));  // not text, kept as it is
  logical.replace(0x18E, 2, "\x12\x34");
  test::WriteImage(PathOf("b.smd"), logical, Layout::Smd);

  HeaderEditor editor = Open(PathOf("b.smd"));
  EXPECT_EQ(editor.Checksum(), "1234");
  const std::string shown = editor.Text(HeaderText::DomesticName);
  ASSERT_TRUE(editor.SetText(HeaderText::DomesticName, shown));
  EXPECT_FALSE(editor.Changed());
  ASSERT_TRUE(editor.SetText(HeaderText::Memo, "\\x01memo"));
  ASSERT_TRUE(editor.Save(true));

  const std::string saved = Logical(PathOf("b.smd"));
  EXPECT_EQ(saved.substr(0x120, 4), logical.substr(0x120, 4));
  EXPECT_EQ(saved.substr(0x1C8, 6), std::string("\x01memo ", 6));
  EXPECT_EQ(BytesToNumber(saved.substr(0x18E, 2)), ChecksumOfLogicalImage(saved));
  // The code check boxes keep letters they do not know.
  EXPECT_EQ(WithHeaderCode("JX  ", '6', true), "JX6");
  EXPECT_EQ(WithHeaderCode("jX6", 'J', false), "X6");
  EXPECT_TRUE(HasHeaderCode("ju", 'U'));
}

TEST_F(HeaderEditTest, BadEditsAreRefusedAndChangeNothing) {
  test::WriteImage(PathOf("c.bin"), test::MakeCartridge(kSize, 5), Layout::Bin);
  HeaderEditor editor = Open(PathOf("c.bin"));
  const std::string bytes = editor.Bytes();

  EXPECT_FALSE(editor.SetText(HeaderText::Version, "123"));
  EXPECT_FALSE(editor.SetText(HeaderText::Countries, "JUEA"));
  EXPECT_TRUE(editor.SetText(HeaderText::Countries, "JUE"));
  EXPECT_FALSE(editor.SetText(HeaderText::Memo, "bad \\q escape"));
  EXPECT_FALSE(editor.SetAddress(HeaderAddress::RomEnd, "12G"));
  EXPECT_FALSE(editor.SetAddress(HeaderAddress::RomEnd, "123456789"));
  EXPECT_FALSE(editor.SetAddress(HeaderAddress::RomEnd, ""));
  EXPECT_FALSE(editor.SetChecksum("10000"));
  const auto message = editor.SetText(HeaderText::Version, "123").error().message;
  EXPECT_EQ(message, "The version is 3 characters long; it holds at most 2.");
  EXPECT_EQ(editor.Bytes(), bytes.substr(0, 0xF0) + "JUE" + bytes.substr(0xF3));

  // Whole-header checks come at Save, which then writes nothing.
  const std::string file = test::ReadTestFile(PathOf("c.bin"));
  ASSERT_TRUE(editor.SetAddress(HeaderAddress::RomStart, "FFFF"));
  ASSERT_TRUE(editor.SetAddress(HeaderAddress::RomEnd, "FF"));
  EXPECT_FALSE(editor.Save(false));
  ASSERT_TRUE(editor.SetAddress(HeaderAddress::RomEnd, "1FFFF"));
  ASSERT_TRUE(editor.SetAddress(HeaderAddress::RamStart, "200000"));
  EXPECT_FALSE(editor.Save(false));  // a RAM range needs both ends
  ASSERT_TRUE(editor.SetAddress(HeaderAddress::RamStart, ""));
  ASSERT_TRUE(editor.SetText(HeaderText::System, "SAGE MEGA DRIVE"));
  EXPECT_FALSE(editor.Save(false));
  EXPECT_EQ(test::ReadTestFile(PathOf("c.bin")), file);
}

TEST_F(HeaderEditTest, RefusesWhatHasNoHeaderToChange) {
  const std::string logical = test::MakeCartridge(kSize, 6);
  test::WriteImage(PathOf("ro.bin"), logical, Layout::Bin);
  test::MakeReadOnly(PathOf("ro.bin"));
  const auto volumes = test::WriteSplitSet(PathOf("set"), logical, 32 * 1024);
  // An archive member's path runs through the archive file itself.
  test::WriteTestFile(PathOf("roms.zip"), std::string("PK\x03\x04", 4));
  const auto archive = PathOf("roms.zip");
  test::WriteTestFile(PathOf("notes.txt"), "hello");

  const auto message = [](const std::filesystem::path& path) {
    auto editor = HeaderEditor::Open(path);
    return editor.ok() ? std::string("opened") : editor.error().message;
  };
  EXPECT_EQ(message(PathOf("ro.bin")),
            PathToUtf8(PathOf("ro.bin")) + " is read-only; its header cannot be changed.");
  EXPECT_NE(message(volumes[1]).find("later volume"), std::string::npos);
  EXPECT_NE(message(PathOf("notes.txt")).find("not a cartridge image"), std::string::npos);
  EXPECT_NE(message(archive / "game.bin").find("inside the archive"), std::string::npos);

  // A file that turns read-only while the editor is open keeps its bytes.
  test::WriteImage(PathOf("late.bin"), logical, Layout::Bin);
  HeaderEditor editor = Open(PathOf("late.bin"));
  ASSERT_TRUE(editor.SetText(HeaderText::Memo, "late"));
  test::MakeReadOnly(PathOf("late.bin"));
  EXPECT_FALSE(editor.Save(false));
  EXPECT_TRUE(Logical(PathOf("late.bin")) == logical);
}

TEST(ReadHeaderChecksum, BigEndianAndBlankMeansZero) {
  EXPECT_EQ(ReadHeaderChecksum("\x12\x34"sv), 0x1234);
  EXPECT_EQ(ReadHeaderChecksum("  "sv), 0);
  EXPECT_EQ(ReadHeaderChecksum("\x20\x41"sv), 0x2041);  // one blank byte is still a value
  EXPECT_EQ(ReadHeaderChecksum(""sv), 0);
}

TEST(DecodeCountries, LettersAndDigitsOneByOne) {
  EXPECT_EQ(DecodeCountries("JUE"), "Japan,USA,Europe");
  EXPECT_EQ(DecodeCountries("4  "), "Brazil");
  EXPECT_EQ(DecodeCountries("JZ "), "Japan,Unknown (Z)");
  EXPECT_EQ(DecodeCountries("jb8"), "Japan,Brazil,Hong Kong");
  EXPECT_EQ(DecodeCountries("\0\0\0"sv), "NOT FOUND");
  EXPECT_EQ(DecodeCountries("J\0E"sv), "Japan,Europe");
  EXPECT_EQ(DecodeCountries("F"), "France");
}

TEST(DecodeIoDevices, UnknownEntriesKeepTheirBlank) {
  EXPECT_EQ(DecodeIoDevices("J6              "), "Joypad,6-button Joypad");
  EXPECT_EQ(DecodeIoDevices("JX"), "Joypad, Unknown (X)");
  EXPECT_EQ(DecodeIoDevices("Z"), " Unknown (Z)");
  EXPECT_EQ(DecodeIoDevices("J K"), "Joypad, Unknown ( ),Keyboard");
  EXPECT_EQ(DecodeIoDevices("x"), " Unknown (X)");  // upper-cased inside the text too
  EXPECT_EQ(DecodeIoDevices("                "), "");
}

TEST(HeaderFields, NamesProductTypesSizesAndSramRanges) {
  EXPECT_EQ(ReadGameName("  SPACE\0 RACE  "sv), "SPACE RACE");
  EXPECT_EQ(ReadGameName(std::string(48, '\0')), "NOT FOUND");
  EXPECT_EQ(ReadGameName(""), "NOT FOUND");
  EXPECT_EQ(DecodeProductType("GM"), "Game");
  EXPECT_EQ(DecodeProductType("gm"), "Game");  // compared upper-cased
  EXPECT_EQ(DecodeProductType("Al"), "Educational");
  EXPECT_EQ(DecodeProductType("G "), "Unknown");
  EXPECT_EQ(DecodeProductType(""), "Unknown");
  EXPECT_EQ(HeaderRomSize("\x00\x00\x00\x00\x00\x07\xFF\xFF"sv), 0x80000u);
  EXPECT_EQ(HeaderRomSize("\x00\x07\xFF\xFF\x00\x00\x00\x00"sv), 0x80000u);  // reversed
  EXPECT_EQ(HeaderRomSize("\x00\x00\x00\x00\xFF\xFF\xFF\xFF"sv), 0x100000000u);
  EXPECT_EQ(HeaderRomSize(""sv), 0u);
  // SRAM: trimmed, then split after four bytes.
  const AddressRange range = ReadSramRange("\x00\x20\x00\x01\x00\x20\xFF\xFF"sv);
  EXPECT_EQ(std::pair(range.start, range.end), std::pair(0x200001u, 0x20FFFFu));
  const AddressRange blank = ReadSramRange("        ");
  EXPECT_EQ(std::pair(blank.start, blank.end), std::pair(0u, 0u));
}

TEST(DecodeMakerDate, PublisherMonthAndYearOrUnknown) {
  const std::pair<std::string_view, std::string_view> cases[] = {
      {"(C)SEGA 1994.JAN", "SEGA, January of 1994 ((C)SEGA 1994.JAN)"},
      {"(C)T-12 1992.FEB", "Capcom, February of 1992 ((C)T-12 1992.FEB)"},
      {"(C)ACLD 1991.AUG", "Ballistic, August of 1991 ((C)ACLD 1991.AUG)"},
      {"(C)T-99 1993.MAR", "99, March of 1993 ((C)T-99 1993.MAR)"},
      {"(C) T-SNK 95/MAR", "HI-TECH entertainment, March of 1995 ((C) T-SNK 95/MAR)"},
      {"(C)SEGA 199X.AUG", "SEGA, August of 199X ((C)SEGA 199X.AUG)"},
      {"(C)SEGA 1994.SEPT", "SEGA, September of 1994 ((C)SEGA 1994.SEPT)"},
      {"(C)WSTN 1993SEP", "Westone, September of 1993 ((C)WSTN 1993SEP)"},
      {"(C)T-81 1993.08", "Acclaim/Flying Edge, August of 1993 ((C)T-81 1993.08)"},
      {"(C)T-81 1993.09", "Acclaim/Flying Edge, Unknown of 1993 ((C)T-81 1993.09)"},
      {"(C)T-00 1993.MAY", "Unknown, May of 1993 ((C)T-00 1993.MAY)"},
      {"(C)T-XX 1993.MAY", "Unknown, May of 1993 ((C)T-XX 1993.MAY)"},
      {"(C)RSI 1990.APL", "Razorsoft, April of 1990 ((C)RSI 1990.APL)"},
      {"(C) INFOGRAMES", "Infogrames, Unknown of Unknown ((C) INFOGRAMES)"},
      {"(C)vrgn 1993.DEC", "Virgin, December of 1993 ((C)vrgn 1993.DEC)"},
      {"(C)T112 1993.JUL", "Designer Software, July of 1993 ((C)T112 1993.JUL)"},
      {"ACMECO 1992.JUN", "ACMECO, June of 1992 (ACMECO 1992.JUN)"},
      // Position 6 is read as a publisher number even when it is part of the date.
      {"ACME  1992.JUN", "Technosoft, June of 1992 (ACME  1992.JUN)"},
      {"(C)SEGA", "SEGA, Unknown of Unknown ((C)SEGA)"},
      {"", ", Unknown of Unknown ()"},
  };
  for (const auto& [field, expected] : cases)
    EXPECT_EQ(DecodeMakerDate(field), expected) << field;
}

}  // namespace
}  // namespace romsteward
