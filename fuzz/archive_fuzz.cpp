// Archive listing and extraction through libarchive: whatever the archive holds, nothing is
// written outside the extraction folder and nothing is left in it once removed.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>

#include "core/launch/zip_archive.h"
#include "fuzz_support.h"

using namespace romsteward;

namespace {

// Small, so a bomb costs the fuzzer little time.
constexpr std::uint64_t kSizeLimit = 256 * 1024;

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static fuzz::MemoryFile archive;
  static const std::filesystem::path scratch = fuzz::MakeScratchFolder();
  static const std::filesystem::path folder = scratch / "temp";
  std::filesystem::create_directory(folder);

  archive.Fill(fuzz::AsText(data, size));
  auto listing = ListZipEntries(archive.Path(), kAllFilesMask);
  if (!listing) return 0;
  if (ExtractZipMembers(archive.Path(), listing->names, folder, kSizeLimit)) {
    for (const std::string& name : listing->names)
      (void)RemoveExtractedMember(folder, name);
  }
  // A failed extraction takes back what it wrote, a finished one is removed by name: either
  // way the folder is empty again, and nothing ever appears beside it.
  bool stray = false;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(scratch)) {
    if (entry.path() == folder) continue;
    std::fprintf(stderr, "left behind: %s\n", entry.path().c_str());
    stray = true;
  }
  if (stray) std::abort();
  return 0;
}
