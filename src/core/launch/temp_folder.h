#pragma once

#include <filesystem>
#include <optional>

namespace romsteward {

class AppSettings;
class Host;

/// The folder that archive members are extracted to (`temp`), when it is set and names an
/// existing directory.
std::optional<std::filesystem::path> UsableTemporaryFolder(const AppSettings& settings);

/// "Set temporary directory...": a folder dialog; the choice is saved at once, a cancelled
/// dialog changes nothing.
void ChooseTemporaryDirectory(Host& host, AppSettings& settings);

}  // namespace romsteward
