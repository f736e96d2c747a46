#pragma once

#include <cstdint>
#include <filesystem>

#include "core/common/result.h"

namespace romsteward {

/// "&Fix header": the header's ROM range becomes 0 to `romSize` - 1 (big-endian, written
/// through the image's layout). A start address other than 0 is damage as well, and leaving it
/// would keep the two sizes apart.
Status FixHeaderRomSize(const std::filesystem::path& image, std::uint64_t romSize);

/// "&Truncate": cuts the image's ROM data down to `romSize` bytes, which must be a whole number
/// of 16 KiB blocks and less than the data held. BIN files are cut; SMD files are cut after
/// their copier header and get the new block count; MD files are interleaved anew over the
/// shorter length and replaced whole; split sets lose the volumes past the cut, and the volume
/// where it falls is cut and becomes the last (block count and "more volumes" byte updated).
/// The logical bytes that stay are unchanged.
Status TruncateRom(const std::filesystem::path& image, std::uint64_t romSize);

}  // namespace romsteward
