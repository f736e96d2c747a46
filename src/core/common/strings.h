#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

#include "core/common/result.h"

namespace romsteward {

/// UTF-8 text for a path and back: the one place where paths meet strings.
std::string PathToUtf8(const std::filesystem::path& path);
std::filesystem::path Utf8ToPath(std::string_view text);

/// Removes leading and trailing blanks (0x20 only, as the header fields are padded).
std::string_view TrimBlanks(std::string_view text);
/// `text` without any NUL byte.
std::string RemoveNuls(std::string_view text);

char ToUpperAscii(char c);
std::string ToUpperAscii(std::string_view text);
std::string ToLowerAscii(std::string_view text);
bool EqualsIgnoreCase(std::string_view a, std::string_view b);
bool StartsWithIgnoreCase(std::string_view text, std::string_view prefix);

/// `dir` and `name` with one separator between them: none is added when `dir` already
/// ends in one.
std::string JoinDirName(std::string_view dir, std::string_view name);

/// The text after the last "." of `name` (empty when there is none).
std::string_view FileExtension(std::string_view name);

/// Big-endian bytes to number and back; `width` bytes, the high ones dropped on overflow.
std::uint64_t BytesToNumber(std::string_view bytes);
std::string NumberToBytes(std::uint64_t value, std::size_t width);

bool IsHexDigit(char c);

/// `value` in decimal with a "," between groups of three digits: 1048576 gives "1,048,576".
std::string FormatThousands(std::uint64_t value);

/// Valid UTF-8 for display: well-formed UTF-8 sequences are kept and every other byte is
/// read as the Latin-1 character of the same value (the single-byte text of old headers).
std::string Latin1FallbackToUtf8(std::string_view bytes);
/// Latin1FallbackToUtf8 with control characters (and, unless told otherwise, the backslash,
/// so DecodeHexEscapes can read it back) written as \xNN: any bytes print as one line.
std::string EscapeForDisplay(std::string_view bytes, bool escapeBackslash = true);
/// Stored bytes as one printable line that DecodeHexEscapes reads back exactly: valid UTF-8
/// is kept, and control characters, the backslash and every byte that is not part of valid
/// UTF-8 are written as \xNN (where EscapeForDisplay would show such a byte as Latin-1).
std::string EscapeExactly(std::string_view bytes);
/// The bytes a text with \xNN escapes stands for (the escapes EscapeForDisplay writes); any
/// other backslash is an error, so a typing mistake never becomes a stored byte.
Result<std::string> DecodeHexEscapes(std::string_view text);

/// The value of the decimal digits at the start of `text` after leading blanks, 0 when
/// there are none. Saturates instead of overflowing.
std::int64_t LeadingNumber(std::string_view text);
/// Whether `text`, blanks trimmed, is a plain decimal number (sign and one point allowed).
bool IsNumeric(std::string_view text);

}  // namespace romsteward
