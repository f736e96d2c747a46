#include "core/library/favorites.h"

#include <algorithm>

#include "core/cart/detect.h"
#include "core/common/binary_file.h"
#include "core/common/strings.h"
#include "core/host/app_title.h"
#include "core/host/host.h"
#include "core/launch/extracted_copies.h"
#include "core/launch/temp_folder.h"
#include "core/launch/zip_archive.h"
#include "core/library/place.h"
#include "core/library/rom_sort.h"
#include "core/settings/app_settings.h"

namespace romsteward {

std::string RemoveFavoriteQuestion(std::string_view title) {
  return "Are you sure you want to remove '" + std::string(title) + "' from the favorites menu?";
}

std::string FavoriteLocation(std::string_view diret, bool zipListing, std::string_view entry) {
  if (zipListing) return std::string(diret) + std::string(kArchiveSeparator) + std::string(entry);
  return JoinDirName(diret, entry);
}

std::vector<std::string> FavoriteTitles(const AppSettings& settings) {
  auto names = settings.Store().EnumerateValueNames(SectionKeyPath(kSectionFavorite));
  if (!names) return {};
  SortRomNames(*names, SortOrder::Name);
  return std::move(*names);
}

std::string FavoriteLocationOf(const AppSettings& settings, std::string_view title) {
  return settings.GetSetting(kSectionFavorite, title);
}

Status SaveFavorite(AppSettings& settings, std::string_view title, std::string_view location) {
  return settings.SaveSetting(kSectionFavorite, title, location);
}

Status DeleteFavorite(AppSettings& settings, std::string_view title) {
  return settings.Store().DeleteValue(SectionKeyPath(kSectionFavorite), title);
}

std::optional<ArchivedLocation> SplitArchivedLocation(std::string_view location) {
  const std::size_t at = location.find(kArchiveSeparator);
  if (at == std::string_view::npos) return std::nullopt;
  ArchivedLocation parts{std::string(location.substr(0, at)),
                         std::string(location.substr(at + kArchiveSeparator.size()))};
  if (!PathExists(parts.archive, PathKind::File) || !IsZipFile(Utf8ToPath(parts.archive)))
    return std::nullopt;
  return parts;
}

namespace {

bool HoldsMember(const std::string& archive, const std::string& member) {
  auto listing = ListZipEntries(Utf8ToPath(archive), kAllFilesMask);
  return listing && std::ranges::find(listing->names, member) != listing->names.end();
}

FavoriteImage PrepareArchived(Host& host, AppSettings& settings, const ArchivedLocation& archived) {
  FavoriteImage image;
  const std::optional<std::filesystem::path> folder = UsableTemporaryFolder(settings);
  if (!folder) {
    host.ShowMessage(kTempFolderMissing, MessageIcon::Critical, kAppTitle);
    image.state = FavoriteImage::State::Refused;
    return image;
  }
  // A member that is gone makes a dead favorite; any other failure is told as it is.
  if (!HoldsMember(archived.archive, archived.member)) return image;
  image.copy = std::make_shared<ExtractedCopies>(ExtractedCopies::Extract(
      host, settings.Store(), Utf8ToPath(archived.archive), {archived.member}, *folder));
  if (!image.copy->Ok()) {  // the user was told why
    image.state = FavoriteImage::State::Refused;
    return image;
  }
  const std::filesystem::path& extracted = image.copy->Files().front();
  image.path = PathToUtf8(extracted);
  // The further volumes of a split set never come along, so such a set cannot run.
  const bool splitSet = [&] {
    auto file = BinaryFile::Open(extracted);
    return file && DetectRomFormat(*file) == Layout::SplitFirst;
  }();
  if (splitSet) {
    host.ShowMessage(kSplitInZip, MessageIcon::Critical, kAppTitle);
    image.state = FavoriteImage::State::Refused;
    return image;
  }
  image.state = FavoriteImage::State::Ready;
  return image;
}

}  // namespace

bool FavoriteImageExists(std::string_view location) {
  if (const auto archived = SplitArchivedLocation(location))
    return HoldsMember(archived->archive, archived->member);
  return !location.empty() && PathExists(location, PathKind::File);
}

FavoriteImage PrepareFavoriteImage(Host& host, AppSettings& settings, std::string_view location) {
  if (location.empty()) return {};
  if (const auto archived = SplitArchivedLocation(location))
    return PrepareArchived(host, settings, *archived);
  FavoriteImage image;
  if (PathExists(location, PathKind::File)) {
    image.state = FavoriteImage::State::Ready;
    image.path = std::string(location);
  }
  return image;
}

}  // namespace romsteward
