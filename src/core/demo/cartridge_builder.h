#pragma once

#include <cstdint>
#include <string>

namespace romsteward {

/// What goes into a made-up cartridge: the demo collection and the tests craft their images
/// from this, so nothing is copied from anywhere.
struct CartridgeSpec {
  std::string makerDate = "(C)SEGA 1994.JAN";
  std::string domesticName = "DEMO CARTRIDGE";
  std::string overseasName = "DEMO CARTRIDGE";
  std::string productType = "GM";
  std::string serial = "00000000";
  std::string version = "00";
  std::string devices = "J";
  std::string countries = "JUE";
  std::size_t size = 256 * 1024;  ///< logical bytes; a whole number of 16 KiB blocks
  bool backupRam = false;
  bool wrongChecksum = false;  ///< store a checksum one off from the true one
  std::uint32_t seed = 1;      ///< varies the filler bytes between cartridges
};

/// The plain logical bytes (BIN layout) of a cartridge with a valid header and, unless asked
/// otherwise, a correct checksum.
std::string BuildCartridgeImage(const CartridgeSpec& spec);

}  // namespace romsteward
