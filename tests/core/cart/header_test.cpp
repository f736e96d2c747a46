#include <gtest/gtest.h>

#include "core/cart/header.h"

namespace romsteward {
namespace {

using namespace std::string_view_literals;

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

struct MakerDateCase {
  std::string_view field;
  std::string_view expected;
};

class DecodeMakerDateTest : public ::testing::TestWithParam<MakerDateCase> {};

TEST_P(DecodeMakerDateTest, Decodes) {
  EXPECT_EQ(DecodeMakerDate(GetParam().field), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Fields, DecodeMakerDateTest,
    ::testing::Values(
        MakerDateCase{"(C)SEGA 1994.JAN", "SEGA, January of 1994 ((C)SEGA 1994.JAN)"},
        MakerDateCase{"(C)T-12 1992.FEB", "Capcom, February of 1992 ((C)T-12 1992.FEB)"},
        MakerDateCase{"(C)ACLD 1991.AUG", "Ballistic, August of 1991 ((C)ACLD 1991.AUG)"},
        MakerDateCase{"(C)T-99 1993.MAR", "99, March of 1993 ((C)T-99 1993.MAR)"},
        MakerDateCase{"(C) T-SNK 95/MAR", "HI-TECH entertainment, March of 1995 ((C) T-SNK 95/MAR)"},
        MakerDateCase{"(C)SEGA 199X.AUG", "SEGA, August of 199X ((C)SEGA 199X.AUG)"},
        MakerDateCase{"(C)SEGA 1994.SEPT", "SEGA, September of 1994 ((C)SEGA 1994.SEPT)"},
        MakerDateCase{"(C)WSTN 1993SEP", "Westone, September of 1993 ((C)WSTN 1993SEP)"},
        MakerDateCase{"(C)T-81 1993.08", "Acclaim/Flying Edge, August of 1993 ((C)T-81 1993.08)"},
        MakerDateCase{"(C)T-81 1993.09", "Acclaim/Flying Edge, Unknown of 1993 ((C)T-81 1993.09)"},
        MakerDateCase{"(C)T-00 1993.MAY", "Unknown, May of 1993 ((C)T-00 1993.MAY)"},
        MakerDateCase{"(C)T-XX 1993.MAY", "Unknown, May of 1993 ((C)T-XX 1993.MAY)"},
        MakerDateCase{"(C)RSI 1990.APL", "Razorsoft, April of 1990 ((C)RSI 1990.APL)"},
        MakerDateCase{"(C) INFOGRAMES", "Infogrames, Unknown of Unknown ((C) INFOGRAMES)"},
        MakerDateCase{"(C)vrgn 1993.DEC", "Virgin, December of 1993 ((C)vrgn 1993.DEC)"},
        MakerDateCase{"(C)T112 1993.JUL", "Designer Software, July of 1993 ((C)T112 1993.JUL)"},
        MakerDateCase{"ACMECO 1992.JUN", "ACMECO, June of 1992 (ACMECO 1992.JUN)"},
        // Position 6 is read as a publisher number even when it is part of the date.
        MakerDateCase{"ACME  1992.JUN", "Technosoft, June of 1992 (ACME  1992.JUN)"},
        MakerDateCase{"(C)SEGA", "SEGA, Unknown of Unknown ((C)SEGA)"},
        MakerDateCase{"", ", Unknown of Unknown ()"}));

}  // namespace
}  // namespace romsteward
