#include "support/zip_craft.h"

#include <array>

namespace romsteward::test {

namespace {

std::uint32_t Crc32(const std::string& data) {
  static const std::array<std::uint32_t, 256> table = [] {
    std::array<std::uint32_t, 256> t{};
    for (std::uint32_t i = 0; i < 256; ++i) {
      std::uint32_t c = i;
      for (int k = 0; k < 8; ++k)
        c = (c & 1) ? 0xEDB88320u ^ (c >> 1) : c >> 1;
      t[i] = c;
    }
    return t;
  }();
  std::uint32_t crc = 0xFFFFFFFFu;
  for (unsigned char byte : data)
    crc = table[(crc ^ byte) & 0xFF] ^ (crc >> 8);
  return crc ^ 0xFFFFFFFFu;
}

void Put16(std::string& out, std::uint32_t v) {
  out += static_cast<char>(v & 0xFF);
  out += static_cast<char>((v >> 8) & 0xFF);
}

void Put32(std::string& out, std::uint32_t v) {
  Put16(out, v & 0xFFFF);
  Put16(out, v >> 16);
}

}  // namespace

std::string CraftZip(const std::vector<CraftedMember>& members) {
  std::string zip;
  std::string directory;
  for (const CraftedMember& m : members) {
    const auto offset = static_cast<std::uint32_t>(zip.size());
    const std::uint32_t crc = Crc32(m.data);
    const auto size = static_cast<std::uint32_t>(m.data.size());
    const std::uint32_t claimed = m.claimedSize.value_or(size);
    const auto nameLength = static_cast<std::uint32_t>(m.name.size());

    Put32(zip, 0x04034B50);
    Put16(zip, 10);  // version needed
    Put16(zip, 0);   // flags
    Put16(zip, 0);   // stored
    Put32(zip, 0);   // time and date
    Put32(zip, crc);
    Put32(zip, size);
    Put32(zip, claimed);
    Put16(zip, nameLength);
    Put16(zip, 0);
    zip += m.name;
    zip += m.data;

    Put32(directory, 0x02014B50);
    Put16(directory, 0x031E);  // made by Unix, so the mode in the attributes counts
    Put16(directory, 10);
    Put16(directory, 0);
    Put16(directory, 0);
    Put32(directory, 0);
    Put32(directory, crc);
    Put32(directory, size);
    Put32(directory, claimed);
    Put16(directory, nameLength);
    Put16(directory, 0);  // extra
    Put16(directory, 0);  // comment
    Put16(directory, 0);  // disk
    Put16(directory, 0);  // internal attributes
    Put32(directory, m.externalAttributes);
    Put32(directory, offset);
    directory += m.name;
  }
  const auto directoryOffset = static_cast<std::uint32_t>(zip.size());
  zip += directory;
  Put32(zip, 0x06054B50);
  Put16(zip, 0);
  Put16(zip, 0);
  Put16(zip, static_cast<std::uint32_t>(members.size()));
  Put16(zip, static_cast<std::uint32_t>(members.size()));
  Put32(zip, static_cast<std::uint32_t>(directory.size()));
  Put32(zip, directoryOffset);
  Put16(zip, 0);
  return zip;
}

}  // namespace romsteward::test
