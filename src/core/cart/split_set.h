#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace romsteward {

/// "game." for "game.1": the name up to and including its last ".". A point in a folder
/// name does not count; a file name without one is returned whole.
std::string SplitVolumeStem(std::string_view name);
/// stem + n.
std::string SplitVolumeName(std::string_view stem, int number);

/// The existing volumes stem1, stem2, ... in order, stopping at the first gap.
std::vector<std::string> ListSplitVolumes(std::string_view anyVolumeName);

struct SplitSetSize {
  std::uint64_t volumes = 0;
  std::uint64_t totalBytes = 0;  ///< every volume's length, copier headers included
};
SplitSetSize MeasureSplitSet(std::string_view anyVolumeName);

}  // namespace romsteward
