#include "core/cart/split_set.h"

#include <filesystem>
#include <system_error>

#include "core/common/strings.h"

namespace romsteward {

std::string SplitVolumeStem(std::string_view name) {
  // Only the file name's own point counts: "/roms.d/GAME" has no extension to cut.
  constexpr std::string_view kSeparators =
      std::filesystem::path::preferred_separator == '\\' ? "\\/" : "/";
  const auto nameStart = name.find_last_of(kSeparators);
  const auto dot = name.rfind('.');
  const bool inName =
      dot != std::string_view::npos && (nameStart == std::string_view::npos || dot > nameStart);
  return std::string(inName ? name.substr(0, dot + 1) : name);
}

std::string SplitVolumeName(std::string_view stem, int number) {
  return std::string(stem) + std::to_string(number);
}

std::vector<std::string> ListSplitVolumes(std::string_view anyVolumeName) {
  const std::string stem = SplitVolumeStem(anyVolumeName);
  std::vector<std::string> volumes;
  for (int n = 1;; ++n) {
    std::string name = SplitVolumeName(stem, n);
    std::error_code error;
    if (!std::filesystem::is_regular_file(Utf8ToPath(name), error)) break;
    volumes.push_back(std::move(name));
  }
  return volumes;
}

SplitSetSize MeasureSplitSet(std::string_view anyVolumeName) {
  SplitSetSize size;
  for (const std::string& volume : ListSplitVolumes(anyVolumeName)) {
    std::error_code error;
    const auto length = std::filesystem::file_size(Utf8ToPath(volume), error);
    if (error) break;
    ++size.volumes;
    size.totalBytes += length;
  }
  return size;
}

}  // namespace romsteward
