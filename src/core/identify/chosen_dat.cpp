#include "core/identify/chosen_dat.h"

#include "core/common/strings.h"
#include "core/settings/app_settings.h"

namespace romsteward {

ChosenDat::ChosenDat(DatFile dat) : m_dat(std::move(dat)), m_index(m_dat) {}

std::string ChosenDat::NameOf(const std::filesystem::path& path) const {
  auto image = HashImageFile(path);
  if (!image) return {};
  const auto match = m_index.Find(image->hashes);
  return match ? match->game : std::string(kUnknownDatName);
}

std::string ChosenDatFile(const AppSettings& settings) {
  return settings.GetSetting(kSectionSettings, kDatFileKey);
}

Status SaveChosenDatFile(AppSettings& settings, const std::filesystem::path& dat) {
  std::error_code error;
  const std::filesystem::path absolute = std::filesystem::absolute(dat, error);
  return settings.SaveSetting(kSectionSettings, kDatFileKey,
                              PathToUtf8(error ? dat : absolute.lexically_normal()));
}

Result<std::unique_ptr<ChosenDat>> LoadChosenDat(const AppSettings& settings) {
  const std::string file = ChosenDatFile(settings);
  if (file.empty()) return std::unique_ptr<ChosenDat>();
  auto dat = ReadDatFile(Utf8ToPath(file));
  if (!dat) return dat.error();
  return std::make_unique<ChosenDat>(std::move(*dat));
}

}  // namespace romsteward
