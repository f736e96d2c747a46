#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "core/common/result.h"
#include "core/settings/app_settings.h"
#include "core/settings/general_settings.h"

namespace romsteward {

/// "&Activated" of the preview menu, kept as `showprev` ("True"/"False"); off when missing.
bool LoadShowPreview(const AppSettings& settings);
Status SaveShowPreview(AppSettings& settings, bool shown);

/// The preview window's position (`prevX`, `prevY`); nullopt unless both values are usable.
std::optional<WindowPosition> LoadPreviewPosition(const AppSettings& settings);
Status SavePreviewPosition(AppSettings& settings, WindowPosition position);

/// The `Cartridge` key naming the picture of a list entry: the entry's text and ".pic".
std::string PictureKey(std::string_view entry);

}  // namespace romsteward
