#include "core/cart/checksum.h"

#include <algorithm>
#include <bit>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "core/cart/interleave.h"
#include "core/cart/split_set.h"
#include "core/common/strings.h"
#include "core/host/host.h"

namespace romsteward {

namespace {

// The sum starts at logical 0x200, past the vectors and the cartridge header.
constexpr std::size_t kSummedFrom = 0x200;

// The summing loops are written for the vectoriser: they work through lanes of a fixed length
// (a constant trip count, so vector code comes out at the default optimisation level). Every
// range a layout sums (a block, half a block, either less its first 0x200 or 0x100 bytes) is a
// whole number of short lanes.
//
// A byte sum is written as a sum of absolute differences from zero, the form that x86
// compilers turn into psadbw: 16 or 32 bytes summed by one instruction instead of widened one
// by one. Long lanes cut the cost of adding up the vector's parts at the end of each lane. A
// call sums at most one read buffer, so 32 bits hold its total.
constexpr std::size_t kLongLane = 1024;
constexpr std::size_t kShortLane = 256;
// A word sum reads the data as native 16-bit words and adds their two bytes apart, in 16-bit
// lanes: 256 words keep each byte total within 16 bits (256 x 255), so the adds never widen.
constexpr std::size_t kWordLane = 256;

// Bytes read per call: four blocks keep the buffer in the core's own cache and below the size
// at which the allocator maps fresh pages (page faults on every call would cost more than the
// sum itself).
constexpr std::size_t kReadSize = 4 * kBlockSize;

#if defined(__GNUC__) && defined(__x86_64__) && defined(__ELF__)
// One copy of each summing routine for processors with AVX2 and one for the rest, chosen when
// the program loads: the same loops at twice the vector width.
#define ROMSTEWARD_VECTOR_CLONES __attribute__((target_clones("avx2", "default")))
#else
#define ROMSTEWARD_VECTOR_CLONES
#endif

alignas(64) constexpr unsigned char kZeros[kLongLane] = {};

inline std::uint32_t AbsoluteDifference(unsigned char a, unsigned char b) {
  return static_cast<std::uint32_t>(std::abs(int{a} - int{b}));
}

template <std::size_t kLane>
inline void AddBytes(const unsigned char* p, std::uint32_t& total) {
  for (std::size_t i = 0; i < kLane; ++i)
    total += AbsoluteDifference(p[i], kZeros[i]);
}

ROMSTEWARD_VECTOR_CLONES std::uint64_t SumBytes(const unsigned char* p, std::size_t n) {
  std::uint32_t total = 0;
  std::size_t at = 0;
  for (; at + kLongLane <= n; at += kLongLane)
    AddBytes<kLongLane>(p + at, total);
  for (; at + kShortLane <= n; at += kShortLane)
    AddBytes<kShortLane>(p + at, total);
  for (; at < n; ++at)
    total += p[at];
  return total;
}

// The big-endian words of the bytes `words` holds in memory order.
ROMSTEWARD_VECTOR_CLONES std::uint64_t SumWords(const std::uint16_t* words, std::size_t count) {
  std::uint64_t lowBytes = 0;  // of the native words
  std::uint64_t highBytes = 0;
  std::size_t at = 0;
  for (; at + kWordLane <= count; at += kWordLane) {
    std::uint16_t low = 0;
    std::uint16_t high = 0;
    for (std::size_t i = 0; i < kWordLane; ++i) {
      low = static_cast<std::uint16_t>(low + (words[at + i] & 0xFF));
      high = static_cast<std::uint16_t>(high + (words[at + i] >> 8));
    }
    lowBytes += low;
    highBytes += high;
  }
  for (; at < count; ++at) {
    lowBytes += words[at] & 0xFF;
    highBytes += words[at] >> 8;
  }
  // The byte that comes first in memory is the big-endian word's high byte.
  if constexpr (std::endian::native == std::endian::little)
    return 256 * lowBytes + highBytes;
  else
    return 256 * highBytes + lowBytes;
}

std::uint64_t SumPlainBlock(const std::uint16_t* block, bool first) {
  const std::size_t from = first ? kSummedFrom / 2 : 0;
  return SumWords(block + from, kHalfBlock - from);
}

// The first half holds the odd (low) logical bytes, the second the even (high) ones.
std::uint64_t SumInterleavedBlock(const unsigned char* block, bool first) {
  const std::size_t from = first ? kSummedFrom / 2 : 0;
  return SumBytes(block + from, kHalfBlock - from) +
         256 * SumBytes(block + kHalfBlock + from, kHalfBlock - from);
}

// The "Progress" dialog while the sum runs, when the caller asked for it.
class ProgressReport {
public:
  explicit ProgressReport(Host* host) : m_host(host) {
    if (m_host != nullptr) m_host->BeginProgress("Progress");
  }
  ~ProgressReport() {
    if (m_host != nullptr) m_host->EndProgress();
  }
  ProgressReport(const ProgressReport&) = delete;
  ProgressReport& operator=(const ProgressReport&) = delete;

  void Caption(const std::string& caption) {
    if (m_host == nullptr) return;
    m_host->SetProgressCaption(caption);
    m_last = -1;
  }
  // Sent only when the rounded percentage changes: the host is told at most 101 times per
  // file. The sum takes a fraction of a second, so a cancel request is not offered.
  void Percent(int percent) {
    if (m_host == nullptr || percent == m_last) return;
    m_last = percent;
    m_host->SetProgress(percent);
  }
  void Position(std::uint64_t position, std::uint64_t length) {
    if (length > 0) Percent(static_cast<int>((position * 100 + length / 2) / length));
  }

private:
  Host* m_host;
  int m_last = -1;
};

class Summer {
public:
  Summer(const BinaryFile& file, ProgressReport& progress)
      : m_file(file), m_progress(progress), m_length(file.Size()) {}

  // `blocks` whole blocks stored from file offset `start`; logical 0x000-0x1FF left out of the
  // first one when `skipHeader`.
  Result<std::uint64_t> SumBlocks(std::uint64_t start, std::uint64_t blocks, bool interleaved,
                                  bool skipHeader) {
    std::uint64_t total = 0;
    for (std::uint64_t done = 0; done < blocks;) {
      const auto count =
          static_cast<std::size_t>(std::min<std::uint64_t>(kReadSize / kBlockSize, blocks - done));
      const std::uint64_t offset = start + done * kBlockSize;
      if (IsHole(offset, count * kBlockSize)) {
        done += count;
        m_progress.Position(offset + count * kBlockSize, m_length);
        continue;
      }
      if (Status read = Read(offset, count * kBlockSize); !read) return read.error();
      for (std::size_t b = 0; b < count; ++b, ++done) {
        const bool first = skipHeader && done == 0;
        total += interleaved ? SumInterleavedBlock(Bytes() + b * kBlockSize, first)
                             : SumPlainBlock(Words() + b * kHalfBlock, first);
        m_progress.Position(offset + (b + 1) * kBlockSize, m_length);
      }
    }
    return total;
  }

  // Every byte of [start, start + count).
  Result<std::uint64_t> SumRange(std::uint64_t start, std::uint64_t count) {
    std::uint64_t total = 0;
    for (std::uint64_t done = 0; done < count;) {
      const auto size = static_cast<std::size_t>(std::min<std::uint64_t>(kReadSize, count - done));
      if (!IsHole(start + done, size)) {
        if (Status read = Read(start + done, size); !read) return read.error();
        total += SumBytes(Bytes(), size);
      }
      done += size;
    }
    return total;
  }

  std::uint64_t Length() const { return m_length; }

private:
  // Zeros add nothing to any of the sums, so a hole of a sparse file is passed without being
  // read: copying gigabytes of zeros out of the kernel was most of the time such a file took.
  // Reads go forward only, so the last extent of data or hole found answers until passed.
  bool IsHole(std::uint64_t offset, std::size_t size) {
    if (offset < m_dataEnd) return false;
    if (offset + size <= m_holeEnd) return true;
    const std::uint64_t data = m_file.NextDataOffset(offset);
    if (data >= offset + size) {
      m_holeEnd = data;
      return true;
    }
    m_dataEnd = m_file.NextHoleOffset(data);
    return false;
  }

  Status Read(std::uint64_t offset, std::size_t size) {
    if (!m_buffer) m_buffer = std::make_unique_for_overwrite<std::uint16_t[]>(kReadSize / 2);
    if (m_file.ReadInto(offset, std::span<char>(reinterpret_cast<char*>(m_buffer.get()), size)) !=
        size)
      return Error{"Cannot read all of " + PathToUtf8(m_file.Path()) +
                   ": it changed while it was being read."};
    return {};
  }
  // The buffer holds 16-bit words for the word sums; its bytes may be read as well.
  const std::uint16_t* Words() const { return m_buffer.get(); }
  const unsigned char* Bytes() const {
    return reinterpret_cast<const unsigned char*>(m_buffer.get());
  }

  const BinaryFile& m_file;
  ProgressReport& m_progress;
  std::uint64_t m_length;
  std::unique_ptr<std::uint16_t[]> m_buffer;
  std::uint64_t m_dataEnd = 0;  ///< bytes before this may hold data
  std::uint64_t m_holeEnd = 0;  ///< a hole known to reach up to here
};

// The whole blocks after an SMD file's or volume's copier header. A tail shorter than a block
// is left out, as for BIN images.
Result<std::uint64_t> SumSmd(const BinaryFile& file, bool skipHeader, ProgressReport& progress) {
  Summer summer(file, progress);
  const std::uint64_t length = summer.Length();
  const std::uint64_t blocks =
      length > kCopierHeaderSize ? (length - kCopierHeaderSize) / kBlockSize : 0;
  return summer.SumBlocks(kCopierHeaderSize, blocks, true, skipHeader);
}

// Each half of the whole-file interleave past its first 0x100 bytes (logical 0x000-0x1FF).
Result<std::uint64_t> SumMd(const BinaryFile& file, ProgressReport& progress) {
  Summer summer(file, progress);
  const std::uint64_t half = summer.Length() / 2;
  const std::uint64_t skip = kSummedFrom / 2;
  const std::uint64_t count = half > skip ? half - skip : 0;
  progress.Percent(0);
  auto low = summer.SumRange(skip, count);
  if (!low) return low.error();
  progress.Percent(50);
  auto high = summer.SumRange(half + skip, count);
  if (!high) return high.error();
  return *low + 256 * *high;
}

Result<std::uint64_t> SumSplitSet(const BinaryFile& file, ProgressReport& progress) {
  const std::string name = PathToUtf8(file.Path());
  const std::vector<std::string> volumes = ListSplitVolumes(name);
  // Summing some other set, or this volume alone, would give a plausible but wrong value.
  if (std::find(volumes.begin(), volumes.end(), name) == volumes.end())
    return Error{name +
                 " is a volume of a split set but is not named like one (game.1, game.2 ...); "
                 "rename it first."};
  std::uint64_t total = 0;
  for (std::size_t n = 0; n < volumes.size(); ++n) {
    progress.Caption("Progress (volume " + std::to_string(n + 1) + ")");
    auto volume = BinaryFile::Open(Utf8ToPath(volumes[n]));
    if (!volume) return volume.error();
    auto sum = SumSmd(*volume, n == 0, progress);
    if (!sum) return sum.error();
    total += *sum;
  }
  return total;
}

}  // namespace

std::uint16_t ChecksumOfLogicalImage(std::string_view logical) {
  std::vector<std::uint16_t> block(kHalfBlock);
  std::uint64_t total = 0;
  for (std::size_t at = 0; at + kBlockSize <= logical.size(); at += kBlockSize) {
    std::memcpy(block.data(), logical.data() + at, kBlockSize);
    total += SumPlainBlock(block.data(), at == 0);
  }
  return static_cast<std::uint16_t>(total);
}

Result<std::uint16_t> CalcChecksum(const BinaryFile& file, Layout layout, Host* progress) {
  if (layout == Layout::SplitLater || layout == Layout::NoRom) return std::uint16_t{0};

  ProgressReport report(progress);
  Result<std::uint64_t> total = std::uint64_t{0};
  switch (layout) {
    case Layout::Bin: {
      Summer summer(file, report);
      total = summer.SumBlocks(0, summer.Length() / kBlockSize, false, true);
      break;
    }
    case Layout::Smd:
      total = SumSmd(file, true, report);
      break;
    case Layout::Md:
      total = SumMd(file, report);
      break;
    case Layout::SplitFirst:
      total = SumSplitSet(file, report);
      break;
    default:
      break;
  }
  if (!total) return total.error();
  return static_cast<std::uint16_t>(*total);
}

}  // namespace romsteward
