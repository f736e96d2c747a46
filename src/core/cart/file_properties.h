#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/common/result.h"

namespace romsteward {

class Host;

/// One line of the properties dialog.
struct PropertyRow {
  std::string label;
  std::string value;
};

/// What the properties dialog lists of the entry `entry` of `place` (a folder, or an archive
/// when `inArchive`): where it is, its size and layout, dates and permissions, the CRC32 and
/// SHA-1 of its ROM data and its stored and computed checksums. A value that cannot be had
/// says why in its row, so a damaged image still shows the rest. Fails only when the entry
/// cannot be read at all. The sums run with `progress`'s dialog when it is given.
Result<std::vector<PropertyRow>> ReadFileProperties(std::string_view place, std::string_view entry,
                                                    bool inArchive, Host* progress = nullptr);

}  // namespace romsteward
