#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace romsteward::test {

/// One member of a hand-made archive; the fields that hostile archives lie in are open.
struct CraftedMember {
  CraftedMember(std::string memberName, std::string memberData,
                std::uint32_t attributes = 0100644u << 16,
                std::optional<std::uint32_t> claimed = std::nullopt)
      : name(std::move(memberName)),
        data(std::move(memberData)),
        externalAttributes(attributes),
        claimedSize(claimed) {}

  std::string name;
  std::string data;
  /// Upper 16 bits: the Unix mode (0120777 makes a symbolic link whose target is `data`).
  std::uint32_t externalAttributes = 0100644u << 16;
  /// The uncompressed size the headers claim, when it is not the truth.
  std::optional<std::uint32_t> claimedSize;
};

/// A ZIP archive of stored (uncompressed) members, written byte by byte so that tests can
/// make archives no well-behaved library would write.
std::string CraftZip(const std::vector<CraftedMember>& members);

}  // namespace romsteward::test
