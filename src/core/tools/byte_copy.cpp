#include "core/tools/byte_copy.h"

#include <algorithm>
#include <string>

#include "core/common/strings.h"

namespace romsteward {

namespace {

constexpr std::uint64_t kChunkSize = 1 << 20;

}  // namespace

Result<CopyEnd> AppendFileRange(const BinaryFile& source, std::uint64_t offset,
                                std::uint64_t length, AtomicFileWriter& out,
                                const CopyProgress& progress) {
  std::string buffer(static_cast<std::size_t>(std::min(length, kChunkSize)), '\0');
  std::uint64_t done = 0;
  while (done < length) {
    const auto want = static_cast<std::size_t>(std::min(length - done, kChunkSize));
    const std::size_t got = source.ReadInto(offset + done, {buffer.data(), want});
    if (got != want) return Error{"Cannot read all of " + PathToUtf8(source.Path())};
    if (Status written = out.Write({buffer.data(), got}); !written) return written.error();
    done += got;
    if (progress && !progress(done)) return CopyEnd::Cancelled;
  }
  return CopyEnd::Finished;
}

}  // namespace romsteward
