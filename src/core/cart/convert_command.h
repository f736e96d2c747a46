#pragma once

#include <filesystem>
#include <optional>

#include "core/cart/layout.h"

namespace romsteward {

class Host;

/// "&Convert" > BIN, SMD or MD: writes the image beside `source` under the name that fits
/// `layout` (DefaultConvertOutput). An image already in `layout` is left alone and the user
/// told so; an existing output is replaced only after a Yes; the source is never written.
/// Returns the new file, or nullopt when nothing was written (every message already shown).
std::optional<std::filesystem::path> ConvertCommand(Host& host, const std::filesystem::path& source,
                                                    Layout layout);

}  // namespace romsteward
