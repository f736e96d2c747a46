#pragma once

#include <string>
#include <string_view>

#include "core/host/host.h"

namespace romsteward {

/// The file dialogs the patch commands open, with their titles and filters.
inline FileDialog IpsOpenDialog(std::string_view romDir) {
  return {"Open IPS file", {{"IPS files", "*.ips"}}, std::string(romDir), {}};
}

inline FileDialog RomOpenDialog(std::string_view title, std::string_view romDir) {
  return {std::string(title),
          {{"ROM files", "*.md;*.smd;*.bin;*.mgd"}, {"All files", "*.*"}},
          std::string(romDir),
          {}};
}

/// The default message-box title: the host puts the program's own name there.
inline constexpr std::string_view kDefaultTitle = {};

}  // namespace romsteward
