#pragma once

#include <string>

#include "core/cart/layout.h"
#include "core/common/result.h"

namespace romsteward::cli {

/// The layout of the image `name`, or why it cannot be worked on: it cannot be opened
/// (missing, a folder, unreadable), is no cartridge image, or is cut short before the end of
/// its cartridge header. The message names the file.
Result<Layout> CheckImage(const std::string& name);

}  // namespace romsteward::cli
