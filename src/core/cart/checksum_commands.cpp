#include "core/cart/checksum_commands.h"

#include <fmt/format.h>

#include "core/cart/checksum.h"
#include "core/cart/detect.h"
#include "core/cart/header.h"
#include "core/cart/logical_io.h"
#include "core/common/binary_file.h"
#include "core/common/file_identity.h"
#include "core/common/strings.h"
#include "core/host/host.h"
#include "core/settings/app_settings.h"

namespace romsteward {

namespace {

constexpr std::string_view kRegistryError = "Error in system registry! Is it corrupt?";

std::string Hex(std::uint16_t value) {
  return fmt::format("{:X}", value);
}

void ShowError(Host& host, const Error& error) {
  host.ShowMessage(error.message, MessageIcon::Critical, {});
}

}  // namespace

Result<ChecksumState> ReadChecksumState(const std::filesystem::path& image, Host* progress) {
  auto file = BinaryFile::Open(image);
  if (!file) return file.error();
  ChecksumState state;
  state.layout = DetectRomFormat(*file);
  state.stored = ReadHeaderChecksum(ReadLogicalBytes(
      *file, state.layout, header_field::kChecksum.offset, header_field::kChecksum.width));
  auto computed = CalcChecksum(*file, state.layout, progress);
  if (!computed) return computed.error();
  state.computed = *computed;
  return state;
}

Status WriteChecksumBytes(const std::filesystem::path& image, std::string_view bytes) {
  if (!IsWritableByUser(image))
    return Error{PathToUtf8(image) + " is read-only; its checksum was not changed."};
  auto file = BinaryFile::Open(image, BinaryFile::Mode::ReadWrite);
  if (!file) return file.error();
  const Layout layout = DetectRomFormat(*file);
  // A later volume's bytes at 0x18E are ROM data of the middle of the cartridge.
  if (layout == Layout::SplitLater || layout == Layout::NoRom) return {};
  return WriteHeaderBytes(bytes, *file, header_field::kChecksum.offset, layout);
}

Status WriteChecksum(const std::filesystem::path& image, std::uint16_t value) {
  return WriteChecksumBytes(image, NumberToBytes(value, 2));
}

Status ChecksumBackupSlotFree(const AppSettings& settings, std::string_view entry,
                              const std::filesystem::path& image) {
  if (!HasChecksumBackup(settings, entry)) return {};
  const auto source = settings.Store().GetValue(SectionKeyPath(kSectionCrcSource), entry);
  if (!source) return {};  // kept by an older version: its file is unknown
  const std::string taken = source->substr(0, source->rfind('\n'));
  if (IsSameFile(taken, image)) return {};
  return Error{"A checksum of another file named " + EscapeForDisplay(entry) + " (" +
               EscapeForDisplay(taken) + ") is kept already; restore or forget it first. " +
               EscapeForDisplay(PathToUtf8(image)) + " was not changed."};
}

Status KeepChecksumBackup(AppSettings& settings, std::string_view entry,
                          const std::filesystem::path& image, std::uint16_t oldValue,
                          std::uint16_t newValue) {
  if (Status free = ChecksumBackupSlotFree(settings, entry, image); !free) return free;
  return settings.Store().SetValuesOfKeys(
      {{SectionKeyPath(kSectionCrcs), std::string(entry), NumberToBytes(oldValue, 2)},
       {SectionKeyPath(kSectionCrcSource), std::string(entry),
        FileIdentity(image) + "\n" + Hex(newValue)}});
}

bool HasChecksumBackup(const AppSettings& settings, std::string_view entry) {
  return settings.Store().HasValue(SectionKeyPath(kSectionCrcs), entry);
}

Result<std::string> ReadChecksumBackup(const AppSettings& settings, std::string_view entry) {
  auto value = settings.Store().GetValue(SectionKeyPath(kSectionCrcs), entry);
  if (!value) return value.error();
  if (value->size() != 2)
    return Error{"The checksum kept for " + std::string(entry) + " is not two bytes long."};
  return value;
}

Result<std::uint16_t> RestoreChecksumBackup(AppSettings& settings, std::string_view entry,
                                            const std::filesystem::path& image) {
  auto backup = ReadChecksumBackup(settings, entry);
  if (!backup) return backup.error();
  const std::string shown = EscapeForDisplay(PathToUtf8(image));
  const std::string sources = SectionKeyPath(kSectionCrcSource);
  if (const auto source = settings.Store().GetValue(sources, entry)) {
    const auto lineEnd = source->rfind('\n');
    const std::string taken = source->substr(0, lineEnd);
    if (lineEnd == std::string::npos || !IsSameFile(taken, image)) {
      return Error{"The checksum kept for " + EscapeForDisplay(entry) + " was taken from " +
                   EscapeForDisplay(taken) + ", not from " + shown +
                   "; nothing was changed and it is kept."};
    }
    auto file = BinaryFile::Open(image);
    if (!file) return file.error();
    const std::uint16_t now = ReadHeaderChecksum(ReadLogicalBytes(*file, DetectRomFormat(*file),
                                                                  header_field::kChecksum.offset,
                                                                  header_field::kChecksum.width));
    if (Hex(now) != source->substr(lineEnd + 1)) {
      return Error{shown + " has changed since its checksum was fixed (it holds " + Hex(now) +
                   ", the fix wrote " + source->substr(lineEnd + 1) +
                   "); the kept checksum was not put back and is kept."};
    }
  }
  if (Status written = WriteChecksumBytes(image, *backup); !written) return written.error();
  if (Status deleted = settings.DeleteSetting(kSectionCrcs, entry); !deleted)
    return deleted.error();
  if (settings.Store().HasValue(sources, entry)) (void)settings.Store().DeleteValue(sources, entry);
  return static_cast<std::uint16_t>(BytesToNumber(*backup));
}

void CheckCrc(Host& host, AppSettings& settings, const std::filesystem::path& image,
              std::string_view entry) {
  auto state = ReadChecksumState(image, &host);
  if (!state) return ShowError(host, state.error());

  if (state->Correct()) {
    host.ShowMessage("The CRC " + Hex(state->stored) + " is correct!", MessageIcon::Exclamation,
                     {});
    return;
  }

  QuestionBox box;
  box.title = "CRC error!";
  box.text = "The CRC " + Hex(state->stored) + " is wrong! It should be " + Hex(state->computed) +
             ". Do you want to fix it?";
  box.cancel.caption = "&Fix 'n Save";
  box.cancel.tooltip = "Fixes CRC and backup the old one";
  const int answer = host.ShowQuestionBox(box);
  if (answer != kEscolhaYes && answer != kEscolhaCancel) return;

  // Refused before the backup is kept: a value kept for a write that never happened would
  // later "restore" a checksum the image still holds.
  if (!IsWritableByUser(image)) {
    return ShowError(host,
                     Error{PathToUtf8(image) + " is read-only; its checksum was not changed."});
  }
  if (answer == kEscolhaCancel) {
    if (Status free = ChecksumBackupSlotFree(settings, entry, image); !free)
      return ShowError(host, free.error());
    if (!KeepChecksumBackup(settings, entry, image, state->stored, state->computed))
      host.ShowMessage(kRegistryError, MessageIcon::Critical, {});
  }
  if (Status written = WriteChecksum(image, state->computed); !written)
    ShowError(host, written.error());
}

void RestoreCrc(Host& host, AppSettings& settings, const std::filesystem::path& image,
                std::string_view entry) {
  if (host.AskYesNo("Are you sure you want to restore the old CRC?", MessageIcon::Question, {}) !=
      Answer::Yes)
    return;
  if (!HasChecksumBackup(settings, entry)) {
    host.ShowMessage(kRegistryError, MessageIcon::Critical, {});
    return;
  }
  if (auto restored = RestoreChecksumBackup(settings, entry, image); !restored)
    ShowError(host, restored.error());
}

bool IsRestoreCrcEnabled(const AppSettings& settings, std::string_view entry) {
  return HasChecksumBackup(settings, entry);
}

}  // namespace romsteward
