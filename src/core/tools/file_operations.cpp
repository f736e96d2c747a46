#include "core/tools/file_operations.h"

#include <system_error>

#include "core/common/strings.h"

namespace romsteward {

namespace {

namespace fs = std::filesystem;

bool SamePlace(const fs::path& a, const fs::path& b) {
  if (a.lexically_normal() == b.lexically_normal()) return true;
  std::error_code error;
  return fs::equivalent(a, b, error);
}

// A move goes nowhere when its target is the source itself, or when the target folder is
// any folder on the source's own path (its folder, that folder's parent, up to the root).
bool MoveGoesNowhere(const fs::path& source, const fs::path& destination) {
  if (SamePlace(source, destination)) return true;
  std::error_code error;
  const fs::path folder =
      fs::is_directory(destination, error) ? destination : destination.parent_path();
  if (folder.empty()) return false;
  const fs::path normal = source.lexically_normal();
  for (fs::path up = normal.parent_path(); !up.empty(); up = up.parent_path()) {
    if (SamePlace(up, folder)) return true;
    if (up == up.root_path()) break;
  }
  return false;
}

std::string_view VerbForm(FileVerb verb) {
  switch (verb) {
    case FileVerb::Copy:
      return "copying";
    case FileVerb::Delete:
      return "deleting";
    case FileVerb::Move:
      return "moving";
    case FileVerb::Rename:
      return "renaming";
  }
  return {};
}

void ReportFailure(Host& host, FileVerb verb, const FileOperationResult& result,
                   const fs::path& lastSource) {
  if (result.code == FileOpCode::WriteError)
    host.ShowMessage("Error writing to disc!", MessageIcon::Critical, {});
  if (result.aborted)
    host.ShowMessage("Operation Failure!", MessageIcon::Critical, "Contact the author!");
  const fs::path& named = result.failedSource.empty() ? lastSource : result.failedSource;
  host.ShowMessage(
      "Error " + std::string(VerbForm(verb)) + " " + PathToUtf8(named.filename()) + "!!!",
      MessageIcon::Critical, {});
}

}  // namespace

std::optional<FileVerb> ParseFileVerb(std::string_view verb) {
  const std::string lower = ToLowerAscii(verb);
  if (lower == "copy") return FileVerb::Copy;
  if (lower == "del") return FileVerb::Delete;
  if (lower == "move") return FileVerb::Move;
  if (lower == "ren") return FileVerb::Rename;
  return std::nullopt;
}

std::string DescribeFileOperation(FileVerb verb, std::string_view source,
                                  std::string_view destination) {
  const std::string from(source);
  const std::string to(destination);
  switch (verb) {
    case FileVerb::Copy:
      return "Copying " + from + " to " + to;
    case FileVerb::Delete:
      return "Deleting " + from;
    case FileVerb::Move:
      return "Moving " + from + " to " + to;
    case FileVerb::Rename:
      return "Renaming " + from + " to " + to;
  }
  return {};
}

bool CopyBoxCommDialog(Host& host, FileOperations& operations,
                       const std::vector<std::string>& sources, std::string_view destination,
                       std::string_view verb) {
  const std::optional<FileVerb> parsed = ParseFileVerb(verb);
  if (!parsed || sources.empty()) return false;

  FileOperationRequest request;
  request.verb = *parsed;
  for (const std::string& source : sources)
    request.sources.push_back(Utf8ToPath(source));
  request.destination = Utf8ToPath(destination);

  if (request.verb == FileVerb::Move) {
    for (const fs::path& source : request.sources)
      if (MoveGoesNowhere(source, request.destination)) return false;
  }

  std::string sourceText = sources.front();
  for (std::size_t i = 1; i < sources.size(); ++i)
    sourceText += ", " + sources[i];
  request.description = DescribeFileOperation(request.verb, sourceText, destination);
  // Shift is read now, as the command runs, not when the menu opened.
  if (request.verb == FileVerb::Delete) request.toTrash = !host.IsShiftHeld();

  const FileOperationResult result = operations.Run(request, host);
  if (result.ok()) return true;
  ReportFailure(host, request.verb, result, request.sources.back());
  return false;
}

}  // namespace romsteward
