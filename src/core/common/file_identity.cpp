#include "core/common/file_identity.h"

#include <system_error>

#include "core/common/strings.h"

namespace romsteward {

std::string FileIdentity(const std::filesystem::path& file) {
  std::error_code error;
  auto resolved = std::filesystem::weakly_canonical(file, error);
  if (error) resolved = std::filesystem::absolute(file, error).lexically_normal();
  return PathToUtf8(error ? file : resolved);
}

bool IsSameFile(std::string_view identity, const std::filesystem::path& file) {
  if (FileIdentity(file) == identity) return true;
  // The recorded path may have been reached through a link since removed or renamed.
  std::error_code error;
  return std::filesystem::equivalent(Utf8ToPath(identity), file, error) && !error;
}

}  // namespace romsteward
