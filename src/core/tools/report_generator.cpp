#include "core/tools/report_generator.h"

#include <fmt/format.h>

#include <random>
#include <system_error>

#include "core/host/host.h"
#include "core/cart/detect.h"
#include "core/cart/header.h"
#include "core/cart/split_set.h"
#include "core/common/strings.h"
#include "core/identify/chosen_dat.h"
#include "core/launch/zip_archive.h"

namespace romsteward {

namespace {

constexpr std::uint64_t kBytesPerMegabit = 131072;

// A folder of our own inside the temporary folder: extracting there can never replace a
// file the user keeps in the temporary folder, and removing it removes every copy made.
class PrivateFolder {
public:
  static Result<PrivateFolder> CreateIn(const std::filesystem::path& parent) {
    std::random_device entropy;
    for (int attempt = 0; attempt < 16; ++attempt) {
      std::filesystem::path folder = parent / fmt::format("romsteward-report-{:08x}", entropy());
      std::error_code error;
      if (std::filesystem::create_directory(folder, error)) return PrivateFolder(folder);
      if (error)
        return Error{"Cannot create a folder in " + PathToUtf8(parent) + ": " + error.message()};
    }
    return Error{"Cannot create a folder in " + PathToUtf8(parent)};
  }
  PrivateFolder(PrivateFolder&& other) noexcept : m_path(std::move(other.m_path)) {
    other.m_path.clear();
  }
  PrivateFolder(const PrivateFolder&) = delete;
  PrivateFolder& operator=(const PrivateFolder&) = delete;
  PrivateFolder& operator=(PrivateFolder&&) = delete;
  ~PrivateFolder() {
    std::error_code ignored;
    if (!m_path.empty()) std::filesystem::remove_all(m_path, ignored);
  }
  const std::filesystem::path& Path() const { return m_path; }

private:
  explicit PrivateFolder(std::filesystem::path path) : m_path(std::move(path)) {}
  std::filesystem::path m_path;
};

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

  std::optional<PrivateFolder> extractTo;
  if (source.zip) {
    auto folder = PrivateFolder::CreateIn(tempFolder);
    if (!folder) return folder.error();
    extractTo.emplace(std::move(*folder));
  }

  std::vector<ReportRecord> records;
  {
    ScopedProgress progress(host, "Creating the ROM list");
    for (std::size_t i = 0; i < source.entries.size(); ++i) {
      const std::string& entry = source.entries[i];
      std::filesystem::path path;
      if (source.zip) {
        auto extracted = ExtractZipMember(Utf8ToPath(source.place), entry, extractTo->Path());
        if (!extracted) return extracted.error();
        path = std::move(*extracted);
      } else {
        path = Utf8ToPath(JoinDirName(source.place, entry));
      }
      {
        auto file = BinaryFile::Open(path);
        if (!file) return file.error();
        if (auto record = ReadReportRecord(*file, path, entry, needs, romName)) {
          if (dat != nullptr && needs.wanted[static_cast<std::size_t>(Placeholder::DatName)])
            (*record)[Placeholder::DatName] = dat->NameOf(path);
          records.push_back(std::move(*record));
        }
      }
      if (source.zip) {
        if (Status removed = RemoveExtractedMember(extractTo->Path(), entry); !removed)
          return removed.error();
      }
      host.SetProgress(static_cast<int>((i + 1) * 100 / source.entries.size()));
    }
  }

  const ExpandableText header(pieces->header);
  const ExpandableText block(pieces->block);
  const ExpandableText footer(pieces->footer);
  const ReportRecord first = records.empty() ? ReportRecord{} : records.front();
  std::string report = header.Expand(first, 0, 0);
  std::int64_t total = 0;
  for (std::size_t k = 0; k < records.size(); ++k) {
    total += LeadingNumber(records[k][Placeholder::RomSize]);
    report += block.Expand(records[k], static_cast<std::int64_t>(k + 1), total);
  }
  report += footer.Expand(first, static_cast<std::int64_t>(records.size()), total);
  return report;
}

}  // namespace romsteward
