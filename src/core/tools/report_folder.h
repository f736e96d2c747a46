#pragma once

#include <filesystem>

#include "core/common/result.h"

namespace romsteward {

/// A folder of the report's own inside the temporary folder: extracting there can never
/// replace a file the user keeps in the temporary folder, and removing it removes every
/// copy made. Its name says which process made it ("romsteward-report-PID-START-RANDOM"),
/// so that one left by a killed process can be told from one in use.
class ReportFolder {
public:
  /// Creates a new folder in `parent`, after removing those whose process is gone.
  static Result<ReportFolder> CreateIn(const std::filesystem::path& parent);
  ReportFolder(ReportFolder&& other) noexcept;
  ReportFolder(const ReportFolder&) = delete;
  ReportFolder& operator=(const ReportFolder&) = delete;
  ReportFolder& operator=(ReportFolder&&) = delete;
  /// Removes the folder and everything in it.
  ~ReportFolder();

  const std::filesystem::path& Path() const { return m_path; }

private:
  explicit ReportFolder(std::filesystem::path path) : m_path(std::move(path)) {}
  std::filesystem::path m_path;
};

/// Removes the report folders in `parent` whose process no longer runs; those of running
/// processes, and folders named otherwise, stay. Returns how many went.
std::size_t RemoveStaleReportFolders(const std::filesystem::path& parent);

}  // namespace romsteward
