#include "core/cart/checksum.h"

#include "core/cart/interleave.h"

namespace romsteward {

std::uint16_t ChecksumOfLogicalImage(std::string_view logical) {
  const std::size_t end = logical.size() / kBlockSize * kBlockSize;
  std::uint16_t sum = 0;
  for (std::size_t i = 0x200; i + 1 < end; i += 2) {
    sum = static_cast<std::uint16_t>(sum + ((static_cast<unsigned char>(logical[i]) << 8) |
                                            static_cast<unsigned char>(logical[i + 1])));
  }
  return sum;
}

}  // namespace romsteward
