#include "core/tools/report_template.h"

#include <algorithm>

namespace romsteward {

const std::string_view kDefaultReportTemplate =
    "     MY ROM LIST\r\n"
    "\r\n"
    "-BOL-\r\n"
    "\r\n"
    "FILE: %file%\r\n"
    "FILE TYPE: %romtype%\r\n"
    "GAME (overseas): %nameoverseas%   SIZE: %romsize%\r\n"
    "GAME (domestic): %namedomestic%   RAM: %rampresent%\r\n"
    "COPYRIGHT: %copyright%\r\n"
    "DEVELOPED FOR: %countries%\r\n"
    "SUPPORTS: %io%\r\n"
    "CHECKSUM: %crc%\r\n"
    "ROMS SO FAR: %roms%\r\n"
    "PARTIAL TOTAL SIZE: %size%\r\n"
    "-EOL-\r\n"
    "\r\n"
    "--------------------------------------------------------\r\n"
    "NUMBER OF ROMS:  %roms%\r\n"
    "TOTAL SIZE: %size%\r\n";

Result<TemplatePieces> SplitTemplate(std::string_view text) {
  const auto begin = text.find(kBeginOfList);
  if (begin == std::string_view::npos) return Error{"Expected: Begin of list"};
  const auto blockStart = begin + kBeginOfList.size();
  const auto end = text.find(kEndOfList, blockStart);
  if (end == std::string_view::npos) return Error{"Expected: End of list"};
  return TemplatePieces{std::string(text.substr(0, begin)),
                        std::string(text.substr(blockStart, end - blockStart)),
                        std::string(text.substr(end + kEndOfList.size()))};
}

ExpandableText::ExpandableText(std::string_view text) {
  // Every place where a placeholder is written, overlapping ones included.
  std::array<std::vector<std::size_t>, kPlaceholderCount> found;
  for (std::size_t k = 0; k < kPlaceholderCount; ++k) {
    for (auto at = text.find(kPlaceholderTexts[k]); at != std::string_view::npos;
         at = text.find(kPlaceholderTexts[k], at + 1))
      found[k].push_back(at);
  }

  // The passes: in each, every placeholder in turn takes its first place whose characters
  // no earlier replacement took. A place once overlapped stays overlapped, so each list is
  // walked once.
  std::vector<bool> taken(text.size(), false);
  std::array<std::size_t, kPlaceholderCount> next{};
  std::vector<std::pair<std::size_t, int>> replaced;
  const auto isFree = [&taken](std::size_t at, std::size_t length) {
    return std::none_of(taken.begin() + static_cast<std::ptrdiff_t>(at),
                        taken.begin() + static_cast<std::ptrdiff_t>(at + length),
                        [](bool t) { return t; });
  };
  for (bool changed = true; changed;) {
    changed = false;
    for (std::size_t k = 0; k < kPlaceholderCount; ++k) {
      const std::size_t length = kPlaceholderTexts[k].size();
      while (next[k] < found[k].size() && !isFree(found[k][next[k]], length))
        ++next[k];
      if (next[k] == found[k].size()) continue;
      const std::size_t at = found[k][next[k]++];
      std::fill(taken.begin() + static_cast<std::ptrdiff_t>(at),
                taken.begin() + static_cast<std::ptrdiff_t>(at + length), true);
      replaced.emplace_back(at, static_cast<int>(k));
      changed = true;
    }
  }

  std::sort(replaced.begin(), replaced.end());
  std::size_t from = 0;
  for (const auto& [at, k] : replaced) {
    if (at > from) m_pieces.push_back({std::string(text.substr(from, at - from)), -1});
    m_pieces.push_back({{}, k});
    from = at + kPlaceholderTexts[static_cast<std::size_t>(k)].size();
  }
  if (from < text.size()) m_pieces.push_back({std::string(text.substr(from)), -1});
}

std::string ExpandableText::Expand(const ReportRecord& record, std::int64_t count,
                                   std::int64_t total) const {
  std::string out;
  for (const Piece& piece : m_pieces) {
    if (piece.placeholder < 0) {
      out += piece.literal;
      continue;
    }
    switch (static_cast<Placeholder>(piece.placeholder)) {
      case Placeholder::Roms:
        out += std::to_string(count);
        break;
      case Placeholder::Size:
        out += FormatStandard(total) + " Meg";
        break;
      default:
        out += record.fields[static_cast<std::size_t>(piece.placeholder)];
        break;
    }
  }
  return out;
}

std::string FormatStandard(std::int64_t value) {
  const bool negative = value < 0;
  // Through the unsigned magnitude, so the most negative value has one too.
  std::uint64_t magnitude =
      negative ? 0 - static_cast<std::uint64_t>(value) : static_cast<std::uint64_t>(value);
  std::string digits = std::to_string(magnitude);
  std::string grouped;
  for (std::size_t i = 0; i < digits.size(); ++i) {
    if (i > 0 && (digits.size() - i) % 3 == 0) grouped += ',';
    grouped += digits[i];
  }
  return (negative ? "-" : "") + grouped + ".00";
}

}  // namespace romsteward
