#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "core/identify/identify.h"

namespace romsteward {

struct RenameStep {
  std::filesystem::path from;
  std::filesystem::path to;
};

/// What renaming matched images to their DAT names would do: the steps (every volume of a
/// split set), and one line for each matched image that is left as it is and why.
struct RenamePlan {
  std::vector<RenameStep> steps;
  std::vector<std::string> skipped;
};

/// Each matched image on disk gets the game's name with its own extension (a split set's
/// volumes game.1, game.2 ...). Left out: archive members, images already so named, game
/// names that are no file name (a "/", a control character, "." or ".."), and targets that
/// exist or that an earlier image of the plan takes.
RenamePlan PlanDatRenames(const std::vector<IdentifiedImage>& images);

/// Carries out the plan, never replacing a file; one message for each step that failed.
std::vector<std::string> ApplyRenames(const RenamePlan& plan);

}  // namespace romsteward
