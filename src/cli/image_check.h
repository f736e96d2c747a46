#pragma once

#include <optional>
#include <string>

#include "cli/tool.h"
#include "core/cart/layout.h"

namespace romsteward::cli {

/// The layout of the image `name`, or nullopt after telling why it cannot be worked on: it
/// cannot be opened (missing, a folder, unreadable), is no cartridge image, or is cut short
/// before the end of its cartridge header.
std::optional<Layout> CheckImage(const std::string& name, ToolContext& context);

}  // namespace romsteward::cli
