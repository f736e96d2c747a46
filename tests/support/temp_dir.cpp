#include "support/temp_dir.h"

#include <fstream>
#include <random>

#include "core/common/binary_file.h"

namespace romsteward::test {

TempDir::TempDir() {
  std::random_device entropy;
  const auto base = std::filesystem::temp_directory_path();
  do {
    m_path = base / ("romsteward-test-" + std::to_string(entropy()));
  } while (!std::filesystem::create_directory(m_path));
}

TempDir::~TempDir() {
  std::error_code ignored;
  std::filesystem::remove_all(m_path, ignored);
}

std::filesystem::path TempDir::operator/(std::string_view name) const {
  return m_path / name;
}

std::filesystem::path TempDir::Write(std::string_view name, std::string_view bytes) const {
  const auto path = m_path / name;
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  EXPECT_TRUE(out.good()) << "cannot write " << path;
  return path;
}

std::string ReadFileBytes(const std::filesystem::path& path) {
  auto bytes = ReadWholeFile(path);
  EXPECT_TRUE(bytes.ok()) << (bytes.ok() ? "" : bytes.error().message);
  return bytes.ok() ? *bytes : std::string();
}

}  // namespace romsteward::test
