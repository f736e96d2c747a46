#include "core/tools/report_generator.h"

#include <fmt/format.h>

#include <system_error>

#include "core/cart/detect.h"
#include "core/cart/header.h"
#include "core/cart/split_set.h"
#include "core/common/strings.h"
#include "core/host/host.h"
#include "core/identify/chosen_dat.h"
#include "core/launch/zip_archive.h"
#include "core/tools/report_folder.h"

namespace romsteward {

namespace {

constexpr std::uint64_t kBytesPerMegabit = 131072;

std::string SizeText(const BinaryFile& file, const std::filesystem::path& path, Layout layout) {
  if (layout == Layout::SplitFirst) {
    const SplitSetSize set = MeasureSplitSet(PathToUtf8(path));
    return std::to_string(set.totalBytes / kBytesPerMegabit) + " Meg";
  }
  return std::to_string(RomSizeMbit(file, PathToUtf8(path), layout)) + " Meg";
}

}  // namespace

ReportFieldNeeds FieldNeedsOf(std::string_view templateText) {
  ReportFieldNeeds needs;
  for (std::size_t k = 0; k < kPlaceholderCount; ++k)
    needs.wanted[k] = templateText.find(kPlaceholderTexts[k]) != std::string_view::npos;
  needs.size = needs.wanted[static_cast<std::size_t>(Placeholder::Countries)];
  return needs;
}

std::optional<ReportRecord> ReadReportRecord(const BinaryFile& file,
                                             const std::filesystem::path& path,
                                             std::string_view listedName,
                                             const ReportFieldNeeds& needs, RomNameChoice romName) {
  const Layout layout = DetectRomFormat(file);
  if (layout == Layout::NoRom) return std::nullopt;

  const auto wants = [&needs](Placeholder p) { return needs.wanted[static_cast<std::size_t>(p)]; };
  const RawHeader raw = ReadRawHeader(file);
  namespace f = header_field;
  ReportRecord record;
  if (wants(Placeholder::File)) record[Placeholder::File] = listedName;
  if (wants(Placeholder::RomType)) record[Placeholder::RomType] = FormatDescription(layout);
  if (needs.size) record[Placeholder::RomSize] = SizeText(file, path, layout);
  if (wants(Placeholder::NameDomestic))
    record[Placeholder::NameDomestic] = ReadGameName(raw.Field(f::kDomesticName));
  if (wants(Placeholder::NameOverseas))
    record[Placeholder::NameOverseas] = ReadGameName(raw.Field(f::kOverseasName));
  if (wants(Placeholder::RomName))
    record[Placeholder::RomName] = ReadGameName(
        raw.Field(romName == RomNameChoice::Domestic ? f::kDomesticName : f::kOverseasName));
  if (wants(Placeholder::Copyright))
    record[Placeholder::Copyright] = DecodeMakerDate(raw.Field(f::kMakerDate));
  if (wants(Placeholder::Countries))
    record[Placeholder::Countries] = DecodeCountries(raw.Field(f::kCountries));
  if (wants(Placeholder::Io)) record[Placeholder::Io] = DecodeIoDevices(raw.Field(f::kDevices));
  if (wants(Placeholder::Crc))
    record[Placeholder::Crc] = fmt::format("{:04X}", ReadHeaderChecksum(raw.Field(f::kChecksum)));
  if (wants(Placeholder::RamPresent)) {
    const AddressRange sram = ReadSramRange(raw.Field(f::kSramRange));
    record[Placeholder::RamPresent] = sram.start != 0 || sram.end != 0 ? "Yes" : "No";
  }
  return record;
}

Result<std::string> BuildRomListReport(std::string_view templateText, const RomListSource& source,
                                       RomNameChoice romName,
                                       const std::filesystem::path& tempFolder, Host& host,
                                       const ChosenDat* dat) {
  auto pieces = SplitTemplate(templateText);
  if (!pieces) return pieces.error();
  const ReportFieldNeeds needs = FieldNeedsOf(templateText);

  // Records by list position: archive members come in archive order, the report keeps the
  // list's.
  std::vector<std::optional<ReportRecord>> records(source.entries.size());
  std::size_t visited = 0;
  const auto readRecord = [&](std::size_t index, const std::filesystem::path& path) -> Status {
    auto file = BinaryFile::Open(path);
    if (!file) return file.error();
    const std::string& entry = source.entries[index];
    records[index] = ReadReportRecord(*file, path, entry, needs, romName);
    if (records[index] && dat != nullptr &&
        needs.wanted[static_cast<std::size_t>(Placeholder::DatName)])
      (*records[index])[Placeholder::DatName] = dat->NameOf(path);
    // A cancelled progress (or an interrupted terminal tool) stops here, and the private
    // folder goes with the unwinding.
    if (!host.SetProgress(static_cast<int>(++visited * 100 / source.entries.size())))
      return Error{std::string(kReportCancelled)};
    return {};
  };
  {
    ScopedProgress progress(host, "Creating the ROM list");
    if (source.zip) {
      auto folder = ReportFolder::CreateIn(tempFolder);
      if (!folder) return folder.error();
      // One pass through the archive, whatever its number of members.
      if (Status read = VisitExtractedMembers(Utf8ToPath(source.place), source.entries,
                                              folder->Path(), readRecord);
          !read)
        return read.error();
    } else {
      for (std::size_t i = 0; i < source.entries.size(); ++i) {
        if (Status read = readRecord(i, Utf8ToPath(JoinDirName(source.place, source.entries[i])));
            !read)
          return read.error();
      }
    }
  }

  const ExpandableText header(pieces->header);
  const ExpandableText block(pieces->block);
  const ExpandableText footer(pieces->footer);
  std::vector<ReportRecord> kept;
  for (auto& record : records) {
    if (record) kept.push_back(std::move(*record));
  }
  const ReportRecord first = kept.empty() ? ReportRecord{} : kept.front();
  std::string report = header.Expand(first, 0, 0);
  std::int64_t total = 0;
  for (std::size_t k = 0; k < kept.size(); ++k) {
    total += LeadingNumber(kept[k][Placeholder::RomSize]);
    report += block.Expand(kept[k], static_cast<std::int64_t>(k + 1), total);
  }
  report += footer.Expand(first, static_cast<std::int64_t>(kept.size()), total);
  return report;
}

}  // namespace romsteward
