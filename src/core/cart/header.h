#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "core/common/binary_file.h"

namespace romsteward {

/// Logical offsets and widths of the cartridge header fields.
namespace header_field {
struct Field {
  std::uint64_t offset;
  std::size_t width;
};
inline constexpr Field kSystem{0x100, 4};
inline constexpr Field kMakerDate{0x110, 16};
inline constexpr Field kDomesticName{0x120, 48};
inline constexpr Field kOverseasName{0x150, 48};
inline constexpr Field kProductType{0x180, 2};
inline constexpr Field kSerial{0x183, 8};
inline constexpr Field kVersion{0x18C, 2};
inline constexpr Field kChecksum{0x18E, 2};
inline constexpr Field kDevices{0x190, 16};
inline constexpr Field kRomRange{0x1A0, 8};
inline constexpr Field kSramRange{0x1B4, 8};
inline constexpr Field kCountries{0x1F0, 3};
}  // namespace header_field

inline constexpr std::uint64_t kHeaderStart = 0x100;
inline constexpr std::size_t kHeaderLength = 0x100;

// The decoders are pure functions of a field's raw bytes; an empty field (a file that is no
// image) gets each decoder's fallback.

/// Publisher, month, year and the trimmed field: "SEGA, January of 1994 ((C)SEGA 1994.JAN)".
std::string DecodeMakerDate(std::string_view field);
/// NUL bytes removed and blanks trimmed; "NOT FOUND" when nothing is left.
std::string ReadGameName(std::string_view field);
/// "Game", "Educational" or "Unknown".
std::string DecodeProductType(std::string_view field);
/// 0 when the field is blank; otherwise the two bytes big-endian.
std::uint16_t ReadHeaderChecksum(std::string_view field);
/// "Joypad,6-button Joypad"; an unknown letter adds ", Unknown (X)"; "" when empty.
std::string DecodeIoDevices(std::string_view field);
/// "Japan,USA,Europe"; "NOT FOUND" when empty.
std::string DecodeCountries(std::string_view field);

struct AddressRange {
  std::uint32_t start = 0;
  std::uint32_t end = 0;
};
/// The ROM start and end addresses.
AddressRange ReadRomRange(std::string_view field);
/// |end - start| + 1 of the ROM addresses (64-bit, so the full 32-bit range fits); 0 when
/// the field is missing.
std::uint64_t HeaderRomSize(std::string_view field);
/// The backup RAM addresses: the trimmed field's first 4 bytes and the rest, big-endian.
AddressRange ReadSramRange(std::string_view field);

/// The 256 header bytes of an image as read through its layout ("" for no image).
class RawHeader {
public:
  explicit RawHeader(std::string bytes) : m_bytes(std::move(bytes)) {}
  /// A field's bytes; shorter or empty when the header is.
  std::string_view Field(header_field::Field field) const;
  const std::string& Bytes() const { return m_bytes; }

private:
  std::string m_bytes;
};

RawHeader ReadRawHeader(const BinaryFile& file);

/// Every field decoded: the cartridge header record the panel, report and tool show.
struct CartridgeHeader {
  std::string makerDate;
  std::string domesticName;
  std::string overseasName;
  std::string productType;
  std::string serial;
  std::string version;
  std::uint16_t checksum = 0;
  std::string devices;
  AddressRange rom;
  std::uint64_t romSize = 0;
  AddressRange sram;
  std::string countries;
};

CartridgeHeader DecodeHeader(const RawHeader& raw);
inline CartridgeHeader ReadCartridgeHeader(const BinaryFile& file) {
  return DecodeHeader(ReadRawHeader(file));
}

}  // namespace romsteward
