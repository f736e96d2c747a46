#include "core/cart/logical_io.h"

#include <algorithm>
#include <vector>

#include "core/cart/detect.h"
#include "core/cart/interleave.h"
#include "core/common/strings.h"

namespace romsteward {

namespace {

std::uint64_t FileOffset(Layout layout, std::uint64_t logical, std::uint64_t fileLength) {
  switch (layout) {
    case Layout::Md:
      return MdOffset(logical, fileLength);
    case Layout::Smd:
    case Layout::SplitFirst:
    case Layout::SplitLater:
      return SmdOffset(logical);
    default:
      return logical;
  }
}

bool IsImageLayout(Layout layout) {
  return layout != Layout::NoRom;
}

// A run of logical bytes that lie side by side in the file.
struct Run {
  std::uint64_t fileOffset;
  std::size_t firstIndex;  // index into the logical range
  std::size_t length;
  std::size_t stride;  // distance between consecutive indexes of the run
};

// Interleaved layouts put the odd and even bytes of a range in two contiguous stretches
// (per block for SMD), so a header read is two reads rather than 256.
std::vector<Run> FileRuns(Layout layout, std::uint64_t position, std::size_t count,
                          std::uint64_t fileLength) {
  std::vector<Run> runs;
  for (std::size_t start = 0; start < 2 && start < count; ++start) {
    const std::size_t stride = layout == Layout::Bin ? 1 : 2;
    if (layout == Layout::Bin && start == 1) break;
    for (std::size_t i = start; i < count; i += stride) {
      const std::uint64_t offset = FileOffset(layout, position + i, fileLength);
      if (!runs.empty()) {
        Run& last = runs.back();
        if (last.stride == stride && last.firstIndex % stride == i % stride &&
            last.fileOffset + last.length == offset &&
            last.firstIndex + last.length * stride == i) {
          ++last.length;
          continue;
        }
      }
      runs.push_back(Run{offset, i, 1, stride});
    }
  }
  return runs;
}

}  // namespace

std::string ReadLogicalBytes(const BinaryFile& file, Layout layout, std::uint64_t position,
                             std::size_t count) {
  if (!IsImageLayout(layout)) return {};
  std::string out(count, '\0');
  const std::uint64_t length = file.Size();
  std::string buffer;
  for (const Run& run : FileRuns(layout, position, count, length)) {
    buffer.assign(run.length, '\0');
    file.ReadInto(run.fileOffset, buffer);  // what lies past the end stays 0x00
    for (std::size_t k = 0; k < run.length; ++k)
      out[run.firstIndex + k * run.stride] = buffer[k];
  }
  return out;
}

std::string ReadHeaderBytes(const BinaryFile& file, std::uint64_t position, std::size_t count) {
  return ReadLogicalBytes(file, DetectRomFormat(file), position, count);
}

Status WriteHeaderBytes(std::string_view data, BinaryFile& file, std::uint64_t position,
                        Layout layout) {
  if (!IsImageLayout(layout)) return {};
  const std::vector<Run> runs = FileRuns(layout, position, data.size(), file.Size());
  if (runs.empty()) return {};
  // The runs of an interleaved layout lie apart (8 KiB in an SMD block, half the file in MD):
  // they go out in one write with the bytes between them as they are, so that a kill cannot
  // leave half a field written.
  std::uint64_t first = UINT64_MAX;
  std::uint64_t end = 0;
  for (const Run& run : runs) {
    first = std::min(first, run.fileOffset);
    end = std::max(end, run.fileOffset + run.length);
  }
  const auto fill = [&](const Run& run, char* out) {
    for (std::size_t k = 0; k < run.length; ++k)
      out[k] = data[run.firstIndex + k * run.stride];
  };
  std::string buffer;
  if (end - first <= kMaxWholeFileSize) {
    buffer.assign(static_cast<std::size_t>(end - first), '\0');
    file.ReadInto(first, buffer);  // what lies past the end is written as 0x00, as before
    for (const Run& run : runs)
      fill(run, buffer.data() + (run.fileOffset - first));
    return file.WriteAt(first, buffer);
  }
  for (const Run& run : runs) {
    buffer.resize(run.length);
    fill(run, buffer.data());
    if (Status written = file.WriteAt(run.fileOffset, buffer); !written) return written;
  }
  return {};
}

Result<std::string> ReadLogicalImage(const BinaryFile& file, Layout layout) {
  const std::string name = PathToUtf8(file.Path());
  if (IsSplitVolume(layout))
    return Error{name + " is one volume of a split set; join the set first."};
  if (layout == Layout::NoRom) return Error{name + " is not a cartridge image."};

  auto bytes = ReadWholeFile(file.Path());
  if (!bytes) return bytes.error();
  std::string_view data = *bytes;
  if (layout == Layout::Smd) {
    if (data.size() < kCopierHeaderSize)
      return Error{name + " is shorter than its 512-byte copier header."};
    data.remove_prefix(kCopierHeaderSize);
  }
  if (data.size() % kBlockSize != 0) {
    return Error{name + " holds " + std::to_string(data.size()) +
                 " bytes of ROM data, which is not a whole number of 16 KiB blocks; "
                 "fix its size first so that no byte is lost."};
  }
  switch (layout) {
    case Layout::Smd:
      return SmdDataToBin(data);
    case Layout::Md:
      return MdToBin(data);
    default:
      return std::string(data);
  }
}

}  // namespace romsteward
