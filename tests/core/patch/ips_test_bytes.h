#pragma once

#include <initializer_list>
#include <string>

namespace romsteward::test {

/// Bytes from their values, for patches written out by hand.
inline std::string Bytes(std::initializer_list<int> values) {
  std::string bytes;
  for (int value : values)
    bytes += static_cast<char>(value);
  return bytes;
}

}  // namespace romsteward::test
