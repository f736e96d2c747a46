#include "core/identify/dat_file.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <pugixml.hpp>
#include <system_error>

#include "core/common/binary_file.h"
#include "core/common/strings.h"

namespace romsteward {

namespace {

std::size_t LineAt(std::string_view text, std::ptrdiff_t offset) {
  if (offset < 0) return 0;
  const auto end = std::min<std::size_t>(static_cast<std::size_t>(offset), text.size());
  return 1 + static_cast<std::size_t>(std::count(text.begin(), text.begin() + end, '\n'));
}

// The encoding named in the XML declaration, or "" when there is none. pugixml reads only
// UTF-8, UTF-16, UTF-32 and Latin-1; it would take any other declaration for UTF-8 and
// garble the names, so those are refused up front.
std::string DeclaredEncoding(std::string_view xml) {
  if (!xml.starts_with("<?xml")) return {};
  const std::string_view declaration = xml.substr(0, xml.find("?>"));
  const auto at = declaration.find("encoding");
  if (at == std::string_view::npos) return {};
  const auto quote = declaration.find_first_of("\"'", at);
  if (quote == std::string_view::npos) return {};
  const auto close = declaration.find(declaration[quote], quote + 1);
  if (close == std::string_view::npos) return {};
  return ToLowerAscii(declaration.substr(quote + 1, close - quote - 1));
}

bool IsReadableEncoding(std::string_view encoding) {
  for (std::string_view known : {"", "utf-8", "utf8", "us-ascii", "ascii", "iso-8859-1", "latin1",
                                 "latin-1", "utf-16", "utf-16le", "utf-16be"}) {
    if (encoding == known) return true;
  }
  return false;
}

bool IsUtf8(std::string_view text) {
  return Latin1FallbackToUtf8(text) == text;
}

bool ParseHex(std::string_view text, std::size_t digits, std::string& out) {
  if (text.size() != digits || !std::all_of(text.begin(), text.end(), IsHexDigit)) return false;
  out = ToLowerAscii(text);
  return true;
}

// Checks one rom's attributes; the reason it is damaged, or "" when it is usable.
std::string ReadRom(const pugi::xml_node& node, DatRom& rom) {
  rom.name = node.attribute("name").as_string();
  if (rom.name.empty()) return "a rom without a name";
  const std::string_view size = node.attribute("size").as_string();
  if (!size.empty()) {
    std::uint64_t value = 0;
    const auto [end, error] = std::from_chars(size.data(), size.data() + size.size(), value);
    if (error != std::errc() || end != size.data() + size.size())
      return fmt::format("rom \"{}\" has a malformed size \"{}\"", rom.name, size);
    rom.size = value;
  }
  const std::string_view crc = node.attribute("crc").as_string();
  if (!crc.empty()) {
    std::string hex;
    if (!ParseHex(crc, 8, hex))
      return fmt::format("rom \"{}\" has a malformed crc \"{}\"", rom.name, crc);
    rom.crc32 = static_cast<std::uint32_t>(std::stoul(hex, nullptr, 16));
  }
  const std::string_view sha1 = node.attribute("sha1").as_string();
  if (!sha1.empty() && !ParseHex(sha1, 40, rom.sha1))
    return fmt::format("rom \"{}\" has a malformed sha1 \"{}\"", rom.name, sha1);
  const std::string_view md5 = node.attribute("md5").as_string();
  if (!md5.empty() && !ParseHex(md5, 32, rom.md5))
    return fmt::format("rom \"{}\" has a malformed md5 \"{}\"", rom.name, md5);
  if (!rom.crc32 && rom.sha1.empty())
    return fmt::format("rom \"{}\" has neither a crc nor a sha1", rom.name);
  return {};
}

}  // namespace

Result<DatFile> ParseDatFile(std::string_view xml, std::string_view source) {
  const std::string encoding = DeclaredEncoding(xml);
  if (!IsReadableEncoding(encoding))
    return Error{
        fmt::format("{} is written in the encoding \"{}\", which cannot be read; "
                    "save it as UTF-8",
                    source, encoding)};

  pugi::xml_document document;
  // Without parse_doctype the document type is skipped whole: declared entities are never
  // expanded, external ones never fetched.
  const pugi::xml_parse_result parsed = document.load_buffer(
      xml.data(), xml.size(), pugi::parse_default & ~pugi::parse_doctype, pugi::encoding_auto);
  if (!parsed)
    return Error{fmt::format("{} is not a readable DAT file: {} at line {}", source,
                             parsed.description(), LineAt(xml, parsed.offset))};
  const pugi::xml_node root = document.child("datafile");
  if (!root)
    return Error{fmt::format("{} is not a DAT file: it has no \"datafile\" element", source)};

  DatFile dat;
  const pugi::xml_node header = root.child("header");
  dat.name = header.child_value("name");
  dat.description = header.child_value("description");
  dat.version = header.child_value("version");
  const auto problem = [&](const pugi::xml_node& node, const std::string& what) {
    dat.problems.push_back(fmt::format("line {}: {}", LineAt(xml, node.offset_debug()), what));
  };
  // "machine" is what newer Logiqx files call a game.
  for (const pugi::xml_node& node : root.children()) {
    const std::string_view element = node.name();
    if (element != "game" && element != "machine") continue;
    DatGame game;
    game.name = node.attribute("name").as_string();
    if (!IsUtf8(game.name))
      return Error{fmt::format("{} is not UTF-8 text as it declares (line {})", source,
                               LineAt(xml, node.offset_debug()))};
    if (game.name.empty()) {
      problem(node, "a game without a name is left out");
      continue;
    }
    for (const pugi::xml_node& romNode : node.children("rom")) {
      DatRom rom;
      const std::string damage = ReadRom(romNode, rom);
      if (!IsUtf8(rom.name))
        return Error{fmt::format("{} is not UTF-8 text as it declares (line {})", source,
                                 LineAt(xml, romNode.offset_debug()))};
      if (!damage.empty()) {
        problem(romNode, fmt::format("game \"{}\": {}; left out", game.name, damage));
        continue;
      }
      game.roms.push_back(std::move(rom));
    }
    if (!game.roms.empty()) dat.games.push_back(std::move(game));
  }
  return dat;
}

Result<DatFile> ReadDatFile(const std::filesystem::path& path) {
  const std::string shown = PathToUtf8(path);
  std::error_code error;
  if (!std::filesystem::is_regular_file(path, error))
    return Error{
        fmt::format("{} is not a DAT file: {}", shown,
                    std::filesystem::exists(path, error) ? "not a regular file" : "no such file")};
  const auto size = std::filesystem::file_size(path, error);
  if (!error && size > kMaxDatFileSize)
    return Error{fmt::format("{} is larger than {} MiB; no DAT file is that large", shown,
                             kMaxDatFileSize / (1024 * 1024))};
  auto text = ReadWholeFile(path);
  if (!text) return text.error();
  // The file may have grown since it was measured.
  if (text->size() > kMaxDatFileSize)
    return Error{fmt::format("{} is larger than {} MiB; no DAT file is that large", shown,
                             kMaxDatFileSize / (1024 * 1024))};
  return ParseDatFile(*text, shown);
}

}  // namespace romsteward
