#include "core/identify/dat_file.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <functional>
#include <pugixml.hpp>
#include <span>
#include <system_error>
#include <utility>
#include <vector>

#include "core/common/binary_file.h"
#include "core/common/strings.h"

namespace romsteward {

namespace {

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

// Line numbers of byte offsets into a text, found once the text has been read through:
// `read(offset, out)` fills `out` from `offset` and says how much it filled.
class LineCounter {
public:
  explicit LineCounter(std::function<std::size_t(std::uint64_t, std::span<char>)> read)
      : m_read(std::move(read)) {}

  std::size_t Ask(std::ptrdiff_t offset) {
    m_asked.push_back(static_cast<std::uint64_t>(std::max<std::ptrdiff_t>(offset, 0)));
    return m_asked.size() - 1;
  }
  // The line of every offset asked, in the order asked, with one pass over the text.
  std::vector<std::size_t> Lines() const {
    std::vector<std::size_t> order(m_asked.size());
    for (std::size_t i = 0; i < order.size(); ++i)
      order[i] = i;
    std::sort(order.begin(), order.end(),
              [&](std::size_t a, std::size_t b) { return m_asked[a] < m_asked[b]; });
    std::vector<std::size_t> lines(m_asked.size());
    std::string chunk(1 << 20, '\0');
    std::uint64_t at = 0;
    std::size_t line = 1;
    std::size_t held = 0;
    std::size_t used = 0;
    for (const std::size_t i : order) {
      while (at < m_asked[i]) {
        if (used == held) {
          held = m_read(at, chunk);
          used = 0;
          if (held == 0) break;
        }
        const std::size_t take =
            static_cast<std::size_t>(std::min<std::uint64_t>(held - used, m_asked[i] - at));
        line += static_cast<std::size_t>(
            std::count(chunk.data() + used, chunk.data() + used + take, '\n'));
        used += take;
        at += take;
      }
      lines[i] = line;
    }
    return lines;
  }

private:
  std::function<std::size_t(std::uint64_t, std::span<char>)> m_read;
  std::vector<std::uint64_t> m_asked;
};

// The DAT in `document`, parsed from a text `lines` can count lines of.
Result<DatFile> ReadDocument(const pugi::xml_document& document,
                             const pugi::xml_parse_result& parsed, std::string_view source,
                             LineCounter& lines) {
  if (!parsed) {
    const std::size_t at = lines.Ask(parsed.offset);
    return Error{fmt::format("{} is not a readable DAT file: {} at line {}", source,
                             parsed.description(), lines.Lines()[at])};
  }
  const pugi::xml_node root = document.child("datafile");
  if (!root)
    return Error{fmt::format("{} is not a DAT file: it has no \"datafile\" element", source)};
  const auto notUtf8 = [&](const pugi::xml_node& node) {
    const std::size_t at = lines.Ask(node.offset_debug());
    return Error{
        fmt::format("{} is not UTF-8 text as it declares (line {})", source, lines.Lines()[at])};
  };

  DatFile dat;
  const pugi::xml_node header = root.child("header");
  dat.name = header.child_value("name");
  dat.description = header.child_value("description");
  dat.version = header.child_value("version");
  // Each problem's line is filled in at the end, all in one pass over the text.
  std::vector<std::pair<std::size_t, std::string>> problems;
  const auto problem = [&](const pugi::xml_node& node, std::string what) {
    problems.emplace_back(lines.Ask(node.offset_debug()), std::move(what));
  };
  // "machine" is what newer Logiqx files call a game.
  for (const pugi::xml_node& node : root.children()) {
    const std::string_view element = node.name();
    if (element != "game" && element != "machine") continue;
    DatGame game;
    game.name = node.attribute("name").as_string();
    if (!IsUtf8(game.name)) return notUtf8(node);
    if (game.name.empty()) {
      problem(node, "a game without a name is left out");
      continue;
    }
    for (const pugi::xml_node& romNode : node.children("rom")) {
      DatRom rom;
      const std::string damage = ReadRom(romNode, rom);
      if (!IsUtf8(rom.name)) return notUtf8(romNode);
      if (!damage.empty()) {
        problem(romNode, fmt::format("game \"{}\": {}; left out", game.name, damage));
        continue;
      }
      game.roms.push_back(std::move(rom));
    }
    if (!game.roms.empty()) dat.games.push_back(std::move(game));
  }
  const std::vector<std::size_t> numbers = lines.Lines();
  for (const auto& [at, what] : problems)
    dat.problems.push_back(fmt::format("line {}: {}", numbers[at], what));
  return dat;
}

Error UnreadableEncoding(std::string_view source, std::string_view encoding) {
  return Error{
      fmt::format("{} is written in the encoding \"{}\", which cannot be read; "
                  "save it as UTF-8",
                  source, encoding)};
}

Error TooLarge(std::string_view source) {
  return Error{fmt::format("{} is larger than {} MiB; no DAT file is that large", source,
                           kMaxDatFileSize / (1024 * 1024))};
}

// Without parse_doctype the document type is skipped whole: declared entities are never
// expanded, external ones never fetched.
constexpr unsigned kParseOptions = pugi::parse_default & ~pugi::parse_doctype;

}  // namespace

Result<DatFile> ParseDatFile(std::string_view xml, std::string_view source) {
  const std::string encoding = DeclaredEncoding(xml);
  if (!IsReadableEncoding(encoding)) return UnreadableEncoding(source, encoding);
  pugi::xml_document document;
  const pugi::xml_parse_result parsed =
      document.load_buffer(xml.data(), xml.size(), kParseOptions, pugi::encoding_auto);
  LineCounter lines([xml](std::uint64_t offset, std::span<char> out) {
    if (offset >= xml.size()) return std::size_t{0};
    const std::string_view part = xml.substr(static_cast<std::size_t>(offset), out.size());
    std::copy(part.begin(), part.end(), out.begin());
    return part.size();
  });
  return ReadDocument(document, parsed, source, lines);
}

Result<DatFile> ReadDatFile(const std::filesystem::path& path) {
  const std::string shown = PathToUtf8(path);
  // Opened before anything else, so that a FIFO or a device is refused rather than waited on.
  auto file = BinaryFile::Open(path);
  if (!file) {
    std::error_code error;
    if (std::filesystem::is_regular_file(path, error)) return file.error();
    return Error{
        fmt::format("{} is not a DAT file: {}", shown,
                    std::filesystem::exists(path, error) ? "not a regular file" : "no such file")};
  }
  if (file->Size() > kMaxDatFileSize) return TooLarge(shown);
  // One copy of the text, parsed in place: a DAT of a few hundred megabytes is held once,
  // beside its parsed tree. The text is changed by the parse, so lines are counted from the
  // file itself.
  std::string text(static_cast<std::size_t>(file->Size()), '\0');
  text.resize(file->ReadInto(0, text));
  const std::string encoding = DeclaredEncoding(text);
  if (!IsReadableEncoding(encoding)) return UnreadableEncoding(shown, encoding);
  pugi::xml_document document;
  const pugi::xml_parse_result parsed =
      document.load_buffer_inplace(text.data(), text.size(), kParseOptions, pugi::encoding_auto);
  LineCounter lines(
      [&file](std::uint64_t offset, std::span<char> out) { return file->ReadInto(offset, out); });
  return ReadDocument(document, parsed, shown, lines);
}

}  // namespace romsteward
