#pragma once

#include <filesystem>
#include <optional>

namespace romsteward {

class AppSettings;
class Host;

/// Where archive members go while `temp` is not set: "romsteward/temp" in the user's cache
/// folder ($XDG_CACHE_HOME, else ~/.cache); empty when neither names an absolute folder.
std::filesystem::path DefaultTemporaryFolder();

/// The folder that archive members are extracted to: `temp` when it is set and names an
/// existing directory (a folder the user chose and that has gone gives nullopt, so the
/// temporary-folder message tells them); without `temp`, DefaultTemporaryFolder, created on
/// first use (nullopt when it cannot be).
std::optional<std::filesystem::path> UsableTemporaryFolder(const AppSettings& settings);

/// "Set temporary directory...": a folder dialog; the choice is saved at once, a cancelled
/// dialog changes nothing.
void ChooseTemporaryDirectory(Host& host, AppSettings& settings);

}  // namespace romsteward
