#include "support/temp_dir.h"

#include <unistd.h>

#include <random>
#include <system_error>

#include "core/common/atomic_file.h"
#include "core/common/binary_file.h"

namespace romsteward::test {

TempDir::TempDir() {
  std::random_device entropy;
  const auto base = std::filesystem::temp_directory_path();
  for (int attempt = 0; attempt < 100; ++attempt) {
    auto candidate =
        base / ("romsteward-test-" + std::to_string(::getpid()) + "-" + std::to_string(entropy()));
    if (std::filesystem::create_directory(candidate)) {
      m_path = std::move(candidate);
      return;
    }
  }
  ADD_FAILURE() << "cannot create a temporary directory in " << base;
}

TempDir::~TempDir() {
  if (m_path.empty()) return;
  std::error_code error;
  // Tests take permissions away to provoke failures; give them back so everything goes.
  for (auto it = std::filesystem::recursive_directory_iterator(m_path, error);
       !error && it != std::filesystem::recursive_directory_iterator(); it.increment(error))
    std::filesystem::permissions(it->path(), std::filesystem::perms::owner_all,
                                 std::filesystem::perm_options::add, error);
  std::filesystem::remove_all(m_path, error);
}

std::filesystem::path TempDir::Write(std::string_view name, std::string_view bytes) const {
  const auto path = m_path / name;
  const Status written = WriteFileAtomically(path, bytes);
  EXPECT_TRUE(written.ok()) << written.error().message;
  return path;
}

std::string TempDir::Read(const std::filesystem::path& path) {
  Result<std::string> bytes = ReadWholeFile(path);
  EXPECT_TRUE(bytes.ok()) << bytes.error().message;
  return bytes.ok() ? std::move(bytes).value() : std::string();
}

}  // namespace romsteward::test
