#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "core/common/result.h"

namespace romsteward {

/// The template the list form starts with (CR LF line ends).
extern const std::string_view kDefaultReportTemplate;

inline constexpr std::string_view kBeginOfList = "-BOL-";
inline constexpr std::string_view kEndOfList = "-EOL-";

/// The placeholders, in the fixed order in which a text is expanded.
enum class Placeholder {
  File,
  RomName,
  RamPresent,
  NameOverseas,
  NameDomestic,
  RomSize,
  Copyright,
  Countries,
  Io,
  Crc,
  RomType,
  Roms,
  Size,
  DatName,  ///< our own addition: the image's name in the chosen DAT file
};
inline constexpr std::size_t kPlaceholderCount = 14;
inline constexpr std::array<std::string_view, kPlaceholderCount> kPlaceholderTexts = {
    "%file%",    "%romname%",   "%rampresent%", "%nameoverseas%", "%namedomestic%",
    "%romsize%", "%copyright%", "%countries%",  "%io%",           "%crc%",
    "%romtype%", "%roms%",      "%size%",       "%datname%",
};
inline constexpr std::string_view PlaceholderText(Placeholder placeholder) {
  return kPlaceholderTexts[static_cast<std::size_t>(placeholder)];
}

/// The field texts of one image; a field whose placeholder the template lacks stays empty.
struct ReportRecord {
  std::array<std::string, kPlaceholderCount> fields;  ///< %roms% and %size% unused here
  std::string& operator[](Placeholder p) { return fields[static_cast<std::size_t>(p)]; }
  const std::string& operator[](Placeholder p) const { return fields[static_cast<std::size_t>(p)]; }
};

/// A template's three pieces: before the first "-BOL-", up to the first "-EOL-" after it,
/// and the rest.
struct TemplatePieces {
  std::string header;
  std::string block;
  std::string footer;
};
/// The pieces, or the form's message: "Expected: Begin of list" / "Expected: End of list".
Result<TemplatePieces> SplitTemplate(std::string_view text);

/// A piece of template with its placeholders found once, so that it expands for each image
/// without searching again. Placeholders are taken from the text as written, in passes over
/// the fixed order until nothing is left (which decides between overlapping ones such as
/// "%size%romtype%"); a value is put in as it stands and never expanded in turn, so a file
/// named "%file%.bin" cannot make the expansion endless.
class ExpandableText {
public:
  explicit ExpandableText(std::string_view text);

  /// The text with every placeholder replaced: the record's fields, `count` for "%roms%",
  /// and `total` in the "Standard" format followed by " Meg" for "%size%".
  std::string Expand(const ReportRecord& record, std::int64_t count, std::int64_t total) const;

private:
  struct Piece {
    std::string literal;
    int placeholder = -1;  ///< index into kPlaceholderTexts, or -1 for a literal
  };
  std::vector<Piece> m_pieces;
};

/// The "Standard" number format: thousands separated by ",", two decimals ("1,234.00").
std::string FormatStandard(std::int64_t value);

}  // namespace romsteward
