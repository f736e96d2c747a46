#include "core/patch/ips_format.h"

#include <fmt/format.h>

#include "core/common/strings.h"

namespace romsteward {

namespace {

constexpr std::size_t kOffsetBytes = 3;
constexpr std::size_t kLengthBytes = 2;

// The three offset bytes, upper-cased, spell the end marker.
bool SpellsEndMarker(char a, char b, char c) {
  return ToUpperAscii(a) == kIpsEndMarker[0] && ToUpperAscii(b) == kIpsEndMarker[1] &&
         ToUpperAscii(c) == kIpsEndMarker[2];
}

}  // namespace

IpsContents ParseIps(std::string_view patch) {
  IpsContents contents;
  if (patch.size() < kIpsMagic.size()) {
    contents.end = IpsEnd::TooShort;
    return contents;
  }
  std::size_t at = kIpsMagic.size();
  while (at < patch.size()) {
    const std::size_t recordStart = at;
    if (patch.size() - at >= kOffsetBytes) {
      const std::string_view offsetBytes = patch.substr(at, kOffsetBytes);
      if (SpellsEndMarker(offsetBytes[0], offsetBytes[1], offsetBytes[2])) return contents;
      at += kOffsetBytes;
      if (patch.size() - at >= kLengthBytes) {
        const std::size_t length = BytesToNumber(patch.substr(at, kLengthBytes));
        at += kLengthBytes;
        if (patch.size() - at >= length) {
          contents.records.push_back(
              {static_cast<std::uint32_t>(BytesToNumber(offsetBytes)), patch.substr(at, length)});
          at += length;
          continue;
        }
      }
    }
    contents.end = IpsEnd::Truncated;
    contents.truncatedAt = recordStart;
    return contents;
  }
  contents.end = IpsEnd::EndOfFile;
  return contents;
}

void AppendIpsRecord(std::string& patch, std::uint32_t offset, std::string_view data) {
  // Appended byte by byte: a patch of tiny records would otherwise spend its time allocating.
  const char head[] = {static_cast<char>(offset >> 16), static_cast<char>(offset >> 8),
                       static_cast<char>(offset), static_cast<char>(data.size() >> 8),
                       static_cast<char>(data.size())};
  patch.append(head, sizeof head);
  patch.append(data);
}

bool IsEndMarkerOffset(std::uint32_t offset) {
  return SpellsEndMarker(static_cast<char>(offset >> 16), static_cast<char>(offset >> 8),
                         static_cast<char>(offset));
}

std::string DescribeIpsDamage(const IpsContents& contents, std::string_view patchName,
                              std::string_view doneWord) {
  switch (contents.end) {
    case IpsEnd::Marker:
    case IpsEnd::EndOfFile:
      return {};
    case IpsEnd::TooShort:
      return fmt::format("{} is not an IPS file: it is shorter than the five-byte \"PATCH\" head.",
                         EscapeForDisplay(patchName));
    case IpsEnd::Truncated:
      break;
  }
  const std::size_t count = contents.records.size();
  return fmt::format(
      "{} is cut short: it ends inside the record that starts at byte {} of the file. The {} "
      "complete record{} before it {} {}; the rest of the patch is missing.",
      EscapeForDisplay(patchName), FormatThousands(contents.truncatedAt), count,
      count == 1 ? "" : "s", count == 1 ? "was" : "were", doneWord);
}

}  // namespace romsteward
