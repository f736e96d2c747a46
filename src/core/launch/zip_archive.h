#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/common/result.h"

namespace romsteward {

class Host;

/// The oldest libarchive trusted with archives from strangers: 3.6.2 fixed the last of the
/// ZIP and RAR reader flaws known when this was written. Encoded as archive_version_number().
inline constexpr int kMinimumArchiveLibraryVersion = 3006002;
/// No member larger than this is ever extracted: no cartridge comes near it, and it bounds
/// what a ZIP bomb can do to the temporary folder.
inline constexpr std::uint64_t kMaxZipMemberSize = 64ull * 1024 * 1024;

/// Masks of the ROM files a listing shows when not every file is wanted.
inline constexpr std::string_view kRomMasks = "*.bin;*.smd;*.md;*.1";
inline constexpr std::string_view kAllFilesMask = "*.*";

inline constexpr std::string_view kTempFolderMissing =
    "You must set a temporary folder (in 'Options' menu) in order to use ZIP files!";

// ZIP and 7z archives go through the same code: the functions below take either, and their
// messages name the format ("ZIP" or "7z") of the archive at hand.

/// The archive formats read (and, for the tests and the demo, written).
enum class ArchiveFormat { Zip, SevenZip };

/// The six bytes every 7z archive starts with.
inline constexpr std::string_view kSevenZipSignature = "7z\xBC\xAF\x27\x1C";

/// Whether the file starts with "PK" or the 7z signature: enough for a place to be taken as
/// an archive.
bool IsZipFile(const std::filesystem::path& path);
/// Whether the file starts with a ZIP local-file-header signature ("PK", 3, 4) or the 7z
/// signature.
bool HasZipSignature(const std::filesystem::path& path);
/// The format of the archive `path` by its first bytes: 7z with the 7z signature, else ZIP.
ArchiveFormat ArchiveFormatOf(const std::filesystem::path& path);
/// "ZIP" or "7z", as messages name the format.
std::string_view ArchiveFormatName(ArchiveFormat format);

/// What a look into an archive found.
struct ZipListing {
  /// The regular-file members matching the masks, in archive order, names as stored.
  std::vector<std::string> names;
  /// Empty when the whole archive could be read; otherwise why the rest could not, the
  /// members before the damage being listed.
  std::string damage;
};

/// The members of `archive` matching any of `masks` (joined by ";"), folders and links left
/// out. Fails when the file cannot be opened, or not one member of it can be read (a file
/// that only starts like an archive).
Result<ZipListing> ListZipEntries(const std::filesystem::path& archive, std::string_view masks);

/// Reads each regular member matching `masks` into memory, one at a time in archive order,
/// and hands `visit` its name and its bytes, or why they cannot be had (larger than
/// `sizeLimit`, damaged). Fails when the archive cannot be opened or its damage ends the
/// reading; the members before the damage have been visited.
Status ReadZipMembers(const std::filesystem::path& archive, std::string_view masks,
                      const std::function<void(const std::string&, Result<std::string>)>& visit,
                      std::uint64_t sizeLimit = kMaxZipMemberSize);
/// Why a member name cannot be extracted safely (absolute, a drive, a ".." step, empty), or
/// an empty text when it can.
std::string UnsafeMemberNameReason(std::string_view name);

/// Extracts the members named exactly as listed into `folder` (which must exist), replacing
/// files of the same names there, and returns their paths in the order given. A member that
/// is missing, a link, unsafely named, larger than kMaxZipMemberSize, or whose data does not
/// match what the archive claims is refused with a message naming it; each file appears
/// whole or not at all, and nothing is ever written outside `folder`. `sizeLimit` is
/// lowered only by tests. When it fails, the members it had already extracted are deleted
/// again, so a failure leaves `folder` as it was.
Result<std::vector<std::filesystem::path>> ExtractZipMembers(
    const std::filesystem::path& archive, std::span<const std::string> members,
    const std::filesystem::path& folder, std::uint64_t sizeLimit = kMaxZipMemberSize);
Result<std::filesystem::path> ExtractZipMember(const std::filesystem::path& archive,
                                               std::string_view member,
                                               const std::filesystem::path& folder,
                                               std::uint64_t sizeLimit = kMaxZipMemberSize);

/// Deletes a member extracted into `folder`, and the folders its name created below
/// `folder` when they are left empty.
Status RemoveExtractedMember(const std::filesystem::path& folder, std::string_view member);

/// Whether the archive library of `versionNumber` (archive_version_number()) is recent
/// enough.
bool IsArchiveLibraryVersionAcceptable(int versionNumber);
/// The start-up check of the linked archive library: tells the user when it is outdated.
void CheckArchiveLibraryVersion(Host& host);
void CheckArchiveLibraryVersion(Host& host, int versionNumber);

}  // namespace romsteward
