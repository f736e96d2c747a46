// Putting split volumes, or any files, back together into one file.
#include <filesystem>
#include <system_error>

#include "core/cart/interleave.h"
#include "core/common/atomic_file.h"
#include "core/common/binary_file.h"
#include "core/common/strings.h"
#include "core/tools/byte_copy.h"
#include "core/tools/split_join.h"

namespace romsteward {

namespace {

namespace fs = std::filesystem;

bool IsFile(const fs::path& path) {
  std::error_code error;
  return fs::is_regular_file(path, error);
}

// Byte 0 of a joined image's copier header: its block count, or 0 once the image is larger
// than 255 blocks (a joined image always carries its 512-byte header, so 255 blocks and a
// header already count as larger).
char JoinedBlockCount(std::uint64_t length) {
  constexpr std::uint64_t kLargest = 255 * kBlockSize;
  return length > kLargest ? '\0' : static_cast<char>(length / kBlockSize);
}

}  // namespace

CommandResult JoinRom(Host& host, const fs::path& anyVolume) {
  const std::string base = SplitVolumeBase(anyVolume);
  std::vector<BinaryFile> volumes;
  for (int k = 1;; ++k) {
    const fs::path volume = Utf8ToPath(base + std::to_string(k));
    if (!IsFile(volume)) break;
    auto opened = BinaryFile::Open(volume);
    if (!opened) return ShowFailure(host, opened.error());
    volumes.push_back(std::move(*opened));
  }
  if (volumes.empty())
    return ShowFailure(host, Error{"Cannot join: there is no first volume " + base + "1"});
  std::string header = volumes.front().ReadAt(0, kCopierHeaderSize);
  if (header.size() < kCopierHeaderSize)
    return ShowFailure(host, Error{"Cannot join: " + PathToUtf8(volumes.front().Path()) +
                                   " is too short to be a split volume"});
  // Each volume but the last says that more follow: a set that stops at a gap says so too.
  if (volumes.back().ReadAt(2, 1) == "\x40")
    return ShowFailure(host, Error{"Cannot join: " + PathToUtf8(volumes.back().Path()) +
                                   " says more volumes follow, but there is no " + base +
                                   std::to_string(volumes.size() + 1)});

  const fs::path target = Utf8ToPath(base + "smd");
  std::error_code error;
  if (fs::exists(fs::symlink_status(target, error))) {
    const std::string question =
        "The file " + PathToUtf8(target.filename()) + " exists! Do you want to delete it?";
    if (host.AskYesNo(question, MessageIcon::Critical, {}) != Answer::Yes)
      return CommandResult::Cancelled;
  }

  // The sizes are taken now; a volume that shrinks while it is copied is a read error.
  std::uint64_t joinedLength = volumes.front().Size();
  for (std::size_t k = 1; k < volumes.size(); ++k) {
    const std::uint64_t size = volumes[k].Size();
    joinedLength += size > kCopierHeaderSize ? size - kCopierHeaderSize : 0;
  }
  header[0] = JoinedBlockCount(joinedLength);
  header[2] = 0x00;

  // The old target is only replaced once the whole new one is written.
  auto writer = AtomicFileWriter::Create(target);
  if (!writer) return ShowFailure(host, writer.error());
  if (Status written = writer->Write(header); !written) return ShowFailure(host, written.error());
  for (std::size_t k = 0; k < volumes.size(); ++k) {
    const std::uint64_t size = volumes[k].Size();
    if (size <= kCopierHeaderSize) continue;
    if (auto copied =
            AppendFileRange(volumes[k], kCopierHeaderSize, size - kCopierHeaderSize, *writer);
        !copied)
      return ShowFailure(host, copied.error());
  }
  if (Status committed = writer->Commit(); !committed) return ShowFailure(host, committed.error());
  host.ShowMessage(std::to_string(volumes.size()) + " file(s) joined", MessageIcon::Information,
                   {});
  return CommandResult::Done;
}

CommandResult JoinFiles(Host& host, std::string_view romDirectory) {
  // "All files" without a pattern on the save dialog is deliberate: the destination can be
  // any name.
  const FileDialog save{
      "Choose a destination file", {{"All files", ""}}, std::string(romDirectory), {}};
  const std::optional<std::string> destination = host.ChooseSaveFile(save);
  if (!destination || destination->empty()) return CommandResult::Cancelled;

  const FileDialog open{"Choose multiple files to be appended",
                        {{"All files", "*.*"}},
                        std::string(romDirectory),
                        {}};
  const std::vector<std::string> files = host.ChooseOpenFiles(open);
  if (files.empty()) return CommandResult::Cancelled;
  return JoinFilesInto(host, Utf8ToPath(*destination), files);
}

CommandResult JoinFilesInto(Host& host, const fs::path& destination,
                            const std::vector<std::string>& files) {
  if (files.empty()) return CommandResult::Cancelled;
  // Every source is opened before anything is written, so a missing one costs nothing; a
  // destination that is also a source is read as it was before the join.
  std::vector<BinaryFile> sources;
  for (const std::string& name : files) {
    auto opened = BinaryFile::Open(Utf8ToPath(name));
    if (!opened) return ShowFailure(host, opened.error());
    sources.push_back(std::move(*opened));
  }
  auto writer = AtomicFileWriter::Create(destination);
  if (!writer) return ShowFailure(host, writer.error());
  for (const BinaryFile& source : sources) {
    if (auto copied = AppendFileRange(source, 0, source.Size(), *writer); !copied)
      return ShowFailure(host, copied.error());
  }
  if (Status committed = writer->Commit(); !committed) return ShowFailure(host, committed.error());
  host.ShowMessage(std::to_string(files.size()) + " files were joined!", MessageIcon::None, {});
  return CommandResult::Done;
}

}  // namespace romsteward
