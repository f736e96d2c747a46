#include "core/launch/installed_programs.h"

#include <cstdlib>
#include <system_error>

#include "core/common/strings.h"

namespace romsteward {

std::vector<std::filesystem::path> ProgramSearchFolders() {
  std::vector<std::filesystem::path> folders{Utf8ToPath(kGamesFolder)};
  if (const char* path = std::getenv("PATH")) {
    std::string_view rest(path);
    while (!rest.empty()) {
      const auto colon = rest.find(':');
      // A relative entry names a different folder from every working directory: a path
      // found through it would not hold.
      if (const auto folder = rest.substr(0, colon); folder.starts_with('/'))
        folders.push_back(Utf8ToPath(folder));
      rest = colon == std::string_view::npos ? std::string_view{} : rest.substr(colon + 1);
    }
  }
  return folders;
}

std::string FindInstalledProgram(std::string_view name,
                                 const std::vector<std::filesystem::path>& folders) {
  std::error_code error;
  for (const auto& folder : folders) {
    const auto candidate = folder / Utf8ToPath(name);
    if (std::filesystem::is_regular_file(candidate, error)) return PathToUtf8(candidate);
  }
  return {};
}

}  // namespace romsteward
