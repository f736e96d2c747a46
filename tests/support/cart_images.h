#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "core/cart/layout.h"

namespace romsteward::test {

/// A made-up cartridge's plain bytes: a valid header, filler that varies with `seed`, and a
/// correct checksum.
std::string MakeCartridge(std::size_t size, std::uint32_t seed = 1);

/// `logical` written at `path` in `layout` (BIN, SMD or MD).
void WriteImage(const std::filesystem::path& path, std::string_view logical, Layout layout);

/// `logical` written as the split set `stem`1, `stem`2 ... of `volumeBytes` of ROM data
/// each; returns the volumes' paths in order.
std::vector<std::filesystem::path> WriteSplitSet(const std::filesystem::path& stem,
                                                 std::string_view logical, std::size_t volumeBytes);

/// Takes every write permission away, as a user marking a file read-only does.
void MakeReadOnly(const std::filesystem::path& path);

}  // namespace romsteward::test
