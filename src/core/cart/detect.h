#pragma once

#include <cstdint>
#include <string_view>

#include "core/cart/layout.h"
#include "core/common/binary_file.h"

namespace romsteward {

/// The layout of `file`, from its signatures and copier header. With no file (nullptr) the
/// layout is read off the extension of `fileName` alone, so ".bin", ".smd", ".md" and ".1"
/// (any case) are known and everything else is NoRom.
Layout DetectRomFormat(const BinaryFile* file, std::string_view fileName);
inline Layout DetectRomFormat(const BinaryFile& file) {
  return DetectRomFormat(&file, {});
}
/// The layout of a whole image held in memory (an archive member), by the same signatures.
Layout DetectRomFormat(std::string_view bytes);

/// Cartridge size in megabits, the copier headers of a split set counted once. Saturates at
/// 255 like the byte it is kept in.
std::uint8_t RomSizeMbit(const BinaryFile& file, std::string_view name, Layout layout);

/// Whether the file is long enough to hold the whole cartridge header (logical 0x000-0x1FF)
/// in `layout`'s form: an SMD file or first volume needs its copier header and one whole
/// block. Any other layout has no header to hold and passes.
bool HoldsCartridgeHeader(const BinaryFile& file, Layout layout);

}  // namespace romsteward
