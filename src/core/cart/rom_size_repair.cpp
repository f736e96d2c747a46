#include "core/cart/rom_size_repair.h"

#include <algorithm>
#include <string>
#include <system_error>
#include <vector>

#include "core/cart/detect.h"
#include "core/cart/header.h"
#include "core/cart/interleave.h"
#include "core/cart/logical_io.h"
#include "core/cart/rom_size_check.h"
#include "core/cart/split_set.h"
#include "core/common/atomic_file.h"
#include "core/common/binary_file.h"
#include "core/common/strings.h"

namespace romsteward {

namespace {

Error ReadOnly(const std::string& name) {
  return Error{name + " is read-only; it was not changed."};
}

std::string Bytes(std::uint64_t count) {
  return std::to_string(count) + " bytes";
}

// The copier header's block count, the one byte that has to follow a new length.
std::string BlockCountByte(std::uint64_t fileLength) {
  return BuildSmdHeader(static_cast<std::int64_t>(fileLength / kBlockSize), false).substr(0, 1);
}

Status CutFile(const std::filesystem::path& image, std::uint64_t length) {
  auto file = BinaryFile::Open(image, BinaryFile::Mode::ReadWrite);
  if (!file) return file.error();
  return file->Truncate(length);
}

// Cuts an SMD file or volume to `dataLength` bytes after its copier header and makes it the
// last of its set.
Status CutSmd(const std::filesystem::path& path, std::uint64_t dataLength) {
  auto file = BinaryFile::Open(path, BinaryFile::Mode::ReadWrite);
  if (!file) return file.error();
  const std::uint64_t length = kCopierHeaderSize + dataLength;
  if (file->Size() != length) {
    if (Status cut = file->Truncate(length); !cut) return cut;
  }
  // The block count and the last-volume flag go out in one write, byte 1 as it is.
  std::string head = file->ReadAt(0, 3);
  head.resize(3, '\0');
  head[0] = BlockCountByte(length)[0];
  head[2] = '\0';
  return file->WriteAt(0, head);
}

Status TruncateSplitSet(const std::string& name, std::uint64_t romSize) {
  const std::vector<std::string> volumes = ListSplitVolumes(name);
  if (std::find(volumes.begin(), volumes.end(), name) == volumes.end())
    return Error{name + " is not named like a volume of a split set (game.1, game.2 ...)."};

  // Find the volume where the cut falls; every volume before it stays whole.
  std::size_t last = volumes.size();
  std::uint64_t keep = romSize;
  for (std::size_t i = 0; i < volumes.size(); ++i) {
    std::error_code error;
    const std::uint64_t length = std::filesystem::file_size(Utf8ToPath(volumes[i]), error);
    if (error) return Error{"Cannot read " + volumes[i] + ": " + error.message()};
    if (length < kCopierHeaderSize || (length - kCopierHeaderSize) % kBlockSize != 0)
      return Error{volumes[i] + " does not hold whole 16 KiB blocks; repair its size first."};
    if (last == volumes.size() && keep <= length - kCopierHeaderSize) last = i;
    if (last == volumes.size()) keep -= length - kCopierHeaderSize;
  }
  if (last == volumes.size()) return Error{name + " holds less than the header gives."};

  for (std::size_t i = last; i < volumes.size(); ++i) {
    if (!IsWritableByUser(Utf8ToPath(volumes[i]))) return ReadOnly(volumes[i]);
  }
  const std::filesystem::path dir = Utf8ToPath(volumes[last]).parent_path();
  if (last + 1 < volumes.size() && !IsWritableByUser(dir.empty() ? "." : dir))
    return Error{"Cannot remove the volumes after " + volumes[last] +
                 ": their folder is read-only."};

  // From the end backwards, so that a failure still leaves a set without gaps.
  for (std::size_t i = volumes.size(); i-- > last + 1;) {
    std::error_code error;
    if (!std::filesystem::remove(Utf8ToPath(volumes[i]), error))
      return Error{"Cannot remove " + volumes[i] + ": " + error.message()};
  }
  return CutSmd(Utf8ToPath(volumes[last]), keep);
}

}  // namespace

Status FixHeaderRomSize(const std::filesystem::path& image, std::uint64_t romSize) {
  const std::string name = PathToUtf8(image);
  if (romSize == 0) return Error{name + " holds no ROM data to describe in its header."};
  if (romSize - 1 > 0xFFFFFFFFu)
    return Error{name + " holds more ROM data than a cartridge header can describe."};
  if (!IsWritableByUser(image)) return ReadOnly(name);
  auto file = BinaryFile::Open(image, BinaryFile::Mode::ReadWrite);
  if (!file) return file.error();
  const Layout layout = DetectRomFormat(*file);
  if (layout == Layout::NoRom || layout == Layout::SplitLater)
    return Error{name + " holds no cartridge header."};
  return WriteHeaderBytes(NumberToBytes(0, 4) + NumberToBytes(romSize - 1, 4), *file,
                          header_field::kRomRange.offset, layout);
}

Status TruncateRom(const std::filesystem::path& image, std::uint64_t romSize) {
  const std::string name = PathToUtf8(image);
  if (romSize == 0 || romSize % kBlockSize != 0) {
    return Error{"Cannot cut " + name + " to the " + Bytes(romSize) +
                 " its header gives: an image holds whole 16 KiB blocks. Fix the header instead."};
  }
  Layout layout;
  std::uint64_t held;
  std::string logical;
  {
    auto file = BinaryFile::Open(image);
    if (!file) return file.error();
    layout = DetectRomFormat(*file);
    held = FileRomSize(*file, layout);
    if (romSize >= held)
      return Error{name + " holds " + Bytes(held) + " of ROM data, no more than its header's " +
                   Bytes(romSize) + "; there is nothing to cut."};
    if (layout == Layout::Md) logical = ReadLogicalBytes(*file, layout, 0, romSize);
  }
  if (!IsWritableByUser(image)) return ReadOnly(name);

  switch (layout) {
    case Layout::Bin:
      return CutFile(image, romSize);
    case Layout::Smd:
      return CutSmd(image, romSize);
    // The whole file is one interleave, so a shorter image moves every byte.
    case Layout::Md:
      return WriteFileAtomically(image, BinToMd(logical));
    case Layout::SplitFirst:
      return TruncateSplitSet(name, romSize);
    default:
      return Error{name + " cannot be cut: it is not a whole cartridge image."};
  }
}

}  // namespace romsteward
