#pragma once

#include <filesystem>
#include <string_view>

namespace romsteward {

class AppSettings;
class Host;

/// What a check of an image found and did, for callers that report it (the terminal tool).
/// Every message has already gone through the Host. Listed from best to worst, so the worst of
/// several is their maximum.
enum class RepairOutcome {
  Sound,     ///< nothing wrong
  Repaired,  ///< something was wrong and is fixed
  LeftAsIs,  ///< something is wrong and stays so: declined, read-only or not repairable
  Failed,    ///< the image could not be read or a repair could not be written
};

/// The header-repair check run on every selected image: each copier header of an SMD file or
/// split set is compared with the one its length calls for and, after one question, rewritten;
/// a file that is not a whole number of 16 KiB blocks gets the invalid-size warning unless the
/// cartridge's ".shutup" value (section Cartridge, `entry` + ".shutup") says otherwise.
RepairOutcome CheckEmbeddedHeader(Host& host, AppSettings& settings,
                                  const std::filesystem::path& image, std::string_view entry);

}  // namespace romsteward
