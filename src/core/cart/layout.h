#pragma once

#include <string>
#include <string_view>

namespace romsteward {

/// The copier layouts an image file can be in. Their codes ("BIN", "SMD", "MD", "1", "1*",
/// "NOROM") are what the rest of the program and its settings compare and show.
enum class Layout {
  Bin,         ///< plain binary, logical offset = file offset
  Smd,         ///< 512-byte copier header, then 16 KiB interleaved blocks
  Md,          ///< the whole file one interleave: odd bytes, then even bytes
  SplitFirst,  ///< "1": a split SMD volume with the cartridge header, more to follow
  SplitLater,  ///< "1*": a later split volume, known by its copier header alone
  NoRom,
};

std::string_view LayoutCode(Layout layout);
/// The layout of a code, compared upper-cased; anything unknown is NoRom.
Layout LayoutFromCode(std::string_view code);

/// Display name of a layout code ("No rom" for anything unknown).
std::string_view FormatDescription(std::string_view code);
std::string_view FormatDescription(Layout layout);

/// SMD geometry: the plain SMD file and both kinds of split volume.
bool IsSmdInterleaved(Layout layout);
bool IsSplitVolume(Layout layout);

/// The file name with the extension that fits `layout`: lower-case "bin", "smd" or "md".
/// A name whose extension already fits (any case, "mgd" counting for MD) is kept, as are
/// the names of split volumes and of files that are no image.
std::string FileNameForLayout(std::string_view name, Layout layout);

}  // namespace romsteward
