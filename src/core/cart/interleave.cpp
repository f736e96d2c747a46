#include "core/cart/interleave.h"

#include <cassert>

namespace romsteward {

std::string BuildSmdHeader(std::int64_t blocks, bool moreVolumes) {
  std::string header(kCopierHeaderSize, '\0');
  header[0] = (blocks >= 0 && blocks < 256) ? static_cast<char>(blocks) : '\0';
  header[1] = 0x03;
  header[2] = moreVolumes ? 0x40 : 0x00;
  header[8] = static_cast<char>(0xAA);
  header[9] = static_cast<char>(0xBB);
  header[10] = 0x06;
  return header;
}

std::uint64_t SmdOffset(std::uint64_t o) {
  const std::uint64_t block = o / kBlockSize;
  const std::uint64_t r = o % kBlockSize;
  return kCopierHeaderSize + block * kBlockSize + r / 2 + (r % 2 == 0 ? kHalfBlock : 0);
}

std::uint64_t MdOffset(std::uint64_t o, std::uint64_t fileLength) {
  return o % 2 == 0 ? o / 2 + fileLength / 2 : (o - 1) / 2;
}

std::uint64_t MdToBinOffset(std::uint64_t q, std::uint64_t fileLength) {
  return q > fileLength / 2 ? 2 * q - fileLength - 1 : 2 * q;
}

namespace {

// Plain loops over separate input and output buffers: the compiler turns these into
// shuffles, which is what makes whole-image conversion run at memory speed.
void Deinterleave(const char* odd, const char* even, std::size_t pairs, char* out) {
  for (std::size_t i = 0; i < pairs; ++i) {
    out[2 * i] = even[i];
    out[2 * i + 1] = odd[i];
  }
}

void Interleave(const char* in, std::size_t pairs, char* odd, char* even) {
  for (std::size_t i = 0; i < pairs; ++i) {
    even[i] = in[2 * i];
    odd[i] = in[2 * i + 1];
  }
}

}  // namespace

std::string SmdBlockToBin(std::string_view block) {
  assert(block.size() == kBlockSize);
  std::string out(kBlockSize, '\0');
  Deinterleave(block.data(), block.data() + kHalfBlock, kHalfBlock, out.data());
  return out;
}

std::string BinBlockToSmd(std::string_view block) {
  assert(block.size() == kBlockSize);
  std::string out(kBlockSize, '\0');
  Interleave(block.data(), kHalfBlock, out.data(), out.data() + kHalfBlock);
  return out;
}

std::string SmdDataToBin(std::string_view data) {
  assert(data.size() % kBlockSize == 0);
  std::string out(data.size(), '\0');
  for (std::size_t at = 0; at < data.size(); at += kBlockSize)
    Deinterleave(data.data() + at, data.data() + at + kHalfBlock, kHalfBlock, out.data() + at);
  return out;
}

std::string BinToSmdData(std::string_view logical) {
  assert(logical.size() % kBlockSize == 0);
  std::string out(logical.size(), '\0');
  for (std::size_t at = 0; at < logical.size(); at += kBlockSize)
    Interleave(logical.data() + at, kHalfBlock, out.data() + at, out.data() + at + kHalfBlock);
  return out;
}

std::string MdToBin(std::string_view file) {
  assert(file.size() % 2 == 0);
  const std::size_t half = file.size() / 2;
  std::string out(file.size(), '\0');
  Deinterleave(file.data(), file.data() + half, half, out.data());
  return out;
}

std::string BinToMd(std::string_view logical) {
  assert(logical.size() % 2 == 0);
  const std::size_t half = logical.size() / 2;
  std::string out(logical.size(), '\0');
  Interleave(logical.data(), half, out.data(), out.data() + half);
  return out;
}

}  // namespace romsteward
