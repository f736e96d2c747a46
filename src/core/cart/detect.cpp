#include "core/cart/detect.h"

#include <algorithm>

#include "core/cart/interleave.h"
#include "core/cart/split_set.h"
#include "core/common/strings.h"

namespace romsteward {

namespace {

// The detection itself, over anything that reads bytes at an offset and knows its size.
template <class ReadAt>
Layout DetectFromBytes(const ReadAt& readAt, std::uint64_t size) {
  // Only the odd letters of "SEGA" are looked for in the interleaved layouts: offsets 0x280
  // (SMD) and 0x80 (MD) are where logical bytes 0x101 and 0x103 land.
  if (readAt(0x100, 4) == "SEGA") return Layout::Bin;
  if (readAt(0x280, 2) == "EA") {
    const std::string split = readAt(2, 1);
    return split == "\x40" ? Layout::SplitFirst : Layout::Smd;
  }
  if (readAt(0x80, 2) == "EA") return Layout::Md;

  // A later volume carries only its copier header; its "more volumes" byte may say either.
  std::string header = readAt(0, kCopierHeaderSize);
  if (header.size() == kCopierHeaderSize) {
    header[2] = 0x40;
    const auto blocks = static_cast<std::int64_t>(size / kBlockSize);
    if (header == BuildSmdHeader(blocks, true)) return Layout::SplitLater;
  }
  return Layout::NoRom;
}

}  // namespace

Layout DetectRomFormat(const BinaryFile* file, std::string_view fileName) {
  if (file == nullptr) {
    const Layout byName = LayoutFromCode(FileExtension(fileName));
    return byName == Layout::SplitLater ? Layout::NoRom : byName;
  }
  return DetectFromBytes(
      [file](std::uint64_t offset, std::size_t count) { return file->ReadAt(offset, count); },
      file->Size());
}

Layout DetectRomFormat(std::string_view bytes) {
  return DetectFromBytes(
      [bytes](std::uint64_t offset, std::size_t count) {
        return offset >= bytes.size() ? std::string() : std::string(bytes.substr(offset, count));
      },
      bytes.size());
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
