#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "core/app/main_window_model.h"

namespace romsteward::cli {

class ToolContext;

/// The list of PLACE (a directory or a ZIP archive) exactly as the window would list it,
/// through the window's own model; nullptr, with the reason told and `context.status` set,
/// when the place cannot be listed.
std::unique_ptr<MainWindowModel> OpenPlace(ToolContext& context, std::string_view place,
                                           ListFilter filter, SortOrder order);

/// A name on one terminal line: control characters written as \xNN, stray bytes as Latin-1.
std::string PrintableName(std::string_view name);

}  // namespace romsteward::cli
