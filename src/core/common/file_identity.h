#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace romsteward {

/// How a file is named in a record kept for later: its absolute path with symbolic links,
/// "." and ".." resolved as far as they exist, so that another way of reaching the same file
/// names it the same.
std::string FileIdentity(const std::filesystem::path& file);

/// Whether `file` is the file whose FileIdentity is `identity`.
bool IsSameFile(std::string_view identity, const std::filesystem::path& file);

}  // namespace romsteward
