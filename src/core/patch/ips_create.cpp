#include "core/patch/ips_create.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <optional>
#include <span>
#include <system_error>

#include "core/common/atomic_file.h"
#include "core/common/binary_file.h"
#include "core/common/strings.h"
#include "core/patch/ips_format.h"
#include "core/patch/patch_file_dialogs.h"

namespace romsteward {

namespace {

using Word = std::uint64_t;

// Equal stretches are passed a 16 KiB block at a time; inside a block that differs, smaller
// steps close in on the first difference, so no equal stretch is walked byte by byte.
constexpr std::size_t kSkipBlock = 16 * 1024;
constexpr std::size_t kProbe = 256;

template <std::size_t kStep>
std::size_t SkipEqual(const char* a, const char* b, std::size_t at, std::size_t size) {
  while (size - at >= kStep && std::memcmp(a + at, b + at, kStep) == 0)
    at += kStep;
  return at;
}

Word LoadWord(const char* p) {
  Word word;
  std::memcpy(&word, p, sizeof word);
  return word;
}

// The first index from `at` on where the buffers differ, or `size`.
std::size_t NextDifference(const char* a, const char* b, std::size_t at, std::size_t size) {
  // Runs often lie close together: a difference in the next word is found without a call.
  if (size - at < sizeof(Word) || LoadWord(a + at) == LoadWord(b + at)) {
    at = SkipEqual<kSkipBlock>(a, b, at, size);
    at = SkipEqual<kProbe>(a, b, at, size);
    at = SkipEqual<sizeof(Word)>(a, b, at, size);
  }
  while (at < size && a[at] == b[at])
    ++at;
  return at;
}

// The first index from `at` on where the buffers agree, or `size`. A differing run is passed a
// word at a time until a word holds an equal byte (a zero byte of the exclusive or).
std::size_t NextAgreement(const char* a, const char* b, std::size_t at, std::size_t size) {
  constexpr Word kLowBits = 0x0101010101010101;
  constexpr Word kHighBits = 0x8080808080808080;
  while (size - at >= sizeof(Word)) {
    const Word x = LoadWord(a + at) ^ LoadWord(b + at);
    if (((x - kLowBits) & ~x & kHighBits) != 0) break;
    at += sizeof(Word);
  }
  while (at < size && a[at] != b[at])
    ++at;
  return at;
}

constexpr std::string_view kNothingWritten = "No patch was written.";

Error BeyondLastOffset(std::uint64_t start) {
  return Error{fmt::format(
      "Cannot create the IPS file: the files differ at offset 0x{:X} ({} bytes into the "
      "file), beyond 0xFFFFFF, the last offset an IPS record can name. {}",
      start, FormatThousands(start), kNothingWritten)};
}

// Every run a patch can hold ends before this: it starts at 0xFFFFFF at the latest and is at
// most 65,535 bytes long. Only this much of each input is held in memory; the rest is compared
// a block at a time, since any difference there is one no patch can carry.
constexpr std::uint64_t kPatchableLength = kIpsMaxOffset + 1 + kIpsMaxRecordLength + 1;
constexpr std::size_t kCompareBlock = 1024 * 1024;

// The first offset from `from` on where the files differ, or nullopt when they agree to the end.
Result<std::optional<std::uint64_t>> FirstDifferenceFrom(const BinaryFile& a, const BinaryFile& b,
                                                         std::uint64_t from, std::uint64_t size) {
  std::string left(kCompareBlock, '\0');
  std::string right(kCompareBlock, '\0');
  for (std::uint64_t at = from; at < size;) {
    // Where both files have a hole, both read as zeros: passed without reading.
    const std::uint64_t data = std::min(a.NextDataOffset(at), b.NextDataOffset(at));
    if (data > at) {
      at = std::min(data, size);
      continue;
    }
    const auto count = static_cast<std::size_t>(std::min<std::uint64_t>(kCompareBlock, size - at));
    if (a.ReadInto(at, std::span<char>(left.data(), count)) != count)
      return Error{"Cannot read all of " + PathToUtf8(a.Path()) + ". " +
                   std::string(kNothingWritten)};
    if (b.ReadInto(at, std::span<char>(right.data(), count)) != count)
      return Error{"Cannot read all of " + PathToUtf8(b.Path()) + ". " +
                   std::string(kNothingWritten)};
    const std::size_t differs = NextDifference(left.data(), right.data(), 0, count);
    if (differs < count) return std::optional<std::uint64_t>(at + differs);
    at += count;
  }
  return std::optional<std::uint64_t>();
}

}  // namespace

Result<IpsPatch> DiffToIps(std::string_view unchanged, std::string_view changed) {
  if (unchanged.size() != changed.size()) return Error{std::string(kIpsSizeMismatch)};
  const char* u = unchanged.data();
  const char* c = changed.data();
  const std::size_t size = unchanged.size();

  IpsPatch patch;
  patch.bytes = kIpsMagic;
  for (std::size_t at = NextDifference(u, c, 0, size); at < size;) {
    const std::size_t end = NextAgreement(u, c, at, size);
    std::size_t start = at;
    if (start > kIpsMaxOffset) return BeyondLastOffset(start);
    // The byte before a run is equal, so starting there changes nothing but the offset.
    if (IsEndMarkerOffset(static_cast<std::uint32_t>(start))) --start;
    if (end - start > kIpsMaxRecordLength) {
      return Error{fmt::format(
          "Cannot create the IPS file: the run of differing bytes at offset 0x{:06X} is {} "
          "bytes long, more than the 65,535 bytes an IPS record can hold. {}",
          start, FormatThousands(end - start), kNothingWritten)};
    }
    AppendIpsRecord(patch.bytes, static_cast<std::uint32_t>(start),
                    changed.substr(start, end - start));
    ++patch.records;
    at = NextDifference(u, c, end, size);
  }
  patch.bytes += kIpsEndMarker;
  return patch;
}

std::string DefaultIpsName(std::string_view changedPath) {
  constexpr char kSeparator = static_cast<char>(std::filesystem::path::preferred_separator);
  const auto dot = changedPath.rfind('.');
  const auto separator = changedPath.rfind(kSeparator);
  // A "." in a folder name is no extension: the file name then gets ".ips" added.
  if (dot != std::string_view::npos && (separator == std::string_view::npos || dot > separator)) {
    changedPath = changedPath.substr(0, dot);
  }
  return std::string(changedPath) + ".ips";
}

Status WriteIpsOverExisting(const std::filesystem::path& target, std::string_view patch) {
  std::string contents(patch);
  std::error_code error;
  if (std::filesystem::exists(target, error)) {
    auto old = ReadWholeFile(target);
    if (!old) return old.error();
    if (old->size() > patch.size()) contents += std::string_view(*old).substr(patch.size());
  }
  return WriteFileAtomically(target, contents);
}

Result<IpsPatch> CreateIpsFile(const std::filesystem::path& unchanged,
                               const std::filesystem::path& changed,
                               const std::filesystem::path& output) {
  for (const auto& input : {unchanged, changed}) {
    std::error_code error;
    if (std::filesystem::equivalent(output, input, error)) {
      return Error{"The IPS file " + PathToUtf8(output) +
                   " would overwrite one of the files it is made from. " +
                   std::string(kNothingWritten)};
    }
  }
  auto before = BinaryFile::Open(unchanged);
  if (!before) return before.error();
  auto after = BinaryFile::Open(changed);
  if (!after) return after.error();
  const std::uint64_t size = before->Size();
  if (after->Size() != size) return Error{std::string(kIpsSizeMismatch)};

  // Mapped rather than read: the heads are compared where the page cache holds them.
  const auto held = static_cast<std::size_t>(std::min(size, kPatchableLength));
  auto head = before->MapForReading(held);
  if (!head) return head.error();
  auto changedHead = after->MapForReading(held);
  if (!changedHead) return changedHead.error();
  if (head->View().size() != held || changedHead->View().size() != held)
    return Error{"Cannot read all of the files to compare. " + std::string(kNothingWritten)};
  auto patch = DiffToIps(head->View(), changedHead->View());
  if (!patch) return patch;
  auto beyond = FirstDifferenceFrom(*before, *after, held, size);
  if (!beyond) return beyond.error();
  if (*beyond) return BeyondLastOffset(**beyond);
  if (Status written = WriteIpsOverExisting(output, patch->bytes); !written) {
    return written.error();
  }
  return patch;
}

void CreateIpsCommand(Host& host, std::string_view romDir) {
  const auto unchanged = host.ChooseOpenFile(RomOpenDialog("Open UNchanged file", romDir));
  if (!unchanged || unchanged->empty()) return;
  const auto changed = host.ChooseOpenFile(RomOpenDialog("Open changed file", romDir));
  if (!changed || changed->empty()) return;

  FileDialog save{
      "Name the IPS file", {{"IPS files", "*.ips"}}, std::string(romDir), DefaultIpsName(*changed)};
  const auto output = host.ChooseSaveFile(save);
  if (!output || output->empty()) return;

  const auto created =
      CreateIpsFile(Utf8ToPath(*unchanged), Utf8ToPath(*changed), Utf8ToPath(*output));
  if (!created) {
    host.ShowMessage(created.error().message, MessageIcon::Critical, kDefaultTitle);
    return;
  }
  host.ShowMessage("IPS file generated.", MessageIcon::Information, kDefaultTitle);
}

}  // namespace romsteward
