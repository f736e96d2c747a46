#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <string_view>

namespace romsteward::test {

/// A fresh directory under the system's temporary folder, removed with everything in it.
class TempDir {
public:
  TempDir();
  ~TempDir();
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;

  const std::filesystem::path& Path() const { return m_path; }
  std::filesystem::path operator/(std::string_view name) const;

  /// Writes `bytes` as the file `name` inside the directory and returns its path.
  std::filesystem::path Write(std::string_view name, std::string_view bytes) const;

private:
  std::filesystem::path m_path;
};

/// The whole file, or a test failure and an empty text when it cannot be read.
std::string ReadFileBytes(const std::filesystem::path& path);

/// A test with its own temporary directory.
class TempDirTest : public ::testing::Test {
protected:
  TempDir m_dir;
};

}  // namespace romsteward::test
