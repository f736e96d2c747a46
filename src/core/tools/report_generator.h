#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/common/binary_file.h"
#include "core/common/result.h"
#include "core/tools/report_template.h"

namespace romsteward {

class ChosenDat;
class Host;

/// Which header name "%romname%" (kept for old scripts) stands for.
enum class RomNameChoice { Domestic = 0, Overseas = 1 };

/// The list a report is made of: the place and its entries as the window lists them.
struct RomListSource {
  std::string place;  ///< a directory, or the archive when `zip` is set
  bool zip = false;
  std::vector<std::string> entries;
};

/// Which fields a template asks for: only those are read from each image.
struct ReportFieldNeeds {
  std::array<bool, kPlaceholderCount> wanted{};
  /// The size is read when the template holds "%countries%", not "%romsize%": old scripts
  /// were written against this, so a template with "%romsize%" alone reports empty sizes.
  bool size = false;
};
ReportFieldNeeds FieldNeedsOf(std::string_view templateText);

/// The record of one image opened as `file` (`path` is where it lies, for the volumes of a
/// split set), listed as `listedName`; nullopt for a file that is no image.
std::optional<ReportRecord> ReadReportRecord(const BinaryFile& file,
                                             const std::filesystem::path& path,
                                             std::string_view listedName,
                                             const ReportFieldNeeds& needs, RomNameChoice romName);

/// Why a report stopped when the host's progress asked to cancel.
inline constexpr std::string_view kReportCancelled = "The ROM list was cancelled.";

/// The whole report of `source` made from `templateText`, which must hold both markers.
/// Archive members are extracted one at a time, in one pass through the archive, into a
/// private folder made inside `tempFolder` (see ReportFolder) and deleted with it. Progress
/// goes to the host, whose cancel ends the report with kReportCancelled. An image that cannot
/// be read or extracted ends the report with a message naming it; nothing is written here.
/// "%datname%" is looked up in `dat` (empty without one).
Result<std::string> BuildRomListReport(std::string_view templateText, const RomListSource& source,
                                       RomNameChoice romName,
                                       const std::filesystem::path& tempFolder, Host& host,
                                       const ChosenDat* dat = nullptr);

}  // namespace romsteward
