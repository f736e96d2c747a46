#pragma once

#include <cstdint>
#include <filesystem>
#include <string_view>

#include "core/cart/header_repair.h"
#include "core/cart/layout.h"
#include "core/common/binary_file.h"

namespace romsteward {

class Host;

/// Captions of the two repairs in the size question box.
inline constexpr std::string_view kFixHeaderCaption = "&Fix header";
inline constexpr std::string_view kTruncateCaption = "&Truncate";

/// The pure ROM data an image holds, which is what its header's ROM range describes: an SMD
/// file less its copier header; a split set's volumes less every volume's copier header (a
/// first volume outside a numbered set counts alone); any other layout the file's length.
std::uint64_t FileRomSize(const BinaryFile& file, Layout layout);

/// The header validation run on selection for every image but a later split volume: when the
/// header's ROM size and the file's disagree, offers "&Fix header" (the box's Yes button, 6)
/// and, for a file longer than its header says, "&Truncate" (its No button, 7); Cancel keeps
/// both. `runFromCommandLine`: the image is being run straight from the program's command
/// line with no window to answer in; a longer file (an intro, a trainer, an overdump, all of
/// which run) then passes without a word, while a shorter one is still reported.
RepairOutcome CheckRomSize(Host& host, const std::filesystem::path& image,
                           bool runFromCommandLine = false);

}  // namespace romsteward
