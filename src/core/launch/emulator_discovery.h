#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace romsteward {

class AppSettings;
class Host;

/// What the first start found.
struct FoundEmulators {
  std::vector<std::string> names;  ///< profile names, in the order they were found
};

/// The first start, repeated while no emulator is known: each profile's executable is looked
/// for in `folders` and each one found is stored as its path; the first found becomes the
/// general choice (`prefemu`, with `gnew` for GenEmnew) and an information message says so;
/// a DOS one found is offered a runner (SuggestRunner). When still no emulator is known, the
/// first-run notice is shown. Does nothing once an emulator is known.
FoundEmulators WelcomeEmulators(Host& host, AppSettings& settings,
                                const std::vector<std::filesystem::path>& folders);

}  // namespace romsteward
