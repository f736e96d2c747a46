#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <string>
#include <string_view>

#include "core/cart/header.h"
#include "core/cart/layout.h"
#include "core/common/result.h"

namespace romsteward {

class Host;

/// The header fields edited as text. Bytes that are no printable text show as \xNN, so an
/// unchanged field always writes back exactly what it held.
enum class HeaderText {
  System,
  MakerDate,
  DomesticName,
  OverseasName,
  ProductType,
  Serial,
  Version,
  Devices,
  RamInfo,
  Modem,
  Memo,
  Countries,
};

/// The 32-bit address fields, edited as hexadecimal.
enum class HeaderAddress { RomStart, RomEnd, RamStart, RamEnd };

struct HeaderTextField {
  HeaderText id;
  header_field::Field field;
  std::string_view label;  ///< the form's label, with its access key
  std::string_view name;   ///< how messages name the field
};
struct HeaderAddressField {
  HeaderAddress id;
  std::uint64_t offset;
  std::string_view label;
  std::string_view name;
};

/// A field's place, width and names.
const HeaderTextField& TextFieldOf(HeaderText id);
const HeaderAddressField& AddressFieldOf(HeaderAddress id);

/// A one-letter code of the devices or countries field and what it means ("Joypad").
struct HeaderCode {
  char code;
  std::string meaning;
};
std::span<const HeaderCode> DeviceCodes();
std::span<const HeaderCode> CountryCodes();
/// Whether the field text holds `code` (either case).
bool HasHeaderCode(std::string_view field, char code);
/// The field text with `code` added at its end or every occurrence removed; the other
/// letters, known or not, stay where they are.
std::string WithHeaderCode(std::string_view field, char code, bool present);

/// The header of one image file, decoded for editing and written back through the image's
/// layout. Every edit is checked as it is made; nothing reaches the file before Save.
class HeaderEditor {
public:
  /// Refuses what has no header to change: archive members, read-only files, files that are
  /// no image, later split volumes and images too short to hold a whole header.
  static Result<HeaderEditor> Open(const std::filesystem::path& image);

  const std::filesystem::path& Path() const { return m_path; }
  Layout ImageLayout() const { return m_layout; }
  /// The 256 header bytes with the edits made so far.
  const std::string& Bytes() const { return m_bytes; }
  CartridgeHeader Decoded() const { return DecodeHeader(RawHeader(m_bytes)); }
  bool Changed() const { return m_bytes != m_saved; }

  /// The field without its padding (trailing blanks and NULs).
  std::string Text(HeaderText id) const;
  /// A text that is not the one shown is checked and padded with blanks; too long a text
  /// or a bad \x escape is refused and the field keeps its bytes.
  Status SetText(HeaderText id, std::string_view text);

  /// Eight hexadecimal digits; "" when the field is blank (an image without backup RAM).
  std::string Address(HeaderAddress id) const;
  /// Up to eight hexadecimal digits. An empty text blanks a RAM address; the ROM addresses
  /// must have one.
  Status SetAddress(HeaderAddress id, std::string_view hex);

  /// The stored checksum as four hexadecimal digits.
  std::string Checksum() const;
  Status SetChecksum(std::string_view hex);

  /// The checks that need more than one field: the system mark that detection looks for and
  /// the order of the ranges.
  Status Validate() const;

  /// Writes the 256 bytes through the image's layout into a copy that replaces the image
  /// only once whole, keeping its permissions. With `fixChecksum` the checksum of the
  /// contents is stored as well (computed with `progress` when given).
  Status Save(bool fixChecksum, Host* progress = nullptr);

private:
  HeaderEditor(std::filesystem::path path, Layout layout, std::string bytes);

  std::filesystem::path m_path;
  Layout m_layout;
  std::string m_bytes;
  std::string m_saved;
};

}  // namespace romsteward
