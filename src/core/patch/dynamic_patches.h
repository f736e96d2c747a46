#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/common/result.h"
#include "core/settings/registry_store.h"

namespace romsteward {

/// Stored-value messages of the patch commands.
inline constexpr std::string_view kRegistryError = "Error in system registry! Is it corrupt?";
inline constexpr std::string_view kMalformedPatch =
    "Error in dynamic patch. Please, create it again";

/// The key every dynamic patch is a value of (section PATCH of the application's settings).
std::string PatchKeyPath();

/// The section that names, under a patch's value name, the file its old bytes were read from
/// (see FileIdentity). Patches stored before it existed have no entry there.
inline constexpr std::string_view kSectionPatchSource = "PatchSource";
/// The file the patch `valueName` was taken from; nullopt when that was not recorded.
std::optional<std::string> PatchSource(const RegistryStore& store, std::string_view valueName);

/// A stored patch: value name list text + "|" + patch name, data position + "|" + new bytes
/// + "|" + old bytes.
struct PatchValue {
  std::uint64_t position = 0;  ///< one-based byte position in the image file
  std::string newBytes;        ///< written for a run
  std::string oldBytes;        ///< written back after it; as many as newBytes unless past the end
};

std::string PatchValueName(std::string_view listText, std::string_view patchName);
std::string EncodePatchValue(const PatchValue& value);
/// The three fields of a stored value. The old bytes are as many as the new ones (fewer only
/// when the patch runs past the end of the image), so the field separator is the first "|"
/// at or after the middle of the text after the position: a "|" or 0x00 among equally long
/// fields reads back right. nullopt when malformed: no second "|", or a position that is not
/// a decimal number of 1 or more.
std::optional<PatchValue> DecodePatchValue(std::string_view data);

/// The two values that store the patch `patchName` of the image listed as `listText`: the
/// patch, and the name of `source`, the file its old bytes were read from.
std::vector<RegistryStore::ValueWrite> PatchWrites(std::string_view listText,
                                                   std::string_view patchName,
                                                   const PatchValue& value,
                                                   const std::filesystem::path& source);
/// Writes (or replaces) the patch `patchName` of the image listed as `listText`, whose old
/// bytes were read from `source`, and the name of that file beside it (both or neither).
Status StorePatch(RegistryStore& store, std::string_view listText, std::string_view patchName,
                  const PatchValue& value, const std::filesystem::path& source);

/// Whether "Activate dynamic patch" is enabled for `listText`: some value name begins with
/// it, letter case included.
bool HasDynamicPatches(const RegistryStore& store, std::string_view listText);

/// The names offered for removal: patches whose name before its first "|" equals `listText`
/// in any letter case, in enumeration order. An empty value name ends the list.
std::vector<std::string> ListDynamicPatchNames(const RegistryStore& store,
                                               std::string_view listText);

/// Names and data of the patches applied when `listText` is launched: every value whose name
/// begins with `listText`, letter case included, in enumeration order. This is wider than
/// the removal list on purpose: A.BIN also gets the patches of A.BIN2.
Result<std::vector<std::pair<std::string, std::string>>> PatchesForLaunch(
    const RegistryStore& store, std::string_view listText);

/// Deletes the value upper-cased `listText` + "|" + `patchName` (names match in any case),
/// and the name of the file it was taken from.
Status RemoveDynamicPatch(RegistryStore& store, std::string_view listText,
                          std::string_view patchName);

}  // namespace romsteward
