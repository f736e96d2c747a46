#pragma once

#include <string_view>

namespace romsteward {

inline constexpr std::string_view kUncRefused =
    "Genesis Romsteward currently don't support UNC pathnames! Please, make a conection to "
    "drive and try again!";
inline constexpr std::string_view kDirectoryGone = "Directory no longer exists";

enum class PathKind { File, Directory };

/// Whether `path` (blanks trimmed) names an existing regular file or directory. Every
/// regular file counts as a file, whatever its permissions; a file test on a directory and
/// a directory test on a file are false. An empty or missing path is true only for the text
/// of a drive root ("C:\").
bool PathExists(std::string_view path, PathKind kind);

/// Whether `path` lies on another machine: a UNC path ("\\server\share") or a URL
/// ("smb://", "sftp://") that a file dialog may hand back. Such places are refused.
bool IsRemotePath(std::string_view path);

}  // namespace romsteward
