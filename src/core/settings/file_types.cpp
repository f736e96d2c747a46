#include "core/settings/file_types.h"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <system_error>

#include "core/common/atomic_file.h"
#include "core/common/binary_file.h"
#include "core/common/strings.h"
#include "core/launch/posix_process.h"

namespace romsteward {

namespace {

namespace fs = std::filesystem;

// The system's own type for every layout: registering must not change what the desktop says
// about any other file, and every extension but "bin" is claimed by name already (manual
// pages, Markdown, StarMail), so the images are told apart by their headers alone.
constexpr std::array<FileTypeEntry, 4> kFileTypes{{
    {"mnu_regbin", "Super Magic Drive &Binary (BIN)", "bin", kGenesisRomType},
    {"mnu_regsmd", "Super Magic Drive &Interleaved (SMD)", "smd", kGenesisRomType},
    {"mnu_regsplit", "Super Magic Drive &Splitted (1)", "1", kGenesisRomType},
    {"mnu_regmd", "Multi &Game Doctor (MD)", "md", kGenesisRomType},
}};

// Where the odd letters of "SEGA GENESIS" and "SEGA MEGA DRIVE" land: 0x280 in the SMD
// layouts (the split first volume included), 0x80 in the game doctor's.
constexpr std::array<std::pair<std::string_view, int>, 4> kHeaderMagic{{
    {"EAGN", 0x280},
    {"EAMG", 0x280},
    {"EAGN", 0x80},
    {"EAMG", 0x80},
}};

// Shared-mime-info asks rules of priority 80 and above before the file name.
constexpr int kMagicPriority = 80;

// The Exec key's quoting: the path in double quotes with the reserved characters escaped,
// then the backslashes of the whole value doubled as every desktop-entry string's are.
std::string ExecQuoted(std::string_view path) {
  std::string quoted = "\"";
  for (char c : path) {
    if (c == '"' || c == '`' || c == '$' || c == '\\') quoted += '\\';
    quoted += c == '%' ? std::string("%%") : std::string(1, c);
  }
  quoted += '"';
  std::string out;
  for (char c : quoted)
    out += c == '\\' ? std::string("\\\\") : std::string(1, c);
  return out;
}

fs::path MimeFolder(const FileTypePlaces& places) {
  return places.dataHome / "mime";
}
fs::path PackagePath(const FileTypePlaces& places) {
  return MimeFolder(places) / "packages" / kMimePackageFileName;
}
fs::path DesktopPath(const FileTypePlaces& places) {
  return places.dataHome / "applications" / kDesktopFileName;
}

// Runs one desktop tool with the places' folders as its XDG folders; a tool that is
// missing or fails becomes a note, since the files it would act on are written anyway.
void RunTool(const FileTypePlaces& places, std::string program, std::vector<std::string> arguments,
             FileTypeReport& report) {
  ProcessSpec spec{std::move(program), std::move(arguments), {}, {}};
  spec.environment = {{"XDG_DATA_HOME", PathToUtf8(places.dataHome)},
                      {"XDG_CONFIG_HOME", PathToUtf8(places.configHome)}};
  const ProcessOutcome outcome = PosixProcessRunner().Run(spec);
  if (!outcome.started) {
    report.notes.push_back(fmt::format("{} was not run: {}", spec.program, outcome.startError));
  } else if (!outcome.Succeeded()) {
    report.notes.push_back(fmt::format("{} failed (status {}): {}", spec.program,
                                       outcome.exitStatus, outcome.stderrTail));
  }
}

void UpdateMimeDatabase(const FileTypePlaces& places, FileTypeReport& report) {
  RunTool(places, "update-mime-database", {PathToUtf8(MimeFolder(places))}, report);
}

// A file-system call's outcome as a Status naming what was being done to which path.
Status FileSystemStatus(std::string_view doing, const fs::path& path,
                        const std::error_code& error) {
  if (!error) return {};
  return Error{fmt::format("Cannot {} {}: {}", doing, PathToUtf8(path), error.message()),
               error.value()};
}

Status CreateFolder(const fs::path& folder) {
  std::error_code error;
  fs::create_directories(folder, error);
  return FileSystemStatus("create", folder, error);
}

Status RemoveFile(const fs::path& path) {
  std::error_code error;
  fs::remove(path, error);
  return FileSystemStatus("delete", path, error);
}

// The line of mimeapps.list without the program: empty when nothing else is left of it.
// Lines of the types older versions declared are dropped whole.
std::string WithoutProgram(std::string_view line) {
  if (line.starts_with("application/x-romsteward-")) return {};
  const auto equals = line.find('=');
  if (equals == std::string_view::npos || line.substr(0, equals) != kGenesisRomType)
    return std::string(line);
  std::string kept;
  std::string_view rest = line.substr(equals + 1);
  while (!rest.empty()) {
    const auto end = rest.find(';');
    const std::string_view name = rest.substr(0, end);
    rest = end == std::string_view::npos ? std::string_view{} : rest.substr(end + 1);
    if (!name.empty() && name != kDesktopFileName) kept.append(name).append(";");
  }
  return kept.empty() ? std::string() : std::string(line.substr(0, equals + 1)) + kept;
}

// Takes the program out of mimeapps.list's lists, which xdg-mime cannot undo.
Status ForgetDefaults(const FileTypePlaces& places) {
  const fs::path list = places.configHome / "mimeapps.list";
  std::error_code error;
  if (!fs::exists(list, error)) return {};
  auto text = ReadWholeFile(list);
  if (!text) return text.error();
  std::string kept;
  bool changed = false;
  for (std::string_view rest = *text; !rest.empty();) {
    const auto end = rest.find('\n');
    const std::string_view line = rest.substr(0, end);
    rest = end == std::string_view::npos ? std::string_view{} : rest.substr(end + 1);
    const std::string left = WithoutProgram(line);
    changed = changed || left != line;
    if (!left.empty() || line.empty()) kept.append(left).append("\n");
  }
  return changed ? WriteFileAtomically(list, kept) : Status{};
}

fs::path EnvFolder(const char* name, const char* home, std::string_view fallback) {
  const char* value = std::getenv(name);
  // The base-directory rules ignore a relative value.
  if (value && *value == '/') return Utf8ToPath(value);
  return Utf8ToPath(home) / Utf8ToPath(fallback);
}

}  // namespace

std::span<const FileTypeEntry> FileTypes() {
  return kFileTypes;
}

Result<FileTypePlaces> DefaultFileTypePlaces(const fs::path& program) {
  const char* home = std::getenv("HOME");
  if (!home || *home != '/') {
    return Error{"HOME is not set: there is no place for the file-type registration."};
  }
  return FileTypePlaces{EnvFolder("XDG_DATA_HOME", home, ".local/share"),
                        EnvFolder("XDG_CONFIG_HOME", home, ".config"), program};
}

std::string MimePackageXml() {
  std::string xml = fmt::format(
      "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
      "<mime-info xmlns=\"http://www.freedesktop.org/standards/shared-mime-info\">\n"
      "  <mime-type type=\"{}\">\n"
      "    <magic priority=\"{}\">\n",
      kGenesisRomType, kMagicPriority);
  for (const auto& [value, offset] : kHeaderMagic)
    xml +=
        fmt::format("      <match type=\"string\" value=\"{}\" offset=\"{}\"/>\n", value, offset);
  return xml +
         "    </magic>\n"
         "  </mime-type>\n"
         "</mime-info>\n";
}

Result<std::string> DesktopEntry(const fs::path& program) {
  const std::string path = PathToUtf8(program);
  if (path.find_first_of("\r\n") != std::string::npos || !program.is_absolute()) {
    return Error{
        fmt::format("The program path {} cannot be registered: it must be absolute "
                    "and on one line.",
                    EscapeForDisplay(path))};
  }
  return fmt::format(
      "[Desktop Entry]\n"
      "Type=Application\n"
      "Name=Genesis Romsteward\n"
      "Comment=Run Genesis and Mega Drive cartridge images\n"
      "Exec={} %f\n"
      "Terminal=false\n"
      "NoDisplay=true\n"
      "MimeType={};\n",
      ExecQuoted(path), kGenesisRomType);
}

const FileTypeEntry* FindFileType(std::string_view extension) {
  for (const auto& type : kFileTypes)
    if (type.extension == extension) return &type;
  return nullptr;
}

Result<FileTypeReport> RegisterFileTypes(const FileTypePlaces& places,
                                         std::span<const FileTypeEntry> types) {
  auto entry = DesktopEntry(places.program);
  if (!entry) return entry.error();
  std::error_code missing;
  if (!fs::is_regular_file(places.program, missing) || access(places.program.c_str(), X_OK) != 0) {
    return Error{fmt::format("The program {} cannot be registered: there is no such program.",
                             EscapeForDisplay(PathToUtf8(places.program)))};
  }
  for (const fs::path& folder :
       {DesktopPath(places).parent_path(), PackagePath(places).parent_path()}) {
    if (Status made = CreateFolder(folder); !made) return made.error();
  }
  if (Status written = WriteFileAtomically(DesktopPath(places), *entry); !written) {
    return written.error();
  }
  if (Status written = WriteFileAtomically(PackagePath(places), MimePackageXml()); !written) {
    return written.error();
  }
  FileTypeReport report;
  UpdateMimeDatabase(places, report);
  std::vector<std::string> arguments{"default", std::string(kDesktopFileName)};
  for (const auto& type : types) {
    if (std::find(arguments.begin(), arguments.end(), type.mimeType) == arguments.end())
      arguments.emplace_back(type.mimeType);
  }
  if (Status made = CreateFolder(places.configHome); !made) return made.error();
  RunTool(places, "xdg-mime", std::move(arguments), report);
  return report;
}

Result<FileTypeReport> RemoveFileTypes(const FileTypePlaces& places) {
  for (const fs::path& path : {DesktopPath(places), PackagePath(places)}) {
    if (Status removed = RemoveFile(path); !removed) return removed.error();
  }
  if (Status forgotten = ForgetDefaults(places); !forgotten) return forgotten.error();
  FileTypeReport report;
  std::error_code error;
  if (fs::is_directory(MimeFolder(places) / "packages", error)) UpdateMimeDatabase(places, report);
  return report;
}

}  // namespace romsteward
