#include "core/cart/detect.h"

#include <algorithm>

#include "core/cart/interleave.h"
#include "core/cart/split_set.h"
#include "core/common/strings.h"

namespace romsteward {

Layout DetectRomFormat(const BinaryFile* file, std::string_view fileName) {
  if (file == nullptr) {
    const Layout byName = LayoutFromCode(FileExtension(fileName));
    return byName == Layout::SplitLater ? Layout::NoRom : byName;
  }

  // Only the odd letters of "SEGA" are looked for in the interleaved layouts: offsets 0x280
  // (SMD) and 0x80 (MD) are where logical bytes 0x101 and 0x103 land.
  if (file->ReadAt(0x100, 4) == "SEGA") return Layout::Bin;
  if (file->ReadAt(0x280, 2) == "EA") {
    const std::string split = file->ReadAt(2, 1);
    return split == "\x40" ? Layout::SplitFirst : Layout::Smd;
  }
  if (file->ReadAt(0x80, 2) == "EA") return Layout::Md;

  // A later volume carries only its copier header; its "more volumes" byte may say either.
  std::string header = file->ReadAt(0, kCopierHeaderSize);
  if (header.size() == kCopierHeaderSize) {
    header[2] = 0x40;
    const auto blocks = static_cast<std::int64_t>(file->Size() / kBlockSize);
    if (header == BuildSmdHeader(blocks, true)) return Layout::SplitLater;
  }
  return Layout::NoRom;
}

bool HoldsCartridgeHeader(const BinaryFile& file, Layout layout) {
  switch (layout) {
    case Layout::Bin:
    case Layout::Md:
      return file.Size() >= 0x200;
    case Layout::Smd:
    case Layout::SplitFirst:
      return file.Size() >= kCopierHeaderSize + kBlockSize;
    default:
      return true;
  }
}

std::uint8_t RomSizeMbit(const BinaryFile& file, std::string_view name, Layout layout) {
  std::uint64_t total = file.Size();
  if (IsSplitVolume(layout)) {
    const SplitSetSize set = MeasureSplitSet(name);
    // A volume outside any numbered set counts alone.
    if (set.volumes > 0) total = set.totalBytes - (set.volumes - 1) * kCopierHeaderSize;
  }
  return static_cast<std::uint8_t>(std::min<std::uint64_t>(total * 8 / 1048576, 255));
}

}  // namespace romsteward
