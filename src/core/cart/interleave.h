#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace romsteward {

inline constexpr std::size_t kBlockSize = 16384;
inline constexpr std::size_t kHalfBlock = kBlockSize / 2;
inline constexpr std::size_t kCopierHeaderSize = 512;

/// The 512-byte copier header of an SMD file or split volume. A block count of 256 or more
/// is written as 0x00 (not reduced modulo 256).
std::string BuildSmdHeader(std::int64_t blocks, bool moreVolumes);

/// File offset of logical byte `o` in an SMD file or split volume.
std::uint64_t SmdOffset(std::uint64_t o);
/// File offset of logical byte `o` in an MD file of length `fileLength`.
std::uint64_t MdOffset(std::uint64_t o, std::uint64_t fileLength);
/// Inverse of MdOffset in 1-based positions: file position `q` to logical position.
std::uint64_t MdToBinOffset(std::uint64_t q, std::uint64_t fileLength);

/// One 16 KiB interleaved block to plain order and back; exact inverses.
/// Both require `block.size() == kBlockSize`.
std::string SmdBlockToBin(std::string_view block);
std::string BinBlockToSmd(std::string_view block);

/// Whole-image forms: `SmdDataToBin` takes the data after the copier header (a whole
/// number of blocks); the MD pair works on the whole file (even length).
std::string SmdDataToBin(std::string_view data);
std::string BinToSmdData(std::string_view logical);
std::string MdToBin(std::string_view file);
std::string BinToMd(std::string_view logical);

}  // namespace romsteward
