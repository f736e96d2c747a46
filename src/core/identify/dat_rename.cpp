#include "core/identify/dat_rename.h"

#include <fmt/format.h>

#include <algorithm>
#include <set>
#include <system_error>

#include "core/cart/split_set.h"
#include "core/common/atomic_file.h"
#include "core/common/strings.h"

namespace romsteward {

namespace {

// Names a DAT could hold that must never become a path: they would lead elsewhere.
bool IsSafeFileName(std::string_view name) {
  if (name.empty() || name == "." || name == ".." || name.size() > 240) return false;
  return std::none_of(name.begin(), name.end(), [](char c) {
    return c == '/' || c == '\\' || static_cast<unsigned char>(c) < 0x20 || c == 0x7f;
  });
}

}  // namespace

RenamePlan PlanDatRenames(const std::vector<IdentifiedImage>& images) {
  RenamePlan plan;
  std::set<std::filesystem::path> taken;
  for (const IdentifiedImage& image : images) {
    if (!image.match) continue;
    const std::string& game = image.match->game;
    const auto skip = [&](std::string_view why) {
      plan.skipped.push_back(fmt::format("{}: {}", image.shown, why));
    };
    if (!image.member.empty()) {
      skip("inside an archive, not renamed");
      continue;
    }
    if (!IsSafeFileName(game)) {
      skip(fmt::format("the DAT name \"{}\" cannot be a file name", game));
      continue;
    }
    std::vector<RenameStep> steps;
    const std::filesystem::path dir = image.path.parent_path();
    if (image.layout == Layout::SplitFirst) {
      int number = 1;
      steps.push_back({image.path, dir / Utf8ToPath(SplitVolumeName(game + ".", number))});
      for (const auto& later : image.laterVolumes)
        steps.push_back({later, dir / Utf8ToPath(SplitVolumeName(game + ".", ++number))});
    } else {
      const std::string extension = std::string(FileExtension(PathToUtf8(image.path.filename())));
      steps.push_back(
          {image.path, dir / Utf8ToPath(extension.empty() ? game : game + "." + extension)});
    }
    if (steps.front().from == steps.front().to) continue;  // already so named
    std::string conflict;
    for (const RenameStep& step : steps) {
      std::error_code error;
      if (taken.contains(step.to))
        conflict = PathToUtf8(step.to.filename()) + " is taken by another image";
      else if (std::filesystem::exists(step.to, error))
        conflict = PathToUtf8(step.to.filename()) + " already exists";
      if (!conflict.empty()) break;
    }
    if (!conflict.empty()) {
      skip(conflict + ", not renamed");
      continue;
    }
    for (RenameStep& step : steps) {
      taken.insert(step.to);
      plan.steps.push_back(std::move(step));
    }
  }
  return plan;
}

std::vector<std::string> ApplyRenames(const RenamePlan& plan) {
  std::vector<std::string> failures;
  for (const RenameStep& step : plan.steps) {
    if (Status renamed = RenameWithoutReplacing(step.from, step.to); !renamed)
      failures.push_back(renamed.error().message);
  }
  return failures;
}

}  // namespace romsteward
