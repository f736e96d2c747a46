// DecodeMakerDate: the publisher and release date in the 16-byte field at 0x110. The field
// is free text that every publisher filled in its own way, so the rules below are a series
// of tolerant guesses; their order and positions matter and are kept exactly.
#include <array>
#include <string>
#include <string_view>

#include "core/cart/header.h"
#include "core/common/strings.h"

namespace romsteward {

namespace {

// The rules are stated in 1-based positions; these helpers keep them readable as such.
std::string Mid(std::string_view s, std::size_t start1, std::size_t length = std::string::npos) {
  if (start1 < 1 || start1 > s.size()) return {};
  return std::string(s.substr(start1 - 1, length));
}

std::size_t InStr(std::string_view s, std::string_view what, std::size_t start1 = 1) {
  if (start1 < 1 || start1 > s.size()) return 0;
  const auto at = s.find(what, start1 - 1);
  return at == std::string_view::npos ? 0 : at + 1;
}

std::size_t InStrRev(std::string_view s, std::string_view what) {
  const auto at = s.rfind(what);
  return at == std::string_view::npos ? 0 : at + 1;
}

std::string Right(std::string_view s, std::size_t length) {
  return std::string(s.substr(s.size() > length ? s.size() - length : 0));
}

struct Publisher {
  int code;
  std::string_view name;
};

constexpr std::array<Publisher, 55> kPublishers{{
    {10, "Takara"},
    {11, "Taito or Accolade"},
    {12, "Capcom"},
    {13, "Data East"},
    {14, "Namco or Tengen"},
    {15, "Sunsoft"},
    {16, "Bandai"},
    {17, "Dempa"},
    {18, "Technosoft"},
    {19, "Technosoft"},
    {20, "Asmik"},
    {22, "Micronet"},
    {23, "Vic Tokai"},
    {24, "American Sammy"},
    {29, "Kyugo"},
    {32, "Wolfteam"},
    {33, "Kaneko"},
    {35, "Toaplan"},
    {36, "Tecmo"},
    {40, "Toaplan"},
    {42, "UFL Company Limited"},
    {43, "Human"},
    {45, "Game Arts"},
    {47, "Sage's Creation"},
    {48, "Tengen"},
    {49, "Renovation or Telenet"},
    {50, "Eletronic Arts"},
    {56, "Razorsoft"},
    {58, "Mentrix"},
    {60, "Victor Musical Industries"},
    {69, "Arena"},
    {70, "Virgin"},
    {73, "Soft Vision"},
    {74, "Palsoft"},
    {76, "Koei"},
    {79, "U.S. Gold"},
    {81, "Acclaim/Flying Edge"},
    {83, "Gametek"},
    {86, "Absolute"},
    {93, "Sony"},
    {95, "Konami"},
    {97, "Tradewest"},
    {100, "T*HQ Software"},
    {101, "Tecmagik"},
    {112, "Designer Software"},
    {113, "Psygnosis"},
    {119, "Accolade"},
    {120, "Code Masters"},
    {125, "Interplay"},
    {130, "Activision"},
    {132, "Shiny & Playmates"},
    {144, "Atlus"},
    {151, "Infogrames"},
    {161, "Fox Interactive"},
    {239, "Disney Interactive"},
}};

std::string NameOfMark(const std::string& mark) {
  const std::string upper = ToUpperAscii(mark);
  if (upper == "VRGN") return "Virgin";
  if (upper == "ACLD") return "Ballistic";
  if (upper == "TREC") return "Treco";
  if (upper == "WSTN") return "Westone";
  if (upper == "ASCI") return "Asciiware";
  if (upper.size() > 1 && upper[0] == 'T' && IsNumeric(upper.substr(1))) return mark.substr(1);
  return mark;
}

std::string DecodePublisher(std::string_view s) {
  std::size_t start;
  if (const std::size_t p = InStr(s, "T-"); p != 0) {
    start = p + 2;
  } else if (const std::size_t t = InStr(s, "T"); t != 0 && LeadingNumber(Mid(s, t + 1)) != 0) {
    start = t + 1;
  } else {
    start = 6;  // behind "(C)" and two letters of a four-letter mark
  }
  const std::string code(TrimBlanks(Mid(s, start, 3)));
  const std::int64_t number = LeadingNumber(code);
  if (number != 0) {
    for (const Publisher& publisher : kPublishers) {
      if (publisher.code == number) return std::string(publisher.name);
    }
    return code;
  }

  if (code == "00" || code == "XX") return "Unknown";
  std::string mark;
  if (s.starts_with("(C)")) {
    if (s.starts_with("(C) T-SNK")) return "HI-TECH entertainment";
    if (s == "(C) INFOGRAMES") return "Infogrames";
    if (s.starts_with("(C)RSI")) return "Razorsoft";
    mark = std::string(TrimBlanks(Mid(s, 4, 5)));
  } else {
    const std::size_t blank = InStr(s, " ", 5);
    mark = blank != 0 ? std::string(TrimBlanks(Mid(s, 1, blank - 1))) : std::string(s);
  }
  return NameOfMark(mark);
}

std::string MonthName(const std::string& text) {
  static constexpr std::pair<std::string_view, std::string_view> kMonths[] = {
      {"JAN", "January"}, {"FEB", "February"}, {"MAR", "March"},     {"APR", "April"},
      {"APL", "April"},   {"MAY", "May"},      {"JUN", "June"},      {"JUL", "July"},
      {"AUG", "August"},  {"08", "August"},    {"SEP", "September"}, {"SEPT", "September"},
      {"OCT", "October"}, {"NOV", "November"}, {"DEC", "December"},
  };
  const std::string upper = ToUpperAscii(text);
  for (const auto& [code, name] : kMonths) {
    if (upper == code) return std::string(name);
  }
  return "Unknown";
}

struct MonthYear {
  std::string month = "Unknown";
  std::string year = "Unknown";
};

MonthYear DecodeDate(std::string_view s) {
  std::size_t d = 0;
  std::string_view separator;
  using namespace std::string_view_literals;
  for (std::string_view candidate : {"."sv, ","sv, "/"sv, "-"sv, "\0"sv, " "sv}) {
    d = InStrRev(s, candidate);
    if (d != 0) {
      separator = candidate;
      break;
    }
  }
  if (d == 0) return {};

  std::string year;
  std::string month;
  bool monthSet = false;
  const std::size_t r = s.size() - d;
  if (r != 4) {
    if (r == 7 && LeadingNumber(Mid(s, d + 1, 4)) > 0 && LeadingNumber(Mid(s, d + 5)) == 0) {
      year = Mid(s, d + 1, 4);  // as in 1994JAN
      month = Mid(s, d + 5, 3);
      monthSet = true;
    } else if (d > 4) {
      year = Mid(s, d - 4, 4);
    }
  } else {
    const std::size_t b = InStrRev(s.substr(0, d - 1), " ");
    if (d - b == 5) {
      year = Mid(s, b + 1, 4);  // as in 1994.SEPT
      month = Mid(s, d + 1, 4);
      monthSet = true;
    } else {
      year = Mid(s, d + 1);
    }
  }

  year = ToUpperAscii(year);
  if (separator == "/") year = "19" + Right(year, 2);
  if (!IsNumeric(year) && year != "199X" && year != "19XX") {
    const std::string last = Right(year, 2);
    const bool digits =
        last.size() == 2 && last[0] >= '0' && last[0] <= '9' && last[1] >= '0' && last[1] <= '9';
    year = digits ? "19" + last : "Unknown";
  }
  if (!monthSet) month = Mid(s, d + 1);
  return {MonthName(month), year};
}

}  // namespace

std::string DecodeMakerDate(std::string_view field) {
  const std::string_view s = TrimBlanks(field);
  const MonthYear date = DecodeDate(s);
  return DecodePublisher(s) + ", " + date.month + " of " + date.year + " (" + std::string(s) + ")";
}

}  // namespace romsteward
