#include "core/library/rom_scan.h"

#include <array>
#include <system_error>

#include "core/common/strings.h"
#include "core/common/wildcard.h"
#include "core/launch/zip_archive.h"

namespace romsteward {

namespace {

constexpr std::array<std::string_view, 4> kRomMaskPasses = {"*.bin", "*.smd", "*.md", "*.1"};

}  // namespace

std::string_view MasksOf(ListFilter filter) {
  return filter == ListFilter::AllFiles ? kAllFilesMask : kRomMasks;
}

Result<std::vector<std::string>> ScanRomDirectory(const std::filesystem::path& dir,
                                                  ListFilter filter) {
  // One enumeration fills the groups that one search per mask would have found, in the
  // same order, without reading the directory four times.
  std::array<std::vector<std::string>, kRomMaskPasses.size()> groups;
  std::error_code error;
  std::filesystem::directory_iterator it(dir, error);
  if (error) return Error{"Cannot read the directory " + PathToUtf8(dir) + ": " + error.message()};
  for (const std::filesystem::directory_iterator end; it != end; it.increment(error)) {
    if (error) break;
    std::error_code typeError;
    if (!it->is_regular_file(typeError)) continue;
    std::string name = PathToUtf8(it->path().filename());
    if (name.starts_with('.')) continue;
    if (filter == ListFilter::AllFiles) {
      groups[0].push_back(std::move(name));
      continue;
    }
    for (std::size_t pass = 0; pass < kRomMaskPasses.size(); ++pass) {
      if (MatchesMask(name, kRomMaskPasses[pass])) {
        groups[pass].push_back(std::move(name));
        break;
      }
    }
  }
  if (error) return Error{"Cannot read the directory " + PathToUtf8(dir) + ": " + error.message()};

  std::vector<std::string> names = std::move(groups[0]);
  for (std::size_t pass = 1; pass < groups.size(); ++pass)
    names.insert(names.end(), std::make_move_iterator(groups[pass].begin()),
                 std::make_move_iterator(groups[pass].end()));
  return names;
}

}  // namespace romsteward
