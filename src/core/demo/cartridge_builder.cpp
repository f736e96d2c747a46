#include "core/demo/cartridge_builder.h"

#include <algorithm>

#include "core/cart/checksum.h"
#include "core/cart/header.h"
#include "core/common/strings.h"

namespace romsteward {

namespace {

void Put(std::string& image, std::uint64_t offset, std::string_view bytes) {
  std::copy(bytes.begin(), bytes.end(), image.begin() + static_cast<std::ptrdiff_t>(offset));
}

// A header text field: cut to its width and padded with blanks, as mastering tools did.
void PutText(std::string& image, header_field::Field field, std::string_view text) {
  std::string padded(text.substr(0, field.width));
  padded.resize(field.width, ' ');
  Put(image, field.offset, padded);
}

}  // namespace

std::string BuildCartridgeImage(const CartridgeSpec& spec) {
  namespace f = header_field;
  std::string image(std::max<std::size_t>(spec.size, 0x200), '\0');

  // Filler that looks like code and data rather than a flat pattern (xorshift32).
  std::uint32_t state = spec.seed * 2654435761u + 1;
  for (std::size_t i = 0x200; i < image.size(); ++i) {
    state ^= state << 13;
    state ^= state >> 17;
    state ^= state << 5;
    image[i] = static_cast<char>(state >> 24);
  }

  Put(image, 0x000, NumberToBytes(0x00FFFE00, 4));  // initial stack pointer
  Put(image, 0x004, NumberToBytes(0x00000200, 4));  // reset vector
  // A program emulators keep running: "bra.s *" at the reset address, every exception and
  // interrupt vector at an "rte" just after it. Random code would freeze them at once.
  for (std::size_t vector = 0x008; vector < 0x100; vector += 4)
    Put(image, vector, NumberToBytes(0x00000202, 4));
  Put(image, 0x200, std::string("\x60\xFE\x4E\x73", 4));
  Put(image, 0x100, std::string(0x100, ' '));
  Put(image, f::kSystem.offset, "SEGA MEGA DRIVE ");
  PutText(image, f::kMakerDate, spec.makerDate);
  PutText(image, f::kDomesticName, spec.domesticName);
  PutText(image, f::kOverseasName, spec.overseasName);
  PutText(image, f::kProductType, spec.productType);
  PutText(image, f::kSerial, spec.serial);
  Put(image, 0x18B, "-");
  PutText(image, f::kVersion, spec.version);
  PutText(image, f::kDevices, spec.devices);
  Put(image, f::kRomRange.offset, NumberToBytes(0, 4) + NumberToBytes(image.size() - 1, 4));
  Put(image, 0x1A8, NumberToBytes(0x00FF0000, 4) + NumberToBytes(0x00FFFFFF, 4));
  if (spec.backupRam) {
    Put(image, 0x1B0, std::string("RA\xF8\x20", 4));
    Put(image, f::kSramRange.offset, NumberToBytes(0x00200001, 4) + NumberToBytes(0x0020FFFF, 4));
  }
  PutText(image, {0x1F0, 16}, spec.countries);

  std::uint16_t checksum = ChecksumOfLogicalImage(image);
  if (spec.wrongChecksum) checksum = static_cast<std::uint16_t>(checksum + 1);
  Put(image, f::kChecksum.offset, NumberToBytes(checksum, 2));
  return image;
}

}  // namespace romsteward
