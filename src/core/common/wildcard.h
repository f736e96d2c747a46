#pragma once

#include <string_view>

namespace romsteward {

/// Whether `name` matches the file mask `pattern`: "*" stands for any run of characters,
/// "?" for exactly one, letters match without regard to case (ASCII), as the masks of old
/// did on every file system. "*.*" matches every name, with or without a point.
bool MatchesMask(std::string_view name, std::string_view pattern);

/// Whether `name` matches any of the masks in `masks`, joined by ";" ("*.bin;*.smd").
bool MatchesAnyMask(std::string_view name, std::string_view masks);

}  // namespace romsteward
