#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/common/result.h"
#include "core/launch/zip_archive.h"

namespace romsteward {

/// Writes the demo collection into `dir` (created when missing): one image in each layout,
/// a split set, an image with a wrong checksum, one with backup RAM, a file that is no image,
/// a ZIP archive holding two images and a DAT file naming some of them. Only the
/// collection's own files are replaced.
Status WriteDemoCollection(const std::filesystem::path& dir);

/// The volumes of a split set holding `logical` (whole 16 KiB blocks), `volumeBytes` of ROM
/// data each (the last may be shorter), every one with its own copier header.
std::vector<std::string> BuildSplitVolumes(std::string_view logical, std::size_t volumeBytes);

/// A ZIP archive (deflated members), or a 7z archive, of the given names and contents, built
/// in memory.
Result<std::string> BuildZipArchive(const std::vector<std::pair<std::string, std::string>>& members,
                                    ArchiveFormat format = ArchiveFormat::Zip);

}  // namespace romsteward
