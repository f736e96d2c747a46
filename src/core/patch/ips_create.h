#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>

#include "core/common/result.h"
#include "core/host/host.h"

namespace romsteward {

/// The message for inputs of different lengths.
inline constexpr std::string_view kIpsSizeMismatch = "The size of the files don't match!";

struct IpsPatch {
  std::string bytes;        ///< the whole file: magic, records, end marker
  std::size_t records = 0;  ///< how many records it holds
};

/// The IPS patch that turns `unchanged` into `changed` (equal lengths): one record per
/// maximal run of differing bytes, in ascending order, never merged across an equal byte and
/// never split. A run that would start at an offset reading as "EOF" or "eof" starts one
/// (equal) byte earlier so that readers do not stop there. Fails, naming the offset, when a
/// run lies beyond the 3-byte offsets or is longer than a record can hold.
Result<IpsPatch> DiffToIps(std::string_view unchanged, std::string_view changed);

/// The proposed name for a patch of `changedPath`: the path up to its last "." plus ".ips";
/// a path without "." keeps its whole text.
std::string DefaultIpsName(std::string_view changedPath);

/// Writes `patch` over the start of `target` without emptying it, so an older, longer file
/// keeps its tail behind the new end marker (readers stop at the marker). Goes through a
/// temporary file: a failure leaves the old file as it was.
Status WriteIpsOverExisting(const std::filesystem::path& target, std::string_view patch);

/// Compares two files and writes the patch between them to `output`. Nothing is written when
/// the patch cannot be made, nor when `output` is one of the inputs.
Result<IpsPatch> CreateIpsFile(const std::filesystem::path& unchanged,
                               const std::filesystem::path& changed,
                               const std::filesystem::path& output);

/// "C&reate IPS...": asks for the unchanged file, the changed file and the patch name
/// (dialogs start in `romDir`), then writes the patch and says how it went.
void CreateIpsCommand(Host& host, std::string_view romDir);

}  // namespace romsteward
