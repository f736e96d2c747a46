#pragma once

#include <cstddef>
#include <filesystem>
#include <string_view>

#include "core/common/binary_file.h"
#include "core/common/result.h"
#include "core/host/host.h"
#include "core/patch/ips_format.h"

namespace romsteward {

struct IpsApplyReport {
  std::size_t records = 0;  ///< records written
  IpsEnd end = IpsEnd::Marker;
  /// For a damaged patch (cut short, or too short to hold the magic), what happened in words.
  std::string damage;
};

/// Writes the records of `patch` into `image` in place, in file order. Bytes no record names
/// keep their values and a record past the end lengthens the file. A patch cut short inside
/// a record still has the complete records before it written; the report says so.
Result<IpsApplyReport> ApplyIps(std::string_view patch, BinaryFile& image,
                                std::string_view patchName);

/// ApplyIps on files: the patch is read whole, the image opened for writing in place.
Result<IpsApplyReport> ApplyIpsFile(const std::filesystem::path& patch,
                                    const std::filesystem::path& image);

/// "&Apply IPS...": asks for the patch and the image (dialogs start in `romDir`), applies it
/// and says how it went.
void ApplyIpsCommand(Host& host, std::string_view romDir);

}  // namespace romsteward
