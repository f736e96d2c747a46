#pragma once

#include <cstdint>
#include <string_view>

#include "core/cart/layout.h"
#include "core/common/binary_file.h"
#include "core/common/result.h"

namespace romsteward {

class Host;

/// The cartridge checksum of a plain logical image: the 16-bit sum of the big-endian words
/// from logical offset 0x200 to the last whole 16 KiB block.
std::uint16_t ChecksumOfLogicalImage(std::string_view logical);

/// The cartridge checksum of an open image in `layout` (the caller's detection).
/// BIN and SMD images and each volume of a split set count whole 16 KiB blocks only; an MD
/// image counts both halves of its interleave; a later split volume and a file that is no
/// image give 0. A split set is read from the volumes named like `file` (game.1, game.2 ...).
/// With `progress` the sum shows the "Progress" dialog, captioned per volume for split sets.
/// Fails when a volume cannot be opened or read whole.
Result<std::uint16_t> CalcChecksum(const BinaryFile& file, Layout layout, Host* progress = nullptr);

}  // namespace romsteward
