#pragma once

#include <filesystem>
#include <initializer_list>
#include <string>
#include <string_view>

#include "support/temp_dir.h"

namespace romsteward::test {

/// Bytes from their values, for patches and images written out by hand.
inline std::string Bytes(std::initializer_list<int> values) {
  std::string bytes;
  for (int value : values)
    bytes += static_cast<char>(value);
  return bytes;
}

/// A test with its own temporary directory and files written into it by name.
class ByteFileTest : public TempDirTest {
protected:
  std::filesystem::path Put(std::string_view name, std::string_view bytes) const {
    const auto path = PathOf(name);
    WriteTestFile(path, bytes);
    return path;
  }
};

}  // namespace romsteward::test
