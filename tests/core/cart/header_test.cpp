#include "core/cart/header.h"

#include <gtest/gtest.h>

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
