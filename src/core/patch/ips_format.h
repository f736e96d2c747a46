#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace romsteward {

/// The five bytes an IPS file starts with. Written, never checked on reading.
inline constexpr std::string_view kIpsMagic = "PATCH";
/// The end marker; a reader compares the three offset bytes with it after upper-casing them.
inline constexpr std::string_view kIpsEndMarker = "EOF";
/// The largest offset and record length the 3-byte and 2-byte fields can carry.
inline constexpr std::uint32_t kIpsMaxOffset = 0xFFFFFF;
inline constexpr std::size_t kIpsMaxRecordLength = 0xFFFF;

/// One record: `data` goes into the image at `offset`. Views into the parsed patch buffer.
struct IpsRecord {
  std::uint32_t offset = 0;
  std::string_view data;
};

/// How reading a patch came to its end.
enum class IpsEnd {
  Marker,     ///< the "EOF" marker (in any letter case)
  EndOfFile,  ///< the file ended cleanly between two records
  Truncated,  ///< the file ended inside a record; the records before it are complete
  TooShort,   ///< shorter than the five-byte magic: nothing to read
};

struct IpsContents {
  std::vector<IpsRecord> records;
  IpsEnd end = IpsEnd::Marker;
  std::size_t truncatedAt = 0;  ///< patch position of the incomplete record (Truncated only)
};

/// Reads the records of `patch` the way IPS files have always been read here: the first five
/// bytes are skipped whatever they hold, three offset bytes that upper-case to "EOF" end the
/// patch (so "eof" does too), and a length of zero is an empty record, not a run-length one:
/// the bytes after it are the next record's offset.
IpsContents ParseIps(std::string_view patch);

/// Appends one record head and its data; the caller keeps within the field limits.
void AppendIpsRecord(std::string& patch, std::uint32_t offset, std::string_view data);

/// Whether a record placed at `offset` would read back as the end marker.
bool IsEndMarkerOffset(std::uint32_t offset);

/// A message for a patch that could not be read to its end, naming `patchName` and saying
/// that the complete records were `doneWord` ("applied", "converted"); empty when `contents`
/// ended well.
std::string DescribeIpsDamage(const IpsContents& contents, std::string_view patchName,
                              std::string_view doneWord);

}  // namespace romsteward
