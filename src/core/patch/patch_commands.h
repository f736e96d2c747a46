#pragma once

#include <cstddef>
#include <filesystem>
#include <string_view>

#include "core/host/host.h"
#include "core/settings/registry_store.h"
#include "core/tools/split_join.h"

namespace romsteward {

/// Above this many records an IPS file is stored as dynamic patches only after a question:
/// a patch of countless tiny records would flood the store and the patch lists.
inline constexpr std::size_t kManyIpsRecords = 1000;

/// Stores each record of the IPS file `ips` (named `ipsName` in messages) as a dynamic patch
/// of the image listed as `listText`: named `baseName` + 0, 1, ... in file order, the old
/// bytes read from `image` at the record's offset. Above kManyIpsRecords it asks first and
/// shows progress (which can cancel). Every patch is stored or none. Reports a failed write
/// or a damaged patch through the host, then "Romsteward generated N dynamic patches from
/// the IPS!".
CommandResult StoreIpsAsDynamicPatches(Host& host, RegistryStore& store,
                                       const std::filesystem::path& image,
                                       std::string_view listText, std::string_view ips,
                                       std::string_view ipsName, std::string_view baseName);

/// "Convert IPS to Dynamic Patch...": asks for the IPS file (starting in `romDir`) and the base
/// name, then StoreIpsAsDynamicPatches.
void ConvertIpsToDynamicPatchesCommand(Host& host, RegistryStore& store,
                                       const std::filesystem::path& image,
                                       std::string_view listText, std::string_view romDir);

/// "Remove dynamic patches...": offers the image's patches in the list dialog and removes the
/// chosen one after a confirmation. True when a patch was removed.
bool RemoveDynamicPatchesCommand(Host& host, RegistryStore& store, std::string_view listText);

/// The confirmation asked before removing `patchName`.
std::string RemovalQuestion(std::string_view patchName);

}  // namespace romsteward
