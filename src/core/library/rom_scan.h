#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "core/common/result.h"

namespace romsteward {

/// The "Show" choice of the ROM list, numbered as its menu and `show`.
enum class ListFilter { AllFiles = 0, RomFiles = 1 };

/// The masks of a filter, one text joined by ";".
std::string_view MasksOf(ListFilter filter);

/// The names (no path) of the plain files in `dir` that the filter lets through, unsorted:
/// every ".bin" first, then ".smd", ".md" and ".1", each group in the order the file system
/// gives. Folders, hidden files (a leading ".") and anything that is no regular file are
/// left out; masks match without regard to case.
Result<std::vector<std::string>> ScanRomDirectory(const std::filesystem::path& dir,
                                                  ListFilter filter);

}  // namespace romsteward
