#include "core/patch/restore_record.h"

#include <charconv>
#include <unordered_map>

namespace romsteward {

namespace {

// The restore record: a first line "<tag> <size of the file before the run>", then for each
// patch a line "<offset> <new length> <old length>" followed by the old bytes themselves and,
// under the tag "patched", the new bytes. Lengths go before the raw bytes, so any byte may
// appear in them. Records of older versions have the tag "restore" and no new bytes.
constexpr std::string_view kOldTag = "restore ";
constexpr std::string_view kTag = "patched ";

class RecordReader {
public:
  explicit RecordReader(std::string_view data) : m_data(data) {}

  bool AtEnd() const { return m_data.empty(); }
  std::optional<std::uint64_t> Number(char after) {
    std::uint64_t value = 0;
    const auto [end, error] = std::from_chars(m_data.data(), m_data.data() + m_data.size(), value);
    if (error != std::errc{} || end == m_data.data() + m_data.size() || *end != after) {
      return std::nullopt;
    }
    m_data.remove_prefix(static_cast<std::size_t>(end - m_data.data()) + 1);
    return value;
  }
  bool Word(std::string_view word) {
    if (!m_data.starts_with(word)) return false;
    m_data.remove_prefix(word.size());
    return true;
  }
  std::optional<std::string> Bytes(std::uint64_t count) {
    if (m_data.size() < count) return std::nullopt;
    std::string bytes(m_data.substr(0, static_cast<std::size_t>(count)));
    m_data.remove_prefix(static_cast<std::size_t>(count));
    return bytes;
  }

private:
  std::string_view m_data;
};

}  // namespace

std::string EncodeRecord(const RestoreRecord& record) {
  std::string data = std::string(kTag) + std::to_string(record.originalSize) + "\n";
  for (const auto& patch : record.patches) {
    data += std::to_string(patch.offset) + " " + std::to_string(patch.newBytes.size()) + " " +
            std::to_string(patch.oldBytes.size()) + "\n";
    data += patch.oldBytes;
    data += patch.newBytes;
  }
  return data;
}

std::optional<RestoreRecord> DecodeRecord(std::string_view data) {
  RecordReader in(data);
  RestoreRecord record;
  const bool withNewBytes = in.Word(kTag);
  if (!withNewBytes && !in.Word(kOldTag)) return std::nullopt;
  const auto size = in.Number('\n');
  if (!size) return std::nullopt;
  record.originalSize = *size;
  while (!in.AtEnd()) {
    const auto offset = in.Number(' ');
    const auto newLength = offset ? in.Number(' ') : std::nullopt;
    const auto oldLength = newLength ? in.Number('\n') : std::nullopt;
    auto oldBytes = oldLength ? in.Bytes(*oldLength) : std::nullopt;
    auto newBytes = withNewBytes && oldBytes ? in.Bytes(*newLength) : std::string();
    if (!oldBytes || !newBytes) return std::nullopt;
    record.patches.push_back({*offset, std::move(*oldBytes), static_cast<std::size_t>(*newLength),
                              std::move(*newBytes)});
  }
  return record;
}

Status RestoreFile(const std::filesystem::path& path, const RestoreRecord& record) {
  auto file = BinaryFile::Open(path, BinaryFile::Mode::ReadWrite);
  if (!file) return file.error();
  bool lengthened = false;
  for (const auto& patch : record.patches) {
    if (Status written = file->WriteAt(patch.offset, patch.oldBytes); !written) return written;
    lengthened = lengthened || patch.offset + patch.newLength > record.originalSize;
  }
  if (lengthened && file->Size() > record.originalSize) return file->Truncate(record.originalSize);
  return {};
}

bool HoldsTheRun(const BinaryFile& file, const RestoreRecord& record) {
  std::unordered_map<std::uint64_t, std::string> allowed;
  for (const auto& patch : record.patches) {
    if (patch.newBytes.size() != patch.newLength) return true;  // an older record
    for (std::size_t i = 0; i < patch.newLength; ++i) {
      std::string& bytes = allowed[patch.offset + i];
      bytes += patch.newBytes[i];
      if (i < patch.oldBytes.size()) bytes += patch.oldBytes[i];
    }
  }
  for (const auto& patch : record.patches) {
    // Bytes past the end were never written, or were cut off again.
    const std::string now = file.ReadAt(patch.offset, patch.newLength);
    for (std::size_t i = 0; i < now.size(); ++i) {
      if (allowed[patch.offset + i].find(now[i]) == std::string::npos) return false;
    }
  }
  return true;
}

}  // namespace romsteward
