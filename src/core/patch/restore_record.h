#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/common/binary_file.h"
#include "core/common/result.h"

namespace romsteward {

/// One patch of a run as its restore record keeps it.
struct RunPatch {
  std::uint64_t offset = 0;  ///< zero-based
  std::string oldBytes;
  std::size_t newLength = 0;
  std::string newBytes;  ///< empty in records of older versions
};

/// What puts a patched file back: its size before the run and the run's patches.
struct RestoreRecord {
  std::uint64_t originalSize = 0;
  std::vector<RunPatch> patches;
};

std::string EncodeRecord(const RestoreRecord& record);
/// nullopt when damaged.
std::optional<RestoreRecord> DecodeRecord(std::string_view data);

/// Puts the old bytes back in the patches' order, then cuts off what the patches added
/// beyond the file's former end.
Status RestoreFile(const std::filesystem::path& path, const RestoreRecord& record);

/// Whether `file` is still the file the run patched: every byte a patch covers holds a new or
/// an old byte of a patch there (a kill may have come between two writes). Records of older
/// versions, without the new bytes, cannot tell and pass.
bool HoldsTheRun(const BinaryFile& file, const RestoreRecord& record);

}  // namespace romsteward
