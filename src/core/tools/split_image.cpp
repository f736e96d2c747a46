// Splitting an SMD image into numbered volumes.
#include <filesystem>
#include <optional>
#include <system_error>

#include "core/cart/detect.h"
#include "core/cart/interleave.h"
#include "core/cart/split_set.h"
#include "core/common/atomic_file.h"
#include "core/common/binary_file.h"
#include "core/common/strings.h"
#include "core/tools/byte_copy.h"
#include "core/tools/split_join.h"
#include "core/tools/split_size_chooser.h"

namespace romsteward {

namespace {

namespace fs = std::filesystem;

bool Exists(const fs::path& path) {
  std::error_code error;
  return fs::exists(fs::symlink_status(path, error));
}

Status DeleteVolume(const fs::path& volume) {
  std::error_code error;
  if (fs::is_directory(fs::symlink_status(volume, error)))
    return Error{"Cannot replace " + PathToUtf8(volume) + ": it is a folder"};
  if (!fs::remove(volume, error) && error)
    return Error{"Cannot delete " + PathToUtf8(volume) + ": " + error.message(), error.value()};
  return {};
}

// Writes header + `size` bytes of `source` from `offset` as `volume`. A volume that still
// exists here is the short last one nobody was asked about: it is written over, so whatever
// it held past the new end stays, as writing into the old file would leave it. Going through
// a temporary file all the same means a failure never leaves half a volume.
Status WriteVolume(const fs::path& volume, const std::string& header, const BinaryFile& source,
                   std::uint64_t offset, std::uint64_t size) {
  std::optional<BinaryFile> old;
  if (Exists(volume)) {
    if (!IsWritableByUser(volume))
      return Error{"Cannot write " + PathToUtf8(volume) + ": the file is read-only"};
    auto opened = BinaryFile::Open(volume);
    if (!opened) return opened.error();
    old.emplace(std::move(*opened));
  }
  auto writer = AtomicFileWriter::Create(volume);
  if (!writer) return writer.error();
  if (Status written = writer->Write(header); !written) return written;
  if (auto copied = AppendFileRange(source, offset, size, *writer); !copied) return copied.error();
  const std::uint64_t newLength = header.size() + size;
  if (old && old->Size() > newLength) {
    if (auto kept = AppendFileRange(*old, newLength, old->Size() - newLength, *writer); !kept)
      return kept.error();
  }
  return writer->Commit();
}

bool SameFile(const fs::path& a, const fs::path& b) {
  std::error_code error;
  return fs::equivalent(a, b, error);
}

}  // namespace

std::string SplitVolumeBase(const fs::path& image) {
  std::string base = SplitVolumeStem(PathToUtf8(image));
  if (base.empty() || base.back() != '.') base += '.';
  return base;
}

CommandResult SplitRom(Host& host, const fs::path& image) {
  int romSizeMbit = 0;
  {
    auto file = BinaryFile::Open(image);
    if (!file) return ShowFailure(host, file.error());
    romSizeMbit = RomSizeMbit(*file, PathToUtf8(image), DetectRomFormat(*file));
  }
  SplitSizeChooser chooser(romSizeMbit);
  return SplitImage(host, image, host.ChooseSplitSize(chooser));
}

CommandResult SplitImage(Host& host, const fs::path& image, int megabits) {
  if (megabits <= 0) return CommandResult::Cancelled;
  const std::uint64_t partSize = static_cast<std::uint64_t>(megabits) * kMegabitBytes;

  auto source = BinaryFile::Open(image);
  if (!source) return ShowFailure(host, source.error());
  const std::uint64_t length = source->Size();
  const std::uint64_t data = length > kCopierHeaderSize ? length - kCopierHeaderSize : 0;
  if (data <= partSize) {
    host.ShowMessage("You just can split ROMs in parts smaller than it.", MessageIcon::Critical,
                     {});
    return CommandResult::Failed;
  }

  // Whole numbers rather than a floating ratio, so no size loses its last bytes to rounding.
  const std::uint64_t fullParts = data / partSize;
  const std::uint64_t remainder = data % partSize;
  const std::uint64_t volumes = fullParts + (remainder > 0 ? 1 : 0);
  // Only volumes up to the ratio rounded to the nearest whole number are asked about: a
  // short last volume under half a part is written over without a question.
  const std::uint64_t asked = fullParts + (2 * remainder >= partSize ? 1 : 0);
  const std::string base = SplitVolumeBase(image);
  const auto volumePath = [&base](std::uint64_t number) {
    return Utf8ToPath(base + std::to_string(number));
  };

  for (std::uint64_t i = 1; i <= volumes; ++i) {
    if (SameFile(volumePath(i), image))
      return ShowFailure(host, Error{"Cannot split " + PathToUtf8(image) +
                                     ": a volume would be written over the image itself"});
  }
  for (std::uint64_t i = 1; i <= asked; ++i) {
    const fs::path volume = volumePath(i);
    if (!Exists(volume)) continue;
    const std::string question = "The file '" + PathToUtf8(volume) + "' exists! Overwrite?";
    if (host.AskYesNo(question, MessageIcon::Question, {}) != Answer::Yes)
      return CommandResult::Cancelled;
    if (Status deleted = DeleteVolume(volume); !deleted) return ShowFailure(host, deleted.error());
  }

  std::string header = BuildSmdHeader(static_cast<std::int64_t>(partSize / kBlockSize), true);
  std::vector<fs::path> written;
  for (std::uint64_t i = 1; i <= volumes; ++i) {
    const bool shortLast = i > fullParts;
    if (i == volumes) header[2] = 0x00;
    if (shortLast) header[0] = static_cast<char>((remainder / kBlockSize) % 256);
    const std::uint64_t offset = kCopierHeaderSize + (i - 1) * partSize;
    const fs::path volume = volumePath(i);
    if (Status done =
            WriteVolume(volume, header, *source, offset, shortLast ? remainder : partSize);
        !done) {
      // Half a set is no use to anyone: take back the volumes this run wrote.
      for (const fs::path& earlier : written) {
        std::error_code ignored;
        fs::remove(earlier, ignored);
      }
      return ShowFailure(host, done.error());
    }
    written.push_back(volume);
  }
  host.ShowMessage("The ROM was splitted in " + std::to_string(volumes) + " files",
                   MessageIcon::None, {});
  return CommandResult::Done;
}

}  // namespace romsteward
