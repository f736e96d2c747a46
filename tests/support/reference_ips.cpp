#include "support/reference_ips.h"

#include <cstdint>

namespace romsteward::test {

std::optional<std::string> ReferenceApplyIps(std::string_view patch, std::string image) {
  std::size_t at = 0;
  const auto has = [&](std::size_t count) { return patch.size() - at >= count; };
  const auto number = [&](std::size_t count) {
    std::uint32_t value = 0;
    for (std::size_t end = at + count; at < end; ++at) {
      value = value * 256 + static_cast<unsigned char>(patch[at]);
    }
    return value;
  };
  const auto put = [&](std::size_t offset, std::string_view data) {
    if (image.size() < offset + data.size()) image.resize(offset + data.size(), '\0');
    image.replace(offset, data.size(), data);
  };

  if (!patch.starts_with("PATCH")) return std::nullopt;
  at = 5;
  while (true) {
    if (!has(3)) return std::nullopt;  // no end marker
    if (patch.substr(at, 3) == "EOF") break;
    const std::uint32_t offset = number(3);
    if (!has(2)) return std::nullopt;
    const std::uint32_t length = number(2);
    if (length == 0) {  // run-length record: count, then the byte to repeat
      if (!has(3)) return std::nullopt;
      const std::uint32_t count = number(2);
      put(offset, std::string(count, patch[at++]));
    } else {
      if (!has(length)) return std::nullopt;
      put(offset, patch.substr(at, length));
      at += length;
    }
  }
  at += 3;
  if (patch.size() - at == 3) image.resize(number(3));
  return image;
}

}  // namespace romsteward::test
