#include "core/cart/header_edit.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <system_error>

#include "core/cart/checksum.h"
#include "core/cart/detect.h"
#include "core/cart/logical_io.h"
#include "core/common/atomic_file.h"
#include "core/common/binary_file.h"
#include "core/common/strings.h"
#include "core/tools/byte_copy.h"

namespace romsteward {

namespace {

constexpr std::array kTextFields{
    HeaderTextField{HeaderText::System, {0x100, 16}, "S&ystem:", "system name"},
    HeaderTextField{HeaderText::MakerDate, header_field::kMakerDate,
                    "&Copyright:", "copyright (maker and date)"},
    HeaderTextField{HeaderText::DomesticName, header_field::kDomesticName,
                    "&Domestic name:", "domestic name"},
    HeaderTextField{HeaderText::OverseasName, header_field::kOverseasName,
                    "&Overseas name:", "overseas name"},
    HeaderTextField{HeaderText::ProductType, header_field::kProductType,
                    "&Product type:", "product type"},
    HeaderTextField{HeaderText::Serial, header_field::kSerial, "Se&rial:", "serial number"},
    HeaderTextField{HeaderText::Version, header_field::kVersion, "&Version:", "version"},
    HeaderTextField{HeaderText::Devices, header_field::kDevices, "Dev&ices:", "devices field"},
    HeaderTextField{HeaderText::RamInfo, {0x1B0, 4}, "RAM info:", "RAM info"},
    HeaderTextField{HeaderText::Modem, {0x1BC, 12}, "&Modem:", "modem field"},
    HeaderTextField{HeaderText::Memo, {0x1C8, 40}, "Memo:", "memo"},
    HeaderTextField{HeaderText::Countries, header_field::kCountries,
                    "Cou&ntries:", "countries field"},
};

constexpr std::array kAddressFields{
    HeaderAddressField{HeaderAddress::RomStart, 0x1A0, "ROM s&tart:", "ROM start address"},
    HeaderAddressField{HeaderAddress::RomEnd, 0x1A4, "ROM &end:", "ROM end address"},
    HeaderAddressField{HeaderAddress::RamStart, 0x1B4, "RAM st&art:", "RAM start address"},
    HeaderAddressField{HeaderAddress::RamEnd, 0x1B8, "RAM end:", "RAM end address"},
};

// TextFieldOf and AddressFieldOf index the tables by the enumerators.
constexpr bool InEnumOrder() {
  for (std::size_t i = 0; i < kTextFields.size(); ++i) {
    if (static_cast<std::size_t>(kTextFields[i].id) != i) return false;
  }
  for (std::size_t i = 0; i < kAddressFields.size(); ++i) {
    if (static_cast<std::size_t>(kAddressFields[i].id) != i) return false;
  }
  return true;
}
static_assert(InEnumOrder());

constexpr std::string_view kDeviceLetters = "J460KRPTBVFCLM";
constexpr std::string_view kCountryLetters = "JUEAB4F8";

std::vector<HeaderCode> CodesOf(std::string_view letters, std::string (*decode)(std::string_view)) {
  std::vector<HeaderCode> codes;
  // The decoders hold the meanings: a letter alone decodes to its name.
  for (char letter : letters)
    codes.push_back({letter, decode(std::string_view(&letter, 1))});
  return codes;
}

std::string_view Slice(const std::string& bytes, std::uint64_t offset, std::size_t width) {
  return std::string_view(bytes).substr(offset - kHeaderStart, width);
}

bool IsBlank(std::string_view bytes) {
  return std::all_of(bytes.begin(), bytes.end(), [](char c) { return c == ' '; });
}

// The nearest existing folder or file above `path`; a file there means `path` names a
// member inside it.
std::filesystem::path ExistingAncestor(const std::filesystem::path& path) {
  std::error_code error;
  for (std::filesystem::path at = path.parent_path(); !at.empty(); at = at.parent_path()) {
    if (std::filesystem::exists(at, error)) return at;
    if (at == at.parent_path()) break;
  }
  return {};
}

Result<std::uint32_t> ParseHex(std::string_view text, std::string_view name, std::size_t digits) {
  text = TrimBlanks(text);
  std::uint32_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, 16);
  if (text.empty() || error == std::errc::invalid_argument || end != text.data() + text.size() ||
      !std::all_of(text.begin(), text.end(), IsHexDigit)) {
    return Error{fmt::format("The {} \"{}\" is not a hexadecimal number.", name, text)};
  }
  if (error == std::errc::result_out_of_range || (value >> (digits * 4 - 1) >> 1) != 0) {
    return Error{
        fmt::format("The {} \"{}\" does not fit in {} hexadecimal digits.", name, text, digits)};
  }
  return value;
}

// The image with `header` in place of its header bytes, written beside it and renamed over
// it, so that a failure at any point leaves the image as it was.
Status ReplaceHeader(const std::filesystem::path& image, Layout layout, const std::string& header) {
  auto source = BinaryFile::Open(image);
  if (!source) return source.error();
  auto writer = AtomicFileWriter::Create(image);
  if (!writer) return writer.error();
  if (auto copied = AppendFileRange(*source, 0, source->Size(), *writer); !copied)
    return copied.error();
  {
    auto copy = BinaryFile::Open(writer->TemporaryPath(), BinaryFile::Mode::ReadWrite);
    if (!copy) return copy.error();
    if (Status written = WriteHeaderBytes(header, *copy, kHeaderStart, layout); !written)
      return written;
  }
  return writer->Commit();
}

}  // namespace

const HeaderTextField& TextFieldOf(HeaderText id) {
  return kTextFields[static_cast<std::size_t>(id)];
}

const HeaderAddressField& AddressFieldOf(HeaderAddress id) {
  return kAddressFields[static_cast<std::size_t>(id)];
}

std::span<const HeaderCode> DeviceCodes() {
  static const std::vector<HeaderCode> codes = CodesOf(kDeviceLetters, DecodeIoDevices);
  return codes;
}

std::span<const HeaderCode> CountryCodes() {
  static const std::vector<HeaderCode> codes = CodesOf(kCountryLetters, DecodeCountries);
  return codes;
}

bool HasHeaderCode(std::string_view field, char code) {
  return std::any_of(field.begin(), field.end(),
                     [code](char c) { return ToUpperAscii(c) == ToUpperAscii(code); });
}

std::string WithHeaderCode(std::string_view field, char code, bool present) {
  std::string result;
  for (char c : field) {
    if (ToUpperAscii(c) != ToUpperAscii(code)) result += c;
  }
  if (present) {
    // Added where the letters end, not after the padding.
    result.erase(result.find_last_not_of(' ') + 1);
    result += code;
  }
  return result;
}

HeaderEditor::HeaderEditor(std::filesystem::path path, Layout layout, std::string bytes)
    : m_path(std::move(path)), m_layout(layout), m_bytes(std::move(bytes)), m_saved(m_bytes) {}

Result<HeaderEditor> HeaderEditor::Open(const std::filesystem::path& image) {
  const std::string name = PathToUtf8(image);
  std::error_code error;
  if (!std::filesystem::exists(image, error)) {
    const std::filesystem::path outer = ExistingAncestor(image);
    if (!outer.empty() && std::filesystem::is_regular_file(outer, error)) {
      return Error{name + " lies inside the archive " + PathToUtf8(outer) +
                   "; unpack it to change its header."};
    }
  }
  auto file = BinaryFile::Open(image);
  if (!file) return file.error();
  if (!IsWritableByUser(image)) return Error{name + " is read-only; its header cannot be changed."};
  const Layout layout = DetectRomFormat(*file);
  if (layout == Layout::NoRom)
    return Error{name + " is not a cartridge image; it has no header to change."};
  if (layout == Layout::SplitLater) {
    return Error{name + " is a later volume of a split set; the header is in the first volume."};
  }
  if (!HoldsCartridgeHeader(*file, layout))
    return Error{name + " is too short to hold a whole cartridge header."};
  return HeaderEditor(image, layout, ReadLogicalBytes(*file, layout, kHeaderStart, kHeaderLength));
}

std::string HeaderEditor::Text(HeaderText id) const {
  const header_field::Field field = TextFieldOf(id).field;
  std::string_view bytes = Slice(m_bytes, field.offset, field.width);
  bytes = bytes.substr(0, bytes.find_last_not_of(std::string_view(" \0", 2)) + 1);
  return EscapeExactly(bytes);
}

Status HeaderEditor::SetText(HeaderText id, std::string_view text) {
  if (text == Text(id)) return {};
  const HeaderTextField& field = TextFieldOf(id);
  auto bytes = DecodeHexEscapes(text);
  if (!bytes) return Error{"The " + std::string(field.name) + ": " + bytes.error().message};
  if (bytes->size() > field.field.width) {
    return Error{fmt::format("The {} is {} characters long; it holds at most {}.", field.name,
                             bytes->size(), field.field.width)};
  }
  bytes->resize(field.field.width, ' ');
  m_bytes.replace(field.field.offset - kHeaderStart, field.field.width, *bytes);
  return {};
}

std::string HeaderEditor::Address(HeaderAddress id) const {
  const std::string_view bytes = Slice(m_bytes, AddressFieldOf(id).offset, 4);
  if (IsBlank(bytes)) return {};
  return fmt::format("{:08X}", BytesToNumber(bytes));
}

Status HeaderEditor::SetAddress(HeaderAddress id, std::string_view hex) {
  if (TrimBlanks(hex) == Address(id)) return {};
  const HeaderAddressField& field = AddressFieldOf(id);
  std::string bytes(4, ' ');
  const bool rom = id == HeaderAddress::RomStart || id == HeaderAddress::RomEnd;
  if (!TrimBlanks(hex).empty() || rom) {
    auto value = ParseHex(hex, field.name, 8);
    if (!value) return value.error();
    bytes = NumberToBytes(*value, 4);
  }
  m_bytes.replace(field.offset - kHeaderStart, 4, bytes);
  return {};
}

std::string HeaderEditor::Checksum() const {
  return fmt::format("{:04X}", ReadHeaderChecksum(Slice(m_bytes, header_field::kChecksum.offset,
                                                        header_field::kChecksum.width)));
}

Status HeaderEditor::SetChecksum(std::string_view hex) {
  if (TrimBlanks(hex) == Checksum()) return {};
  auto value = ParseHex(hex, "checksum", 4);
  if (!value) return value.error();
  m_bytes.replace(header_field::kChecksum.offset - kHeaderStart, 2, NumberToBytes(*value, 2));
  return {};
}

Status HeaderEditor::Validate() const {
  const auto mark = [](const std::string& bytes) {
    return Slice(bytes, header_field::kSystem.offset, 4) == "SEGA";
  };
  // Only a mark the image had can be lost; an image found by its copier header alone may
  // never have carried one.
  if (mark(m_saved) && !mark(m_bytes)) {
    return Error{
        "The system name must begin with SEGA: without it the image is no longer "
        "recognised as a cartridge."};
  }
  const AddressRange rom = ReadRomRange(Slice(m_bytes, header_field::kRomRange.offset, 8));
  if (rom.end < rom.start) return Error{"The ROM end address lies before its start."};
  const std::string ramStart = Address(HeaderAddress::RamStart);
  const std::string ramEnd = Address(HeaderAddress::RamEnd);
  if (ramStart.empty() != ramEnd.empty())
    return Error{"Give both RAM addresses, or neither for a cartridge without backup RAM."};
  if (ramEnd < ramStart) return Error{"The RAM end address lies before its start."};
  return {};
}

Status HeaderEditor::Save(bool fixChecksum, Host* progress) {
  const std::string name = PathToUtf8(m_path);
  if (Status valid = Validate(); !valid) return valid;
  if (!Changed() && !fixChecksum) return {};
  if (!IsWritableByUser(m_path)) return Error{name + " is read-only; its header was not changed."};
  std::string header = m_bytes;
  {
    auto file = BinaryFile::Open(m_path);
    if (!file) return file.error();
    if (DetectRomFormat(*file) != m_layout)
      return Error{name + " was changed by something else; open it again to edit its header."};
    if (fixChecksum) {
      // The sum starts past the header, so the edits do not change it.
      auto sum = CalcChecksum(*file, m_layout, progress);
      if (!sum) return sum.error();
      header.replace(header_field::kChecksum.offset - kHeaderStart, 2, NumberToBytes(*sum, 2));
    }
  }
  if (Status written = ReplaceHeader(m_path, m_layout, header); !written) return written;
  m_bytes = header;
  m_saved = header;
  return {};
}

}  // namespace romsteward
