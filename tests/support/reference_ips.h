#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace romsteward::test {

/// An IPS reader written from the format alone, as other patching tools read it, and kept
/// apart from the program's own: the magic must be "PATCH", only an upper-case "EOF" ends the
/// records, a zero length introduces a run-length record, and three bytes after the marker
/// (exactly three, nothing more) give a size to cut the image to. Applies `patch` to a copy of
/// `image`; nullopt when the patch is malformed.
std::optional<std::string> ReferenceApplyIps(std::string_view patch, std::string image);

}  // namespace romsteward::test
