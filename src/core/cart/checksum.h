#pragma once

#include <cstdint>
#include <string_view>

namespace romsteward {

/// The cartridge checksum of a plain logical image: the 16-bit sum of the big-endian words
/// from logical offset 0x200 to the last whole 16 KiB block.
std::uint16_t ChecksumOfLogicalImage(std::string_view logical);

}  // namespace romsteward
