#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

#include "core/common/result.h"
#include "core/identify/identify.h"

namespace romsteward {

class AppSettings;

/// The DAT file the user chose (`datfile` of section Settings): the terminal tool keeps it
/// with `identify --remember`, the program names matched images from it in the panel and
/// the list report.
inline constexpr std::string_view kDatFileKey = "datfile";

/// What "%datname%" and the panel show for an image the chosen DAT does not know.
inline constexpr std::string_view kUnknownDatName = "unknown";

/// A loaded DAT with its index, kept together so the index never outlives its games.
class ChosenDat {
public:
  explicit ChosenDat(DatFile dat);
  ChosenDat(const ChosenDat&) = delete;
  ChosenDat& operator=(const ChosenDat&) = delete;

  const DatFile& Dat() const { return m_dat; }
  const DatIndex& Index() const { return m_index; }
  /// The matched game's name of the image at `path` (hashed as identify does), else
  /// kUnknownDatName; "" when the image cannot be read or is a later split volume.
  std::string NameOf(const std::filesystem::path& path) const;

private:
  DatFile m_dat;
  DatIndex m_index;
};

std::string ChosenDatFile(const AppSettings& settings);
Status SaveChosenDatFile(AppSettings& settings, const std::filesystem::path& dat);

/// The chosen DAT, read; nullptr when none is chosen, an Error when it cannot be read.
Result<std::unique_ptr<ChosenDat>> LoadChosenDat(const AppSettings& settings);

}  // namespace romsteward
