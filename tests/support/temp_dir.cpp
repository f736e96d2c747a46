#include "support/temp_dir.h"

#include <stdlib.h>

#include <fstream>
#include <system_error>

#include "core/common/binary_file.h"

namespace romsteward::test {

TempDir::TempDir() {
  std::string pattern =
      (std::filesystem::temp_directory_path() / "romsteward-test-XXXXXX").string();
  if (mkdtemp(pattern.data()) == nullptr) {
    ADD_FAILURE() << "Cannot create a temporary directory from " << pattern;
  }
  m_path = pattern;
}

TempDir::~TempDir() {
  std::error_code ignored;
  std::filesystem::remove_all(m_path, ignored);
}

void WriteTestFile(const std::filesystem::path& path, std::string_view contents) {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out.write(contents.data(), static_cast<std::streamsize>(contents.size()));
  if (!out) ADD_FAILURE() << "Cannot write the test file " << path;
}

std::string ReadTestFile(const std::filesystem::path& path) {
  auto contents = ReadWholeFile(path);
  if (!contents) {
    ADD_FAILURE() << contents.error().message;
    return {};
  }
  return std::move(contents).value();
}

}  // namespace romsteward::test
