#include "core/identify/identify.h"

#include <fmt/format.h>

#include <algorithm>
#include <system_error>

#include "core/cart/split_set.h"
#include "core/common/strings.h"
#include "core/common/wildcard.h"
#include "core/host/host.h"
#include "core/launch/zip_archive.h"

namespace romsteward {

DatIndex::DatIndex(const DatFile& dat) : m_dat(dat) {
  for (std::size_t g = 0; g < dat.games.size(); ++g) {
    for (std::size_t r = 0; r < dat.games[g].roms.size(); ++r) {
      const DatRom& rom = dat.games[g].roms[r];
      if (!rom.sha1.empty()) m_bySha1[rom.sha1].push_back({g, r});
      if (rom.crc32) m_byCrc[*rom.crc32].push_back({g, r});
    }
  }
}

std::optional<DatMatch> DatIndex::Find(const RomHashes& hashes) const {
  const auto agrees = [&hashes](const DatRom& rom) {
    return (!rom.size || *rom.size == hashes.size) && (!rom.crc32 || *rom.crc32 == hashes.crc32) &&
           (rom.sha1.empty() || rom.sha1 == hashes.sha1);
  };
  const auto first = [&](const auto& map, const auto& key) -> std::optional<DatMatch> {
    const auto found = map.find(key);
    if (found == map.end()) return std::nullopt;
    for (const Place& place : found->second) {
      const DatGame& game = m_dat.games[place.game];
      const DatRom& rom = game.roms[place.rom];
      if (!agrees(rom)) continue;
      const std::string by = rom.crc32 && !rom.sha1.empty() ? "crc32+sha1"
                             : rom.sha1.empty()             ? "crc32"
                                                            : "sha1";
      return DatMatch{game.name, rom.name, by};
    }
    return std::nullopt;
  };
  if (auto bySha1 = first(m_bySha1, hashes.sha1)) return bySha1;
  return first(m_byCrc, hashes.crc32);
}

namespace {

// The files a directory's identification takes, as the ROM list shows them, plus archives.
constexpr std::string_view kImageMasks = "*.bin;*.smd;*.md;*.mgd;*.gen;*.1";

bool IsLaterVolumeName(std::string_view name) {
  const std::string_view extension = FileExtension(name);
  return !extension.empty() && extension != "1" &&
         std::all_of(extension.begin(), extension.end(),
                     [](char c) { return c >= '0' && c <= '9'; });
}

IdentifiedImage Entry(std::string shown, std::filesystem::path path, std::string problem = {}) {
  IdentifiedImage image;
  image.shown = std::move(shown);
  image.path = std::move(path);
  image.problem = std::move(problem);
  return image;
}

void AddArchive(const std::filesystem::path& path, std::vector<IdentifiedImage>& images) {
  const std::string shown = PathToUtf8(path);
  auto listing = ListZipEntries(path, kImageMasks);
  if (!listing) {
    images.push_back(Entry(shown, path, listing.error().message));
    return;
  }
  for (const std::string& member : listing->names) {
    IdentifiedImage image;
    image.shown = shown + "\\\\" + member;
    image.path = path;
    image.member = member;
    images.push_back(std::move(image));
  }
  if (!listing->damage.empty())
    images.push_back(
        Entry(shown, path,
              fmt::format("The {} archive {} is damaged: {}",
                          ArchiveFormatName(ArchiveFormatOf(path)), shown, listing->damage)));
}

void AddDirectory(const std::filesystem::path& dir, std::vector<IdentifiedImage>& images) {
  std::error_code error;
  std::vector<std::filesystem::path> files;
  for (std::filesystem::directory_iterator it(dir, error), end; !error && it != end;
       it.increment(error)) {
    if (it->is_regular_file(error)) files.push_back(it->path());
  }
  if (error) {
    images.push_back(Entry(PathToUtf8(dir), dir,
                           fmt::format("Cannot read {}: {}", PathToUtf8(dir), error.message())));
    return;
  }
  std::sort(files.begin(), files.end());
  for (const std::filesystem::path& file : files) {
    const std::string name = PathToUtf8(file.filename());
    if (EqualsIgnoreCase(FileExtension(name), "zip") && IsZipFile(file)) {
      AddArchive(file, images);
    } else if (MatchesAnyMask(name, kImageMasks)) {
      images.push_back(Entry(PathToUtf8(file), file));
    } else if (IsLaterVolumeName(name)) {
      // Identified with the first volume when there is one; listed alone when it is lost.
      const std::filesystem::path first =
          Utf8ToPath(SplitVolumeName(SplitVolumeStem(PathToUtf8(file)), 1));
      if (!std::filesystem::is_regular_file(first, error))
        images.push_back(Entry(PathToUtf8(file), file));
    }
  }
}

// Hashes one archive's members, which follow each other in `images` from `from` on, in one
// pass over the archive. Returns the index after them.
std::size_t HashArchive(std::vector<IdentifiedImage>& images, std::size_t from) {
  const std::filesystem::path archive = images[from].path;
  std::size_t end = from;
  while (end < images.size() && images[end].path == archive && !images[end].member.empty())
    ++end;
  Status read =
      ReadZipMembers(archive, kImageMasks, [&](const std::string& name, Result<std::string> bytes) {
        for (std::size_t i = from; i < end; ++i) {
          IdentifiedImage& image = images[i];
          if (image.member != name || image.hashes || !image.problem.empty()) continue;
          if (!bytes) {
            image.problem = bytes.error().message;
            return;
          }
          auto hashed = HashImageBytes(*bytes, image.shown);
          if (!hashed) {
            image.problem = hashed.error().message;
            return;
          }
          image.layout = hashed->layout;
          image.hashes = hashed->hashes;
          return;
        }
      });
  for (std::size_t i = from; i < end; ++i) {
    if (!images[i].hashes && images[i].problem.empty())
      images[i].problem =
          read ? "The member could not be found again in the archive" : read.error().message;
  }
  return end;
}

std::uint64_t SizeOf(const std::filesystem::path& path) {
  std::error_code error;
  const auto size = std::filesystem::file_size(path, error);
  return error ? 0 : size;
}

}  // namespace

std::vector<IdentifiedImage> CollectImages(const std::vector<std::string>& places) {
  std::vector<IdentifiedImage> images;
  for (const std::string& place : places) {
    const std::filesystem::path path = Utf8ToPath(place);
    std::error_code error;
    if (std::filesystem::is_directory(path, error)) {
      AddDirectory(path, images);
    } else if (std::filesystem::is_regular_file(path, error)) {
      if (IsZipFile(path))
        AddArchive(path, images);
      else
        images.push_back(Entry(place, path));
    } else {
      const bool exists = std::filesystem::exists(path, error);
      images.push_back(
          Entry(place, path,
                fmt::format("{}: {}", place,
                            exists ? "it is not a regular file" : "no such file or directory")));
    }
  }
  return images;
}

void IdentifyImages(std::vector<IdentifiedImage>& images, const DatIndex& index, Host* host) {
  std::uint64_t total = 0;
  std::filesystem::path lastArchive;
  for (const IdentifiedImage& image : images) {
    if (!image.member.empty() && image.path == lastArchive) continue;
    if (!image.member.empty()) lastArchive = image.path;
    if (image.problem.empty()) total += SizeOf(image.path);
  }
  std::optional<ScopedProgress> progress;
  if (host != nullptr) progress.emplace(*host, "Identifying");
  std::uint64_t done = 0;
  bool cancelled = false;
  for (std::size_t i = 0; i < images.size();) {
    IdentifiedImage& image = images[i];
    std::size_t next = i + 1;
    if (cancelled) {
      if (image.problem.empty()) image.problem = "Not identified: cancelled";
    } else if (image.problem.empty() && !image.member.empty()) {
      next = HashArchive(images, i);
      done += SizeOf(image.path);
    } else if (image.problem.empty()) {
      auto hashed = HashImageFile(image.path);
      if (hashed) {
        image.layout = hashed->layout;
        image.hashes = hashed->hashes;
        if (image.layout == Layout::SplitFirst) {
          for (const std::string& volume : ListSplitVolumes(PathToUtf8(image.path))) {
            const std::filesystem::path later = Utf8ToPath(volume);
            if (later != image.path) image.laterVolumes.push_back(later);
          }
        }
      } else {
        image.problem = hashed.error().message;
      }
      done += SizeOf(image.path);
      for (const auto& later : image.laterVolumes)
        done += SizeOf(later);
    }
    for (std::size_t j = i; j < next; ++j) {
      if (images[j].hashes) images[j].match = index.Find(*images[j].hashes);
    }
    if (host != nullptr && !cancelled && total > 0)
      cancelled =
          !host->SetProgress(static_cast<int>(std::min<std::uint64_t>(100, done * 100 / total)));
    i = next;
  }
}

}  // namespace romsteward
