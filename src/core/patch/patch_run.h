#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/host/host.h"
#include "core/launch/run_owner.h"
#include "core/patch/restore_record.h"
#include "core/settings/registry_store.h"

namespace romsteward {

/// The section that holds, for each image patched for a run still going on, what puts it back.
inline constexpr std::string_view kSectionPatchRun = "PatchRun";

/// What a patch run writes into: the image itself, or a copy extracted from an archive for
/// the run and deleted after it.
enum class PatchTarget { Image, ExtractedCopy };

/// Dynamic patches applied to the file an emulator is about to start, taken back when the run
/// is over. Before the first byte is written, a restore record naming the file is put in the
/// store, and it is removed once the old bytes are back; a record still there at the next
/// start means the program died during a run (see RecoverInterruptedPatchRuns).
class DynamicPatchRun {
public:
  /// The launch's patching step: applies to `file` every patch whose value name begins with
  /// `listText` (letter case included), in enumeration order; a malformed value is reported and
  /// skipped. A patch whose old bytes were not taken from `file` is left out, all of them
  /// named in one message: one made from another image file, or one whose old bytes are not
  /// what `file` holds at its place. With the store unreadable, the file unopenable or the
  /// restore record unwritable, it says so and patches nothing.
  static DynamicPatchRun Apply(Host& host, RegistryStore& store, std::string_view listText,
                               const std::filesystem::path& file,
                               PatchTarget target = PatchTarget::Image);

  DynamicPatchRun(DynamicPatchRun&& other) noexcept;
  DynamicPatchRun& operator=(DynamicPatchRun&&) = delete;
  DynamicPatchRun(const DynamicPatchRun&) = delete;
  DynamicPatchRun& operator=(const DynamicPatchRun&) = delete;
  /// Restores, if that has not been done yet.
  ~DynamicPatchRun();

  /// After the run: writes back the old bytes stored with each patch, in the same order, cuts
  /// off anything the patches added past the file's end, and removes the restore record.
  /// When the file cannot be written it says so and keeps the record for the next start.
  /// Does nothing the second time.
  void Restore();

  /// Names the emulator started on the patched file beside the restore record, so that no
  /// other program takes the patches off while it runs.
  void AddOwner(pid_t pid);

  /// Whether the patching step ran, so that a restore is due.
  bool Applied() const { return m_applied; }
  /// How many patches were written.
  std::size_t PatchCount() const { return m_patches.size(); }

private:
  DynamicPatchRun(Host& host, RegistryStore& store, std::filesystem::path file);

  Host* m_host;
  RegistryStore* m_store;
  std::filesystem::path m_file;
  std::uint64_t m_originalSize = 0;
  std::vector<RunPatch> m_patches;
  std::optional<RunOwners> m_owners;
  bool m_applied = false;
};

/// At start: every image left patched by a run that never ended (its program and its emulator
/// are gone) gets its old bytes back, and the user is told; a file that no longer holds what
/// the run wrote (replaced since) is left alone and named. Returns how many images were
/// restored.
std::size_t RecoverInterruptedPatchRuns(Host& host, RegistryStore& store);

}  // namespace romsteward
