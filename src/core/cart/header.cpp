#include "core/cart/header.h"

#include "core/cart/logical_io.h"
#include "core/common/strings.h"

namespace romsteward {

std::string ReadGameName(std::string_view field) {
  const std::string name(TrimBlanks(RemoveNuls(field)));
  return name.empty() ? "NOT FOUND" : name;
}

std::string DecodeProductType(std::string_view field) {
  const std::string type = ToUpperAscii(field);
  if (type == "GM") return "Game";
  if (type == "AL") return "Educational";
  return "Unknown";
}

std::uint16_t ReadHeaderChecksum(std::string_view field) {
  // A blank field means no checksum was ever written; 0x2020 would be a false value.
  if (TrimBlanks(field).empty() || field.size() < 2) return 0;
  return static_cast<std::uint16_t>(BytesToNumber(field.substr(0, 2)));
}

std::string DecodeIoDevices(std::string_view field) {
  std::string result;
  for (char c : TrimBlanks(field)) {
    const char code = ToUpperAscii(c);
    switch (code) {
      case 'J':
        result += ",Joypad";
        break;
      case '4':
        result += ",Team Play";
        break;
      case '6':
        result += ",6-button Joypad";
        break;
      case '0':
        result += ",Joystick for MS";
        break;
      case 'K':
        result += ",Keyboard";
        break;
      case 'R':
        result += ",Serial RS232C";
        break;
      case 'P':
        result += ",Printer";
        break;
      case 'T':
        result += ",Tablet";
        break;
      case 'B':
        result += ",Control Ball";
        break;
      case 'V':
        result += ",Paddle Controller";
        break;
      case 'F':
        result += ",Floppy Disk Drive";
        break;
      case 'C':
        result += ",CD-ROM";
        break;
      case 'L':
        result += ",Activator";
        break;
      case 'M':
        result += ",Mega Mouse";
        break;
      // The blank after the comma stays: a field that starts with an unknown letter shows
      // a leading blank, as it always has.
      default:
        result += ", Unknown (" + std::string(1, code) + ")";
        break;
    }
  }
  return result.empty() ? result : result.substr(1);
}

std::string DecodeCountries(std::string_view field) {
  const std::string withoutNuls = RemoveNuls(field);  // outlives the loop over its view
  std::string result;
  for (char c : TrimBlanks(withoutNuls)) {
    if (!result.empty() && result.back() != ',') result += ',';
    switch (ToUpperAscii(c)) {
      case 'J':
        result += "Japan";
        break;
      case 'U':
        result += "USA";
        break;
      case 'E':
        result += "Europe";
        break;
      case 'A':
        result += "Asia";
        break;
      case 'B':
      case '4':
        result += "Brazil";
        break;
      case 'F':
        result += "France";
        break;
      case '8':
        result += "Hong Kong";
        break;
      default:
        result += "Unknown (" + std::string(1, c) + ")";
        break;
    }
  }
  return result.empty() ? "NOT FOUND" : result;
}

AddressRange ReadRomRange(std::string_view field) {
  if (field.size() < 8) return {};
  return {static_cast<std::uint32_t>(BytesToNumber(field.substr(0, 4))),
          static_cast<std::uint32_t>(BytesToNumber(field.substr(4, 4)))};
}

std::uint64_t HeaderRomSize(std::string_view field) {
  if (field.size() < 8) return 0;
  const AddressRange range = ReadRomRange(field);
  const std::int64_t difference =
      static_cast<std::int64_t>(range.end) - static_cast<std::int64_t>(range.start);
  return static_cast<std::uint64_t>(difference < 0 ? -difference : difference) + 1;
}

AddressRange ReadSramRange(std::string_view field) {
  const std::string_view trimmed = TrimBlanks(field);
  return {static_cast<std::uint32_t>(BytesToNumber(trimmed.substr(0, 4))),
          static_cast<std::uint32_t>(
              BytesToNumber(trimmed.substr(std::min<std::size_t>(4, trimmed.size()))))};
}

std::string_view RawHeader::Field(header_field::Field field) const {
  const std::size_t start = field.offset - kHeaderStart;
  if (start >= m_bytes.size()) return {};
  return std::string_view(m_bytes).substr(start, field.width);
}

RawHeader ReadRawHeader(const BinaryFile& file) {
  return RawHeader(ReadHeaderBytes(file, kHeaderStart, kHeaderLength));
}

CartridgeHeader DecodeHeader(const RawHeader& raw) {
  namespace f = header_field;
  CartridgeHeader header;
  header.makerDate = DecodeMakerDate(raw.Field(f::kMakerDate));
  header.domesticName = ReadGameName(raw.Field(f::kDomesticName));
  header.overseasName = ReadGameName(raw.Field(f::kOverseasName));
  header.productType = DecodeProductType(raw.Field(f::kProductType));
  header.serial = std::string(raw.Field(f::kSerial));
  header.version = std::string(raw.Field(f::kVersion));
  header.checksum = ReadHeaderChecksum(raw.Field(f::kChecksum));
  header.devices = DecodeIoDevices(raw.Field(f::kDevices));
  header.rom = ReadRomRange(raw.Field(f::kRomRange));
  header.romSize = HeaderRomSize(raw.Field(f::kRomRange));
  header.sram = ReadSramRange(raw.Field(f::kSramRange));
  header.countries = DecodeCountries(raw.Field(f::kCountries));
  return header;
}

}  // namespace romsteward
