#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

#include "core/cart/layout.h"
#include "core/common/result.h"

namespace romsteward {

class AppSettings;
class Host;

/// The checksum an image stores in its header beside the one its contents give.
struct ChecksumState {
  Layout layout = Layout::NoRom;
  std::uint16_t stored = 0;
  std::uint16_t computed = 0;
  bool Correct() const { return stored == computed; }
};

/// Reads the stored checksum and computes the true one (with the "Progress" dialog when
/// `progress` is given).
Result<ChecksumState> ReadChecksumState(const std::filesystem::path& image,
                                        Host* progress = nullptr);

/// Writes the two header bytes at 0x18E through the image's layout. A read-only image is
/// refused with a message naming it and is never opened for writing. Later split volumes and
/// files that are no image have nowhere to take the bytes: nothing is written.
Status WriteChecksumBytes(const std::filesystem::path& image, std::string_view bytes);
Status WriteChecksum(const std::filesystem::path& image, std::uint16_t value);

/// The backup of an image's old checksum: two bytes, high byte first, in section `CRCs`
/// under the list entry's text; beside it, in section `CRCSource` under the same name, the
/// image file it was taken from and the checksum the fix gave it (backups kept before that
/// existed have none).
inline constexpr std::string_view kSectionCrcSource = "CRCSource";
/// Refused when the entry holds the backup of another file (of the same name): keeping this
/// one would lose it.
Status ChecksumBackupSlotFree(const AppSettings& settings, std::string_view entry,
                              const std::filesystem::path& image);
/// Keeps `oldValue` of `image` before its checksum becomes `newValue`; refused as
/// ChecksumBackupSlotFree says.
Status KeepChecksumBackup(AppSettings& settings, std::string_view entry,
                          const std::filesystem::path& image, std::uint16_t oldValue,
                          std::uint16_t newValue);
bool HasChecksumBackup(const AppSettings& settings, std::string_view entry);
/// The kept bytes; fails when there are none or they are not two bytes.
Result<std::string> ReadChecksumBackup(const AppSettings& settings, std::string_view entry);
/// Puts the kept checksum back into `image` and then forgets it; returns the value put back.
/// Refused, with the backup kept, when it was taken from another file or `image` no longer
/// holds the checksum the fix gave it. The backup is deleted only once the image holds it
/// again, so a failed write loses nothing.
Result<std::uint16_t> RestoreChecksumBackup(AppSettings& settings, std::string_view entry,
                                            const std::filesystem::path& image);

/// "Check CRC": compares the stored and the computed checksum and offers the fix, keeping
/// the old value first on "&Fix 'n Save".
void CheckCrc(Host& host, AppSettings& settings, const std::filesystem::path& image,
              std::string_view entry);

/// "R&estore CRC": after confirmation, RestoreChecksumBackup.
void RestoreCrc(Host& host, AppSettings& settings, const std::filesystem::path& image,
                std::string_view entry);

/// Whether "R&estore CRC" is enabled when the Tools menu opens: a backup exists for `entry`.
bool IsRestoreCrcEnabled(const AppSettings& settings, std::string_view entry);

}  // namespace romsteward
