#pragma once

#include <filesystem>
#include <string_view>

#include "core/common/result.h"

namespace romsteward {

/// Writes a new file beside its target and renames it into place on Commit, so a reader
/// never sees half a file and a failure leaves the old target (or none) behind.
/// Dropped without Commit, the temporary file is removed. A file replaced keeps its
/// permissions.
class AtomicFileWriter {
public:
  /// What a target that is a symbolic link gets.
  enum class AtLink {
    WriteThrough,  ///< the file it leads to is replaced in its own folder; the link stays
    Replace,       ///< the link itself is replaced (where no link may carry a write away)
  };

  static Result<AtomicFileWriter> Create(const std::filesystem::path& target,
                                         AtLink atLink = AtLink::WriteThrough);

  AtomicFileWriter(AtomicFileWriter&& other) noexcept;
  AtomicFileWriter& operator=(AtomicFileWriter&&) = delete;
  AtomicFileWriter(const AtomicFileWriter&) = delete;
  AtomicFileWriter& operator=(const AtomicFileWriter&) = delete;
  ~AtomicFileWriter();

  Status Write(std::string_view data);
  /// Flushes to disk and renames over the target.
  Status Commit();

  const std::filesystem::path& Target() const { return m_target; }
  const std::filesystem::path& TemporaryPath() const { return m_temporary; }

private:
  AtomicFileWriter(int fd, std::filesystem::path target, std::filesystem::path destination,
                   std::filesystem::path temporary);
  void Discard();

  int m_fd = -1;
  std::filesystem::path m_target;       // as given, for messages
  std::filesystem::path m_destination;  // the file renamed over: the target, links followed
  std::filesystem::path m_temporary;
};

/// The whole of `contents` as the new `target`, through AtomicFileWriter.
Status WriteFileAtomically(const std::filesystem::path& target, std::string_view contents);

/// Renames `from` to `to` in one step, refusing (with a message naming both) when `to`
/// already exists, even if it appears between a check and the rename.
Status RenameWithoutReplacing(const std::filesystem::path& from, const std::filesystem::path& to);

}  // namespace romsteward
