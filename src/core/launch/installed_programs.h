#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace romsteward {

/// Where Debian installs its games and emulators; not on every PATH.
inline constexpr std::string_view kGamesFolder = "/usr/games";

/// Where installed programs are looked for: /usr/games first (Debian puts its emulators
/// there, and it is not on every PATH), then the absolute folders of PATH in their order.
std::vector<std::filesystem::path> ProgramSearchFolders();

/// The full path of the first file called `name` in `folders`; "" when there is none.
std::string FindInstalledProgram(std::string_view name,
                                 const std::vector<std::filesystem::path>& folders);

}  // namespace romsteward
