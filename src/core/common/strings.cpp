#include "core/common/strings.h"

#include <algorithm>
#include <limits>

namespace romsteward {

std::string PathToUtf8(const std::filesystem::path& path) {
  const std::u8string text = path.u8string();
  return std::string(text.begin(), text.end());
}

std::filesystem::path Utf8ToPath(std::string_view text) {
  return std::filesystem::path(std::u8string(text.begin(), text.end()));
}

std::string_view TrimBlanks(std::string_view text) {
  const auto first = text.find_first_not_of(' ');
  if (first == std::string_view::npos) return {};
  const auto last = text.find_last_not_of(' ');
  return text.substr(first, last - first + 1);
}

std::string RemoveNuls(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  for (char c : text) {
    if (c != '\0') out += c;
  }
  return out;
}

namespace {
char LowerAscii(char c) {
  return (c >= 'A' && c <= 'Z') ? static_cast<char>(c + 32) : c;
}
}  // namespace

char ToUpperAscii(char c) {
  return (c >= 'a' && c <= 'z') ? static_cast<char>(c - 32) : c;
}

std::string ToUpperAscii(std::string_view text) {
  std::string out(text);
  std::transform(out.begin(), out.end(), out.begin(), [](char c) { return ToUpperAscii(c); });
  return out;
}

std::string ToLowerAscii(std::string_view text) {
  std::string out(text);
  std::transform(out.begin(), out.end(), out.begin(), LowerAscii);
  return out;
}

bool EqualsIgnoreCase(std::string_view a, std::string_view b) {
  return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
           return ToUpperAscii(x) == ToUpperAscii(y);
         });
}

bool StartsWithIgnoreCase(std::string_view text, std::string_view prefix) {
  return text.size() >= prefix.size() && EqualsIgnoreCase(text.substr(0, prefix.size()), prefix);
}

std::string JoinDirName(std::string_view dir, std::string_view name) {
  constexpr char kSeparator = static_cast<char>(std::filesystem::path::preferred_separator);
  std::string joined(dir);
  if (joined.empty() || joined.back() != kSeparator) joined += kSeparator;
  joined += name;
  return joined;
}

std::string_view FileExtension(std::string_view name) {
  const auto dot = name.rfind('.');
  return dot == std::string_view::npos ? std::string_view{} : name.substr(dot + 1);
}

std::uint64_t BytesToNumber(std::string_view bytes) {
  std::uint64_t value = 0;
  for (char c : bytes)
    value = (value << 8) | static_cast<unsigned char>(c);
  return value;
}

std::string NumberToBytes(std::uint64_t value, std::size_t width) {
  std::string bytes(width, '\0');
  for (std::size_t i = width; i-- > 0; value >>= 8)
    bytes[i] = static_cast<char>(value & 0xFF);
  return bytes;
}

namespace {

// Length of the well-formed UTF-8 sequence starting at `text[0]`, 0 when there is none.
std::size_t Utf8SequenceLength(std::string_view text) {
  const auto byte = [&text](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  const unsigned char lead = byte(0);
  std::size_t length;
  unsigned char low = 0x80;
  unsigned char high = 0xBF;
  if (lead < 0x80) return 1;
  if (lead >= 0xC2 && lead <= 0xDF) {
    length = 2;
  } else if (lead >= 0xE0 && lead <= 0xEF) {
    length = 3;
    if (lead == 0xE0) low = 0xA0;   // no overlong forms
    if (lead == 0xED) high = 0x9F;  // no surrogates
  } else if (lead >= 0xF0 && lead <= 0xF4) {
    length = 4;
    if (lead == 0xF0) low = 0x90;
    if (lead == 0xF4) high = 0x8F;  // nothing above U+10FFFF
  } else {
    return 0;
  }
  if (text.size() < length) return 0;
  if (byte(1) < low || byte(1) > high) return 0;
  for (std::size_t i = 2; i < length; ++i) {
    if (byte(i) < 0x80 || byte(i) > 0xBF) return 0;
  }
  return length;
}

}  // namespace

std::string Latin1FallbackToUtf8(std::string_view bytes) {
  std::string out;
  out.reserve(bytes.size());
  while (!bytes.empty()) {
    std::size_t length = Utf8SequenceLength(bytes);
    if (length == 0) {
      const auto c = static_cast<unsigned char>(bytes[0]);
      out += static_cast<char>(0xC0 | (c >> 6));
      out += static_cast<char>(0x80 | (c & 0x3F));
      length = 1;
    } else {
      out.append(bytes.substr(0, length));
    }
    bytes.remove_prefix(length);
  }
  return out;
}

std::string EscapeForDisplay(std::string_view bytes, bool escapeBackslash) {
  static constexpr char kDigits[] = "0123456789ABCDEF";
  std::string text = Latin1FallbackToUtf8(bytes);
  std::string out;
  out.reserve(text.size());
  for (char c : text) {
    const auto u = static_cast<unsigned char>(c);
    if (u < 0x20 || u == 0x7F || (escapeBackslash && c == '\\')) {
      out += "\\x";
      out += kDigits[u >> 4];
      out += kDigits[u & 15];
    } else {
      out += c;
    }
  }
  return out;
}

std::string EscapeExactly(std::string_view bytes) {
  static constexpr char kDigits[] = "0123456789ABCDEF";
  std::string out;
  out.reserve(bytes.size());
  while (!bytes.empty()) {
    const auto u = static_cast<unsigned char>(bytes[0]);
    std::size_t length = Utf8SequenceLength(bytes);
    if (length == 0 || u < 0x20 || u == 0x7F || u == '\\') {
      out += "\\x";
      out += kDigits[u >> 4];
      out += kDigits[u & 15];
      length = 1;
    } else {
      out.append(bytes.substr(0, length));
    }
    bytes.remove_prefix(length);
  }
  return out;
}

Result<std::string> DecodeHexEscapes(std::string_view text) {
  const auto digit = [](char c) { return c <= '9' ? c - '0' : (c | 0x20) - 'a' + 10; };
  std::string bytes;
  bytes.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '\\') {
      bytes += text[i];
      continue;
    }
    if (i + 3 >= text.size() || text[i + 1] != 'x' || !IsHexDigit(text[i + 2]) ||
        !IsHexDigit(text[i + 3])) {
      return Error{
          "A backslash must start an escape \\xNN of two hexadecimal digits (\\x5C "
          "for a backslash itself)"};
    }
    bytes += static_cast<char>(digit(text[i + 2]) * 16 + digit(text[i + 3]));
    i += 3;
  }
  return bytes;
}

bool IsHexDigit(char c) {
  return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

std::string FormatThousands(std::uint64_t value) {
  const std::string digits = std::to_string(value);
  std::string out;
  for (std::size_t i = 0; i < digits.size(); ++i) {
    if (i > 0 && (digits.size() - i) % 3 == 0) out += ',';
    out += digits[i];
  }
  return out;
}

std::int64_t LeadingNumber(std::string_view text) {
  constexpr std::int64_t kMax = std::numeric_limits<std::int64_t>::max();
  std::size_t i = 0;
  while (i < text.size() && text[i] == ' ')
    ++i;
  std::int64_t value = 0;
  for (; i < text.size() && text[i] >= '0' && text[i] <= '9'; ++i) {
    const int digit = text[i] - '0';
    value = value > (kMax - digit) / 10 ? kMax : value * 10 + digit;
  }
  return value;
}

bool IsNumeric(std::string_view text) {
  text = TrimBlanks(text);
  if (!text.empty() && (text.front() == '+' || text.front() == '-')) text.remove_prefix(1);
  bool digits = false;
  bool point = false;
  for (char c : text) {
    if (c >= '0' && c <= '9') {
      digits = true;
    } else if (c == '.' && !point) {
      point = true;
    } else {
      return false;
    }
  }
  return digits;
}

}  // namespace romsteward
