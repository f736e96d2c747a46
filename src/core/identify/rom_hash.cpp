#include "core/identify/rom_hash.h"

#include <fmt/format.h>
#include <openssl/evp.h>
#include <zlib.h>

#include <algorithm>
#include <limits>
#include <vector>

#include "core/cart/detect.h"
#include "core/cart/interleave.h"
#include "core/cart/split_set.h"
#include "core/common/binary_file.h"
#include "core/common/strings.h"

namespace romsteward {

struct RomHasher::Digest {
  std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> context{EVP_MD_CTX_new(),
                                                                  &EVP_MD_CTX_free};
};

RomHasher::RomHasher() : m_digest(std::make_unique<Digest>()) {
  m_crc = static_cast<std::uint32_t>(crc32(0, nullptr, 0));
  // Only an exhausted allocator makes these fail, and then nothing else would work either.
  if (!m_digest->context || EVP_DigestInit_ex(m_digest->context.get(), EVP_sha1(), nullptr) != 1)
    throw std::bad_alloc();
}

RomHasher::~RomHasher() = default;

void RomHasher::Update(std::string_view data) {
  m_size += data.size();
  EVP_DigestUpdate(m_digest->context.get(), data.data(), data.size());
  // zlib takes lengths as uInt: feed it in pieces that fit.
  while (!data.empty()) {
    const std::size_t piece = std::min<std::size_t>(data.size(), std::numeric_limits<uInt>::max());
    m_crc = static_cast<std::uint32_t>(
        crc32(m_crc, reinterpret_cast<const Bytef*>(data.data()), static_cast<uInt>(piece)));
    data.remove_prefix(piece);
  }
}

RomHashes RomHasher::Finish() {
  unsigned char digest[EVP_MAX_MD_SIZE];
  unsigned int length = 0;
  EVP_DigestFinal_ex(m_digest->context.get(), digest, &length);
  RomHashes hashes{m_size, m_crc, {}};
  hashes.sha1.reserve(length * 2);
  for (unsigned int i = 0; i < length; ++i)
    hashes.sha1 += fmt::format("{:02x}", digest[i]);
  return hashes;
}

std::string Crc32Text(std::uint32_t crc) {
  return fmt::format("{:08x}", crc);
}

namespace {

// Big enough that the hashes run at the speed of the disk, small enough to stay in cache.
constexpr std::size_t kChunk = 64 * kBlockSize;

std::string NotWholeBlocks(std::string_view name) {
  return std::string(name) + std::string(
                                 " holds SMD data that is not a whole number of 16 KiB blocks; "
                                 "it cannot be put in plain order");
}

// The ROM data of an SMD file or split volume after its copier header, de-interleaved.
Status HashSmdData(const BinaryFile& file, std::string_view name, RomHasher& hasher) {
  const std::uint64_t size = file.Size();
  if (size < kCopierHeaderSize || (size - kCopierHeaderSize) % kBlockSize != 0)
    return Error{NotWholeBlocks(name)};
  std::vector<char> buffer(kChunk);
  for (std::uint64_t at = kCopierHeaderSize; at < size; at += kChunk) {
    const std::size_t got = file.ReadInto(at, buffer);
    if (got % kBlockSize != 0 || got == 0)
      return Error{fmt::format("{} could not be read to its end", name)};
    for (std::size_t block = 0; block < got; block += kBlockSize)
      hasher.Update(SmdBlockToBin(std::string_view(buffer.data() + block, kBlockSize)));
  }
  return {};
}

Status HashPlain(const BinaryFile& file, RomHasher& hasher) {
  std::vector<char> buffer(kChunk);
  for (std::uint64_t at = 0;;) {
    const std::size_t got = file.ReadInto(at, buffer);
    if (got == 0) return {};
    hasher.Update(std::string_view(buffer.data(), got));
    at += got;
  }
}

Result<RomHashes> HashSplitSet(const std::filesystem::path& first) {
  RomHasher hasher;
  for (const std::string& volume : ListSplitVolumes(PathToUtf8(first))) {
    auto file = BinaryFile::Open(Utf8ToPath(volume));
    if (!file) return file.error();
    if (Status hashed = HashSmdData(*file, volume, hasher); !hashed) return hashed.error();
  }
  return hasher.Finish();
}

Result<RomHashes> HashMd(std::string_view bytes, std::string_view name) {
  if (bytes.size() % 2 != 0)
    return Error{
        fmt::format("{} is an MD image of odd length; it cannot be put in plain order", name)};
  RomHasher hasher;
  hasher.Update(MdToBin(bytes));
  return hasher.Finish();
}

std::string LaterVolume(std::string_view name) {
  return fmt::format("{} is a later volume of a split set; it is identified with its first volume",
                     name);
}

}  // namespace

Result<HashedImage> HashImageFile(const std::filesystem::path& path) {
  const std::string name = PathToUtf8(path);
  auto file = BinaryFile::Open(path);
  if (!file) return file.error();
  HashedImage image{DetectRomFormat(*file), {}};
  RomHasher hasher;
  switch (image.layout) {
    case Layout::SplitLater:
      return Error{LaterVolume(name)};
    case Layout::SplitFirst: {
      auto set = HashSplitSet(path);
      if (!set) return set.error();
      image.hashes = std::move(*set);
      return image;
    }
    case Layout::Md: {
      auto whole = ReadWholeFile(path);
      if (!whole) return whole.error();
      auto hashes = HashMd(*whole, name);
      if (!hashes) return hashes.error();
      image.hashes = std::move(*hashes);
      return image;
    }
    case Layout::Smd:
      if (Status hashed = HashSmdData(*file, name, hasher); !hashed) return hashed.error();
      break;
    case Layout::Bin:
    case Layout::NoRom:
      if (Status hashed = HashPlain(*file, hasher); !hashed) return hashed.error();
      break;
  }
  image.hashes = hasher.Finish();
  return image;
}

Result<HashedImage> HashImageBytes(std::string_view bytes, std::string_view name) {
  HashedImage image{DetectRomFormat(bytes), {}};
  RomHasher hasher;
  switch (image.layout) {
    case Layout::SplitLater:
      return Error{LaterVolume(name)};
    case Layout::Md: {
      auto hashes = HashMd(bytes, name);
      if (!hashes) return hashes.error();
      image.hashes = std::move(*hashes);
      return image;
    }
    case Layout::Smd:
    case Layout::SplitFirst: {
      // A lone volume in an archive has no others to join: its own data is the image.
      const std::string_view data = bytes.substr(std::min(bytes.size(), kCopierHeaderSize));
      if (bytes.size() < kCopierHeaderSize || data.size() % kBlockSize != 0)
        return Error{NotWholeBlocks(name)};
      for (std::size_t at = 0; at < data.size(); at += kBlockSize)
        hasher.Update(SmdBlockToBin(data.substr(at, kBlockSize)));
      break;
    }
    case Layout::Bin:
    case Layout::NoRom:
      hasher.Update(bytes);
      break;
  }
  image.hashes = hasher.Finish();
  return image;
}

}  // namespace romsteward
