#include <fmt/format.h>
#include <unistd.h>

#include <charconv>
#include <optional>
#include <random>
#include <string_view>
#include <system_error>

#include "core/common/strings.h"
#include "core/launch/run_owner.h"
#include "core/tools/report_folder.h"

namespace romsteward {

namespace {

constexpr std::string_view kPrefix = "romsteward-report-";

template <class Number>
std::optional<Number> TakeNumber(std::string_view& text) {
  Number value{};
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end == text.data()) return std::nullopt;
  text.remove_prefix(static_cast<std::size_t>(end - text.data()));
  return value;
}

// The process a folder name "romsteward-report-PID-START-RANDOM" names.
std::optional<ProcessIdentity> OwnerOf(std::string_view name) {
  if (!name.starts_with(kPrefix)) return std::nullopt;
  name.remove_prefix(kPrefix.size());
  const auto pid = TakeNumber<pid_t>(name);
  if (!pid || !name.starts_with('-')) return std::nullopt;
  name.remove_prefix(1);
  const auto start = TakeNumber<std::uint64_t>(name);
  if (!start || !name.starts_with('-')) return std::nullopt;
  return ProcessIdentity{*pid, *start};
}

}  // namespace

Result<ReportFolder> ReportFolder::CreateIn(const std::filesystem::path& parent) {
  RemoveStaleReportFolders(parent);
  const auto self = IdentifyProcess(getpid());
  if (!self) return Error{"Cannot tell this program's own process apart from others"};
  std::random_device entropy;
  for (int attempt = 0; attempt < 16; ++attempt) {
    const std::filesystem::path folder =
        parent / fmt::format("{}{}-{}-{:08x}", kPrefix, self->pid, self->startTicks, entropy());
    std::error_code error;
    if (std::filesystem::create_directory(folder, error)) return ReportFolder(folder);
    if (error)
      return Error{"Cannot create a folder in " + PathToUtf8(parent) + ": " + error.message()};
  }
  return Error{"Cannot create a folder in " + PathToUtf8(parent)};
}

ReportFolder::ReportFolder(ReportFolder&& other) noexcept : m_path(std::move(other.m_path)) {
  other.m_path.clear();
}

ReportFolder::~ReportFolder() {
  std::error_code ignored;
  if (!m_path.empty()) std::filesystem::remove_all(m_path, ignored);
}

std::size_t RemoveStaleReportFolders(const std::filesystem::path& parent) {
  std::size_t removed = 0;
  std::error_code error;
  for (std::filesystem::directory_iterator it(parent, error), end; !error && it != end;
       it.increment(error)) {
    const auto owner = OwnerOf(PathToUtf8(it->path().filename()));
    // A link of that name is not ours to follow, and a live owner still uses its folder.
    std::error_code ignored;
    if (!owner || !it->is_directory(ignored) || it->is_symlink(ignored) || IsProcessAlive(*owner))
      continue;
    if (std::filesystem::remove_all(it->path(), ignored) != static_cast<std::uintmax_t>(-1))
      ++removed;
  }
  return removed;
}

}  // namespace romsteward
