#include "core/patch/ips_apply.h"

#include "core/common/binary_file.h"
#include "core/common/strings.h"
#include "core/patch/patch_file_dialogs.h"

namespace romsteward {

Result<IpsApplyReport> ApplyIps(std::string_view patch, BinaryFile& image,
                                std::string_view patchName) {
  const IpsContents contents = ParseIps(patch);
  IpsApplyReport report;
  report.end = contents.end;
  for (const IpsRecord& record : contents.records) {
    if (Status written = image.WriteAt(record.offset, record.data); !written) {
      return Error{written.error().message + " (after " + std::to_string(report.records) +
                   " records of the patch were written)"};
    }
    ++report.records;
  }
  report.damage = DescribeIpsDamage(contents, patchName, "applied");
  return report;
}

Result<IpsApplyReport> ApplyIpsFile(const std::filesystem::path& patch,
                                    const std::filesystem::path& image) {
  auto bytes = ReadWholeFile(patch);
  if (!bytes) return bytes.error();
  // Marked read-only on purpose: kept from the superuser too, as the checksum fix does.
  std::error_code error;
  if (std::filesystem::exists(image, error) && !std::filesystem::is_directory(image, error) &&
      !IsWritableByUser(image))
    return Error{PathToUtf8(image) + " is read-only; the patch was not applied."};
  auto file = BinaryFile::Open(image, BinaryFile::Mode::ReadWrite);
  if (!file) return file.error();
  return ApplyIps(*bytes, *file, PathToUtf8(patch));
}

void ApplyIpsCommand(Host& host, std::string_view romDir) {
  const auto patchPath = host.ChooseOpenFile(IpsOpenDialog(romDir));
  if (!patchPath || patchPath->empty()) return;
  // The patch is read before the image is asked for, so an unreadable one is told at once.
  auto patch = ReadWholeFile(Utf8ToPath(*patchPath));
  if (!patch) {
    host.ShowMessage(patch.error().message, MessageIcon::Critical, kDefaultTitle);
    return;
  }
  const auto imagePath = host.ChooseOpenFile(RomOpenDialog("Open ROM to be patched", romDir));
  if (!imagePath || imagePath->empty()) return;

  auto image = BinaryFile::Open(Utf8ToPath(*imagePath), BinaryFile::Mode::ReadWrite);
  if (!image) {
    host.ShowMessage(image.error().message, MessageIcon::Critical, kDefaultTitle);
    return;
  }
  const auto applied = ApplyIps(*patch, *image, *patchPath);
  if (!applied) {
    host.ShowMessage(applied.error().message, MessageIcon::Critical, kDefaultTitle);
  } else if (!applied->damage.empty()) {
    host.ShowMessage(applied->damage, MessageIcon::Critical, kDefaultTitle);
  } else {
    host.ShowMessage("IPS file applyed.", MessageIcon::Information, kDefaultTitle);
  }
}

}  // namespace romsteward
