#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

#include "core/cart/layout.h"
#include "core/common/result.h"

namespace romsteward {

/// The hashes DAT files list, of an image's ROM data in plain (BIN) order.
struct RomHashes {
  std::uint64_t size = 0;
  std::uint32_t crc32 = 0;
  std::string sha1;  ///< lower-case hexadecimal

  bool operator==(const RomHashes&) const = default;
};

/// CRC32 and SHA-1 of data handed over in pieces.
class RomHasher {
public:
  RomHasher();
  ~RomHasher();
  RomHasher(const RomHasher&) = delete;
  RomHasher& operator=(const RomHasher&) = delete;

  void Update(std::string_view data);
  RomHashes Finish();

private:
  struct Digest;
  std::unique_ptr<Digest> m_digest;
  std::uint32_t m_crc = 0;
  std::uint64_t m_size = 0;
};

/// "0a1b2c3d": a CRC32 as DAT files write it.
std::string Crc32Text(std::uint32_t crc);

/// What an image file's hashes were taken of.
struct HashedImage {
  Layout layout = Layout::NoRom;
  RomHashes hashes;
};

/// Hashes the image at `path` as the BIN it converts to: an SMD image without its copier
/// header and de-interleaved, an MD image de-interleaved, the first volume of a split set
/// together with every volume after it. Any other file is hashed as it is. A later split
/// volume is refused (it is hashed with its first volume), as is SMD data that is not whole
/// 16 KiB blocks and an MD file of odd length.
Result<HashedImage> HashImageFile(const std::filesystem::path& path);
/// The same for a whole image in memory (an archive member); `name` names it in messages.
Result<HashedImage> HashImageBytes(std::string_view bytes, std::string_view name);

}  // namespace romsteward
