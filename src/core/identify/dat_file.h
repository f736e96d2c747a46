#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/common/result.h"

namespace romsteward {

/// No published Genesis set comes near this; it bounds what a hostile file can make us read.
inline constexpr std::uint64_t kMaxDatFileSize = 256ull * 1024 * 1024;

/// One `rom` of a DAT game. Hashes are kept as the DAT gives them, lower-case hexadecimal.
struct DatRom {
  std::string name;
  std::optional<std::uint64_t> size;
  std::optional<std::uint32_t> crc32;
  std::string sha1;  ///< empty when the DAT gives none
  std::string md5;
};

struct DatGame {
  std::string name;
  std::vector<DatRom> roms;
};

/// A Logiqx XML DAT file: its header's name, description and version, and its games.
struct DatFile {
  std::string name;
  std::string description;
  std::string version;
  std::vector<DatGame> games;
  /// Entries left out because they are damaged, one line each ("line 12: ..."). The rest
  /// of the file is still used.
  std::vector<std::string> problems;
};

/// Reads a DAT file. Refused with a message naming the file: not a regular file, larger
/// than kMaxDatFileSize, not well-formed XML, not a `datafile`, an encoding other than
/// UTF-8, UTF-16 or ISO-8859-1, or names that are not text in the declared encoding.
/// Entities declared in a document type are never expanded and nothing is fetched.
Result<DatFile> ReadDatFile(const std::filesystem::path& path);
/// The same for DAT text already in memory; `source` names it in messages.
Result<DatFile> ParseDatFile(std::string_view xml, std::string_view source);

}  // namespace romsteward
