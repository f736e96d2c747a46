#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <string_view>

namespace romsteward::test {

/// A fresh directory for one test, removed with everything in it afterwards.
class TempDir {
public:
  TempDir();
  ~TempDir();
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;

  const std::filesystem::path& Path() const { return m_path; }
  /// Path() / name.
  std::filesystem::path operator/(std::string_view name) const { return m_path / name; }

  /// Writes `bytes` as `name` (replacing it) and returns its path.
  std::filesystem::path Write(std::string_view name, std::string_view bytes) const;
  /// The whole file; fails the test when it cannot be read.
  static std::string Read(const std::filesystem::path& path);

private:
  std::filesystem::path m_path;
};

/// A fixture that gives each test its own TempDir as `m_dir`.
class TempDirTest : public ::testing::Test {
protected:
  TempDir m_dir;
};

}  // namespace romsteward::test
