#include "cli/rom_place.h"

#include <filesystem>
#include <ostream>
#include <system_error>

#include "cli/tool.h"
#include "core/common/strings.h"
#include "core/launch/zip_archive.h"
#include "core/library/place.h"

namespace romsteward::cli {

std::unique_ptr<MainWindowModel> OpenPlace(ToolContext& context, std::string_view place,
                                           ListFilter filter, SortOrder order) {
  if (IsRemotePath(place)) {
    context.err << kUncRefused << '\n';
    context.status = kExitError;
    return nullptr;
  }
  // Named here, where the window would only say that the directory is gone.
  std::error_code error;
  const auto status = std::filesystem::status(Utf8ToPath(place), error);
  const bool archive = std::filesystem::is_regular_file(status) && IsZipFile(Utf8ToPath(place));
  if (!std::filesystem::is_directory(status) && !archive) {
    context.err << "Cannot list " << EscapeForDisplay(place)
                << (std::filesystem::exists(status)
                        ? ": it is neither a folder nor a ZIP or 7z archive"
                        : ": there is no folder or archive of that name")
                << ".\n";
    context.status = kExitError;
    return nullptr;
  }
  AppSettings* settings = context.SettingsOrReport();
  if (!settings) return nullptr;
  auto model = std::make_unique<MainWindowModel>(context.host(), *settings);
  // Chosen before there is a place, so the one scan below is the only one.
  model->ChooseFilter(filter);
  model->ChooseSort(order);
  if (!model->SetDiret(place) || model->IsUnreadable()) {
    context.status = kExitError;
    return nullptr;
  }
  return model;
}

std::string PrintableName(std::string_view name) {
  return EscapeForDisplay(name, /*escapeBackslash=*/false);
}

}  // namespace romsteward::cli
