#pragma once

#include <filesystem>
#include <string>
#include <string_view>

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

  /// Writes `bytes` as the file `name` inside the directory and returns its path.
  std::filesystem::path Write(std::string_view name, std::string_view bytes) const;
  /// The whole file `name` (or a path) as bytes.
  static std::string Read(const std::filesystem::path& path);

private:
  std::filesystem::path m_path;
};

}  // namespace romsteward::test
