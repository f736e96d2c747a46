#include "support/temp_dir.h"

#include <unistd.h>

#include <fstream>
#include <iterator>
#include <stdexcept>

namespace romsteward::test {

TempDir::TempDir() {
  std::string pattern = (std::filesystem::temp_directory_path() / "romsteward-test-XXXXXX").string();
  if (::mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("mkdtemp failed");
  m_path = pattern;
}

TempDir::~TempDir() {
  std::error_code ignored;
  std::filesystem::permissions(m_path, std::filesystem::perms::owner_all,
                               std::filesystem::perm_options::add, ignored);
  std::filesystem::remove_all(m_path, ignored);
}

std::filesystem::path TempDir::Write(std::string_view name, std::string_view bytes) const {
  const std::filesystem::path path = m_path / name;
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  if (!out) throw std::runtime_error("cannot write " + path.string());
  return path;
}

std::string TempDir::Read(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) throw std::runtime_error("cannot read " + path.string());
  return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

}  // namespace romsteward::test
