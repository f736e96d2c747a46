#include <sys/stat.h>
#include <unistd.h>

#include <fstream>
#include <string_view>

#include "core/common/strings.h"
#include "core/launch/running_emulators.h"

namespace romsteward {

namespace {

constexpr std::string_view kEmulatorNamePrefixes[] = {"genem", "genecyst", "kgen"};

bool IsProcessFolder(const std::filesystem::directory_entry& entry) {
  const std::string name = entry.path().filename().string();
  return !name.empty() && name.find_first_not_of("0123456789") == std::string::npos;
}

bool SamePath(const std::filesystem::path& a, const std::string& configured) {
  if (configured.empty()) return false;
  std::error_code error;
  return std::filesystem::equivalent(a, Utf8ToPath(configured), error) && !error;
}

}  // namespace

bool IsEmulatorRunning(const std::vector<std::string>& emulatorPaths) {
  const uid_t user = getuid();
  std::error_code error;
  for (const auto& entry : std::filesystem::directory_iterator("/proc", error)) {
    if (!IsProcessFolder(entry)) continue;
    struct stat info {};
    if (stat(entry.path().c_str(), &info) != 0 || info.st_uid != user) continue;
    if (entry.path().filename() == std::to_string(getpid())) continue;

    std::ifstream commFile(entry.path() / "comm");
    std::string comm;
    std::getline(commFile, comm);
    for (std::string_view prefix : kEmulatorNamePrefixes) {
      if (StartsWithIgnoreCase(comm, prefix)) return true;
    }
    std::error_code linkError;
    const auto exe = std::filesystem::read_symlink(entry.path() / "exe", linkError);
    if (linkError) continue;
    for (const auto& path : emulatorPaths) {
      if (SamePath(exe, path)) return true;
    }
  }
  return false;
}

}  // namespace romsteward
