#include "support/reference_ips.h"

#include <cstddef>
#include <cstdint>

namespace romsteward::test {

namespace {

class Cursor {
public:
  explicit Cursor(std::string_view bytes) : m_bytes(bytes) {}

  bool Has(std::size_t count) const { return m_bytes.size() - m_at >= count; }
  std::string_view Take(std::size_t count) {
    const std::string_view taken = m_bytes.substr(m_at, count);
    m_at += count;
    return taken;
  }
  std::uint32_t Number(std::size_t count) {
    std::uint32_t value = 0;
    for (unsigned char byte : Take(count))
      value = value * 256 + byte;
    return value;
  }

private:
  std::string_view m_bytes;
  std::size_t m_at = 0;
};

void Put(std::string& image, std::size_t offset, std::string_view data) {
  if (image.size() < offset + data.size()) image.resize(offset + data.size(), '\0');
  image.replace(offset, data.size(), data);
}

}  // namespace

std::optional<std::string> ReferenceApplyIps(std::string_view patch, std::string image) {
  Cursor in(patch);
  if (!in.Has(5) || in.Take(5) != "PATCH") return std::nullopt;
  while (true) {
    if (!in.Has(3)) return std::nullopt;  // no end marker
    const std::string_view head = in.Take(3);
    if (head == "EOF") break;
    const std::uint32_t offset = static_cast<unsigned char>(head[0]) * 65536u +
                                 static_cast<unsigned char>(head[1]) * 256u +
                                 static_cast<unsigned char>(head[2]);
    if (!in.Has(2)) return std::nullopt;
    const std::uint32_t length = in.Number(2);
    if (length == 0) {
      if (!in.Has(3)) return std::nullopt;
      const std::uint32_t count = in.Number(2);
      Put(image, offset, std::string(count, in.Take(1)[0]));
      continue;
    }
    if (!in.Has(length)) return std::nullopt;
    Put(image, offset, in.Take(length));
  }
  if (in.Has(3) && !in.Has(4)) image.resize(in.Number(3));
  return image;
}

}  // namespace romsteward::test
