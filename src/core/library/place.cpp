#include "core/library/place.h"

#include <filesystem>
#include <system_error>

#include "core/common/strings.h"

namespace romsteward {

namespace {

bool IsDriveRootText(std::string_view path) {
  return path.size() == 3 && path.substr(1) == ":\\";
}

}  // namespace

bool PathExists(std::string_view path, PathKind kind) {
  path = TrimBlanks(path);
  std::error_code error;
  const auto status = path.empty() ? std::filesystem::file_status{}
                                   : std::filesystem::status(Utf8ToPath(path), error);
  if (!std::filesystem::exists(status)) return IsDriveRootText(path);
  return kind == PathKind::File ? std::filesystem::is_regular_file(status)
                                : std::filesystem::is_directory(status);
}

bool IsRemotePath(std::string_view path) {
  if (path.starts_with("\\\\")) return true;
  const auto colon = path.find("://");
  if (colon == std::string_view::npos || colon == 0) return false;
  // A scheme is letters, digits, "+", "-" and "." after a first letter.
  for (std::size_t i = 0; i < colon; ++i) {
    const char c = path[i];
    const bool letter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
    const bool other = (c >= '0' && c <= '9') || c == '+' || c == '-' || c == '.';
    if (!letter && (i == 0 || !other)) return false;
  }
  return true;
}

}  // namespace romsteward
