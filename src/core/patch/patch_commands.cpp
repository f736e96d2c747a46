#include "core/patch/patch_commands.h"

#include <fmt/format.h>

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include "core/common/binary_file.h"
#include "core/common/strings.h"
#include "core/patch/dynamic_patches.h"
#include "core/patch/ips_format.h"
#include "core/patch/patch_file_dialogs.h"

namespace romsteward {

CommandResult StoreIpsAsDynamicPatches(Host& host, RegistryStore& store,
                                       const std::filesystem::path& image,
                                       std::string_view listText, std::string_view ips,
                                       std::string_view ipsName, std::string_view baseName) {
  auto file = BinaryFile::Open(image);
  if (!file) return ShowFailure(host, file.error());
  const IpsContents contents = ParseIps(ips);
  const std::size_t total = contents.records.size();
  const bool many = total > kManyIpsRecords;
  if (many && host.AskYesNo(fmt::format("{} holds {} records: each would become a dynamic patch "
                                        "of its own. Store all {}?",
                                        ipsName, FormatThousands(total), FormatThousands(total)),
                            MessageIcon::Question, kDefaultTitle) != Answer::Yes)
    return CommandResult::Cancelled;

  std::optional<ScopedProgress> progress;
  if (many) progress.emplace(host, "Storing dynamic patches");
  std::size_t count = 0;
  bool cancelled = false;
  // Each record is two values: the patch, and the file its old bytes came from.
  std::vector<RegistryStore::ValueWrite> pending;
  const Status stored =
      store.SetValuesFrom([&]() -> Result<std::optional<RegistryStore::ValueWrite>> {
        if (pending.empty()) {
          if (count == total) return std::optional<RegistryStore::ValueWrite>();
          if (many && count % 1024 == 0 &&
              !host.SetProgress(static_cast<int>(count * 100 / total))) {
            cancelled = true;
            return Error{"cancelled"};
          }
          const IpsRecord& record = contents.records[count];
          const PatchValue patch{record.offset + 1ULL, std::string(record.data),
                                 file->ReadAt(record.offset, record.data.size())};
          pending =
              PatchWrites(listText, std::string(baseName) + std::to_string(count), patch, image);
          std::reverse(pending.begin(), pending.end());
          ++count;
        }
        RegistryStore::ValueWrite write = std::move(pending.back());
        pending.pop_back();
        return std::optional<RegistryStore::ValueWrite>(std::move(write));
      });
  progress.reset();
  // All or nothing: a cancel or a failure half-way leaves the store as it was.
  if (cancelled) {
    host.ShowMessage("No dynamic patch was stored.", MessageIcon::Information, kDefaultTitle);
    return CommandResult::Cancelled;
  }
  if (!stored) return ShowFailure(host, Error{std::string(kRegistryError)});
  if (const std::string damage = DescribeIpsDamage(contents, ipsName, "converted");
      !damage.empty()) {
    host.ShowMessage(damage, MessageIcon::Exclamation, kDefaultTitle);
  }
  host.ShowMessage(
      "Romsteward generated " + std::to_string(total) + " dynamic patches from the IPS!",
      MessageIcon::None, kDefaultTitle);
  return CommandResult::Done;
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
