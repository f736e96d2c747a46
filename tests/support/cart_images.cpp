#include "support/cart_images.h"

#include <gtest/gtest.h>

#include "core/cart/convert.h"
#include "core/demo/cartridge_builder.h"
#include "core/demo/demo_collection.h"
#include "support/temp_dir.h"

namespace romsteward::test {

std::string MakeCartridge(std::size_t size, std::uint32_t seed) {
  CartridgeSpec spec;
  spec.size = size;
  spec.seed = seed;
  return BuildCartridgeImage(spec);
}

void WriteImage(const std::filesystem::path& path, std::string_view logical, Layout layout) {
  WriteTestFile(path, EncodeImage(logical, layout));
}

std::vector<std::filesystem::path> WriteSplitSet(const std::filesystem::path& stem,
                                                 std::string_view logical,
                                                 std::size_t volumeBytes) {
  std::vector<std::filesystem::path> paths;
  const std::vector<std::string> volumes = BuildSplitVolumes(logical, volumeBytes);
  for (std::size_t i = 0; i < volumes.size(); ++i) {
    paths.emplace_back(stem.string() + "." + std::to_string(i + 1));
    WriteTestFile(paths.back(), volumes[i]);
  }
  return paths;
}

void MakeReadOnly(const std::filesystem::path& path) {
  std::error_code error;
  std::filesystem::permissions(path,
                               std::filesystem::perms::owner_write |
                                   std::filesystem::perms::group_write |
                                   std::filesystem::perms::others_write,
                               std::filesystem::perm_options::remove, error);
  if (error) ADD_FAILURE() << "Cannot make " << path << " read-only: " << error.message();
}

}  // namespace romsteward::test
