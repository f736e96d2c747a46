#pragma once

#include <cstdint>
#include <functional>

#include "core/common/atomic_file.h"
#include "core/common/binary_file.h"
#include "core/common/result.h"

namespace romsteward {

/// How a range copy ended when nothing failed.
enum class CopyEnd { Finished, Cancelled };

/// Called after each chunk with the bytes copied so far; false cancels.
using CopyProgress = std::function<bool(std::uint64_t bytesDone)>;

/// Appends `length` bytes of `source` from `offset` to `out`, a chunk at a time so that
/// images of any size pass through a small buffer. A source that ends early is an error
/// naming it, never a shorter output.
Result<CopyEnd> AppendFileRange(const BinaryFile& source, std::uint64_t offset,
                                std::uint64_t length, AtomicFileWriter& out,
                                const CopyProgress& progress = {});

}  // namespace romsteward
