#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "core/cart/layout.h"
#include "core/common/binary_file.h"
#include "core/common/result.h"

namespace romsteward {

/// `count` logical bytes from logical `position`, read through the layout's mapping.
/// Bytes past the end of the file read as 0x00. A NoRom file yields "".
std::string ReadLogicalBytes(const BinaryFile& file, Layout layout, std::uint64_t position,
                             std::size_t count);

/// ReadLogicalBytes after detecting the layout of `file` once.
std::string ReadHeaderBytes(const BinaryFile& file, std::uint64_t position, std::size_t count);

/// Writes `data` at logical `position` through the mapping of `layout` (the caller's
/// detection). Any layout but BIN, SMD, MD and the split volumes writes nothing.
Status WriteHeaderBytes(std::string_view data, BinaryFile& file, std::uint64_t position,
                        Layout layout);

/// The plain logical bytes of a whole BIN, SMD or MD image (an SMD image's copier header
/// left out). Refused unless the data is a whole number of 16 KiB blocks, so no tail is
/// ever lost silently.
Result<std::string> ReadLogicalImage(const BinaryFile& file, Layout layout);

}  // namespace romsteward
