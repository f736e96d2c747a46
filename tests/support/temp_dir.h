#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <string_view>

#include "support/scoped_env.h"

namespace romsteward::test {

/// A fresh directory under the system's temporary folder, removed with everything in it
/// when the object goes.
class TempDir {
public:
  TempDir();
  ~TempDir();
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;

  const std::filesystem::path& Path() const { return m_path; }
  std::filesystem::path operator/(std::string_view name) const { return m_path / name; }

  /// Writes `contents` as the file `name` inside the directory and returns its path.
  std::filesystem::path Write(std::string_view name, std::string_view contents) const;

private:
  std::filesystem::path m_path;
};

/// Whole-file helpers for tests; a failure to read or write fails the running test.
void WriteTestFile(const std::filesystem::path& path, std::string_view contents);
std::string ReadTestFile(const std::filesystem::path& path);

/// Fixture for tests that write files: `Dir()` is new for every test. The user's cache
/// folder ($XDG_CACHE_HOME) is "cache" in it, so nothing reaches the real one.
class TempDirTest : public ::testing::Test {
protected:
  const std::filesystem::path& Dir() const { return m_dir.Path(); }
  std::filesystem::path PathOf(std::string_view name) const { return m_dir / name; }

private:
  TempDir m_dir;
  ScopedEnv m_cache{"XDG_CACHE_HOME", (m_dir / "cache").string()};
};

}  // namespace romsteward::test
