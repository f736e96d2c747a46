#include "cli/rom_place.h"

#include <ostream>

#include "cli/tool.h"
#include "core/common/strings.h"
#include "core/library/place.h"

namespace romsteward::cli {

std::unique_ptr<MainWindowModel> OpenPlace(ToolContext& context, std::string_view place,
                                           ListFilter filter, SortOrder order) {
  if (IsRemotePath(place)) {
    context.err << kUncRefused << '\n';
    context.status = kExitError;
    return nullptr;
  }
  AppSettings* settings = context.SettingsOrReport();
  if (!settings) return nullptr;
  auto model = std::make_unique<MainWindowModel>(context.host(), *settings);
  // Chosen before there is a place, so the one scan below is the only one.
  model->ChooseFilter(filter);
  model->ChooseSort(order);
  if (!model->SetDiret(place)) {
    context.status = kExitError;
    return nullptr;
  }
  return model;
}

std::string PrintableName(std::string_view name) {
  return EscapeForDisplay(name, /*escapeBackslash=*/false);
}

}  // namespace romsteward::cli
