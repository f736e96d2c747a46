#pragma once

#include <filesystem>

#include "core/cart/layout.h"
#include "core/common/result.h"

namespace romsteward {

/// The plain logical image in `layout`'s file form: BIN as is, SMD with a fresh copier
/// header, MD as one whole-file interleave. `logical` is a whole number of 16 KiB blocks.
std::string EncodeImage(std::string_view logical, Layout layout);

/// Where converting `source` to `layout` writes when no output is named: the same name with
/// the extension that fits the new layout.
std::filesystem::path DefaultConvertOutput(const std::filesystem::path& source, Layout layout);

/// What converting `source` to `layout` into `output` would do, decided before anything is
/// written: refused (the message says why) when `layout` is not BIN, SMD or MD, when
/// `source` cannot be read or is no BIN, SMD or MD image, or when `output` is `source`.
struct ConversionPlan {
  Layout from = Layout::NoRom;  ///< the source's layout; equal to the target: nothing to do
  bool replacesOutput = false;  ///< `output` exists already
};
Result<ConversionPlan> PlanConversion(const std::filesystem::path& source, Layout layout,
                                      const std::filesystem::path& output);

/// "/roms/game.bin is already in Super Magic Drive Binary (BIN) layout."
std::string AlreadyInLayoutMessage(const std::filesystem::path& source, Layout layout);

/// Converts a BIN, SMD or MD image into another of these layouts as a new file. The source
/// is never touched; the output appears whole or not at all, and an existing one is only
/// replaced when `overwrite` is set.
Status ConvertImage(const std::filesystem::path& source, Layout layout,
                    const std::filesystem::path& output, bool overwrite);

}  // namespace romsteward
