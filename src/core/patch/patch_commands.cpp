#include "core/patch/patch_commands.h"

#include <string>

#include "core/common/binary_file.h"
#include "core/common/strings.h"
#include "core/patch/dynamic_patches.h"
#include "core/patch/ips_format.h"
#include "core/patch/patch_file_dialogs.h"

namespace romsteward {

std::size_t StoreIpsAsDynamicPatches(Host& host, RegistryStore& store,
                                     const std::filesystem::path& image, std::string_view listText,
                                     std::string_view ips, std::string_view ipsName,
                                     std::string_view baseName) {
  auto file = BinaryFile::Open(image);
  if (!file) {
    host.ShowMessage(file.error().message, MessageIcon::Critical, kDefaultTitle);
    return 0;
  }
  const IpsContents contents = ParseIps(ips);
  std::size_t count = 0;
  for (const IpsRecord& record : contents.records) {
    PatchValue patch{record.offset + 1ULL, std::string(record.data),
                     file->ReadAt(record.offset, record.data.size())};
    const std::string name = std::string(baseName) + std::to_string(count);
    if (!StorePatch(store, listText, name, patch, image)) {
      host.ShowMessage(kRegistryError, MessageIcon::Critical, kDefaultTitle);
    }
    ++count;  // a failed write still uses up its number, so later names keep their record
  }
  if (const std::string damage = DescribeIpsDamage(contents, ipsName, "converted");
      !damage.empty()) {
    host.ShowMessage(damage, MessageIcon::Exclamation, kDefaultTitle);
  }
  host.ShowMessage(
      "Romsteward generated " + std::to_string(count) + " dynamic patches from the IPS!",
      MessageIcon::None, kDefaultTitle);
  return count;
}

void ConvertIpsToDynamicPatchesCommand(Host& host, RegistryStore& store,
                                       const std::filesystem::path& image,
                                       std::string_view listText, std::string_view romDir) {
  const auto ipsPath = host.ChooseOpenFile(IpsOpenDialog(romDir));
  if (!ipsPath || ipsPath->empty()) return;
  const auto answer =
      host.AskText("Type the base name of the patches that will be generated from the ips",
                   "Base name", {}, false);
  if (!answer) return;
  const std::string_view baseName = TrimBlanks(*answer);
  if (baseName.empty()) return;
  auto ips = ReadWholeFile(Utf8ToPath(*ipsPath));
  if (!ips) {
    host.ShowMessage(ips.error().message, MessageIcon::Critical, kDefaultTitle);
    return;
  }
  StoreIpsAsDynamicPatches(host, store, image, listText, *ips, *ipsPath, baseName);
}

std::string RemovalQuestion(std::string_view patchName) {
  return "Are you sure you want to remove '" + std::string(patchName) + "' dynamic patch?";
}

bool RemoveDynamicPatchesCommand(Host& host, RegistryStore& store, std::string_view listText) {
  const auto names = ListDynamicPatchNames(store, listText);
  if (names.empty()) {
    host.ShowMessage("No dynamic patches found", MessageIcon::Exclamation, kDefaultTitle);
    return false;
  }
  const auto chosen = host.ChooseFromList("Remove dynamic patches", names);
  if (!chosen || chosen->empty()) return false;
  if (host.AskYesNo(RemovalQuestion(*chosen), MessageIcon::Question, kDefaultTitle) !=
      Answer::Yes) {
    return false;
  }
  if (!RemoveDynamicPatch(store, listText, *chosen)) {
    host.ShowMessage(kRegistryError, MessageIcon::Critical, kDefaultTitle);
    return false;
  }
  return true;
}

}  // namespace romsteward
