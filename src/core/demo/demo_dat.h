#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace romsteward {

/// The file name of the made-up DAT that the demo collection carries.
inline constexpr std::string_view kDemoDatName = "Genesis Romsteward demo.dat";

/// One game of the demo DAT, made from an image's plain (BIN) bytes.
struct DemoDatGame {
  std::string name;
  std::string logical;  ///< the image in plain order
  bool crc = true;      ///< give the CRC32
  bool sha1 = true;     ///< give the SHA-1
};

/// A Logiqx DAT of `games`, plus a game the collection lacks and one damaged entry, as
/// collectors' DATs hold both.
std::string BuildDemoDat(const std::vector<DemoDatGame>& games);

}  // namespace romsteward
