#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "core/cart/layout.h"
#include "core/identify/dat_file.h"
#include "core/identify/rom_hash.h"

namespace romsteward {

class Host;

/// Which of a DAT's games an image is, and by which hashes.
struct DatMatch {
  std::string game;
  std::string rom;
  /// "crc32+sha1" when the DAT gives both and both agree; "sha1" or "crc32" when it gives
  /// only that one.
  std::string matchedBy;
};

/// The games of a DAT looked up by hash.
class DatIndex {
public:
  explicit DatIndex(const DatFile& dat);

  /// The game whose rom has these hashes. A rom matches when every hash the DAT gives for
  /// it agrees (a CRC32 alone never overrules a differing SHA-1), and its size too if given.
  std::optional<DatMatch> Find(const RomHashes& hashes) const;

private:
  const DatFile& m_dat;
  struct Place {
    std::size_t game;
    std::size_t rom;
  };
  std::unordered_map<std::string, std::vector<Place>> m_bySha1;
  std::unordered_map<std::uint32_t, std::vector<Place>> m_byCrc;
};

/// One identified image: a file, a split set (by its first volume) or an archive member.
struct IdentifiedImage {
  std::string shown;           ///< the file as given, or "archive\\member"
  std::filesystem::path path;  ///< the file on disk (the archive for a member)
  std::string member;          ///< the member's name inside the archive, else empty
  std::vector<std::filesystem::path> laterVolumes;  ///< a split set's volumes after the first
  Layout layout = Layout::NoRom;
  std::optional<RomHashes> hashes;  ///< none when the image could not be read
  std::optional<DatMatch> match;
  std::string problem;  ///< why it could not be hashed
};

/// What PLACES hold, in order: a file is one image; a directory gives its ROM files (as the
/// list shows them) and the ROM members of its ZIP archives, by name; an archive gives its
/// ROM members. The volumes after the first of a split set are part of its image. Places
/// that do not exist or cannot be read become entries with a problem: nothing is dropped.
std::vector<IdentifiedImage> CollectImages(const std::vector<std::string>& places);

/// Hashes and looks up each image, reporting progress by bytes read through `host` when
/// given. The images keep their order.
void IdentifyImages(std::vector<IdentifiedImage>& images, const DatIndex& index, Host* host);

}  // namespace romsteward
