#include "core/launch/saved_games.h"

#include <algorithm>
#include <cstdlib>
#include <optional>
#include <system_error>

#include "core/common/strings.h"

namespace romsteward {

namespace {

std::string BaseName(const std::string& fileName) {
  const auto dot = fileName.rfind('.');
  return dot == std::string::npos ? fileName : fileName.substr(0, dot);
}

std::filesystem::path KGenDirectory(std::string_view kgenExecutable) {
  const auto slash = kgenExecutable.find_last_of("/\\");
  if (slash == std::string_view::npos) return {};
  return Utf8ToPath(kgenExecutable.substr(0, slash + 1));
}

// The names of the regular files in `dir`, sorted without regard to case.
std::vector<std::string> FileNames(const std::filesystem::path& dir) {
  std::vector<std::string> names;
  if (dir.empty()) return names;
  std::error_code error;
  for (const auto& entry : std::filesystem::directory_iterator(dir, error)) {
    if (entry.is_regular_file(error)) names.push_back(PathToUtf8(entry.path().filename()));
  }
  std::sort(names.begin(), names.end(), [](const std::string& a, const std::string& b) {
    return ToLowerAscii(a) < ToLowerAscii(b);
  });
  return names;
}

std::optional<std::string> FindIgnoringCase(const std::vector<std::string>& names,
                                            std::string_view wanted) {
  // Names here tell case apart: the file named exactly is the game's own.
  for (const std::string& name : names) {
    if (name == wanted) return name;
  }
  for (const std::string& name : names) {
    if (EqualsIgnoreCase(name, wanted)) return name;
  }
  return std::nullopt;
}

bool IsGenecystSnapshot(const std::string& name, const std::string& base) {
  // base + ".gs?" but not the state file ".gsv"
  if (name.size() != base.size() + 4 || !StartsWithIgnoreCase(name, base + ".gs")) return false;
  return ToLowerAscii(name.substr(name.size() - 1)) != "v";
}

bool IsKGenSnapshot(const std::string& name, const std::string& prefix) {
  const std::string lower = ToLowerAscii(name);
  return StartsWithIgnoreCase(name, prefix) && lower.size() >= prefix.size() + 4 &&
         lower.ends_with(".kss");
}

// Mednafen names its files "<base>.<md5 of the image>.<ext>" (older ones "<base>.<ext>").
// The hash is not recomputed: any 32 hexadecimal digits count, as nothing else writes there.
bool IsMednafenFile(const std::string& name, const std::string& base, std::string_view ext) {
  if (name == base + std::string(ext)) return true;
  constexpr std::size_t kHashDigits = 32;
  if (name.size() != base.size() + 1 + kHashDigits + ext.size() || !name.starts_with(base + ".") ||
      !name.ends_with(ext))
    return false;
  const std::string_view hash = std::string_view(name).substr(base.size() + 1, kHashDigits);
  return std::all_of(hash.begin(), hash.end(), IsHexDigit);
}

bool IsMednafenState(const std::string& name, const std::string& base) {
  if (name.size() < 4) return false;
  const std::string_view tail = std::string_view(name).substr(name.size() - 4);
  return tail.starts_with(".mc") && tail[3] >= '0' && tail[3] <= '9' &&
         IsMednafenFile(name, base, tail);
}

bool IsBlastEmState(const std::string& name) {
  return name.ends_with(".state");
}

std::filesystem::path HomeFolder() {
  const char* home = std::getenv("HOME");
  return home && *home ? Utf8ToPath(home) : std::filesystem::path();
}

struct SavedGames {
  std::optional<std::string> genecystState;
  std::vector<std::string> genecystSnapshots;
  std::optional<std::string> genEmState;
  std::optional<std::string> kgenState;
  std::vector<std::string> kgenSnapshots;
  std::filesystem::path blastEmDir;
  std::optional<std::string> blastEmBattery;
  std::vector<std::string> blastEmStates;
  std::optional<std::string> mednafenBattery;
  std::vector<std::string> mednafenStates;
};

SavedGames FindSavedGames(const std::filesystem::path& romPath, std::string_view kgenExecutable) {
  const std::string base = BaseName(PathToUtf8(romPath.filename()));
  const std::vector<std::string> romDir = FileNames(romPath.parent_path());
  const std::vector<std::string> kgenDir = FileNames(KGenDirectory(kgenExecutable));
  const std::string kgenPrefix = base.substr(0, std::min<std::size_t>(base.size(), 5));

  SavedGames found;
  found.genecystState = FindIgnoringCase(romDir, base + ".gsv");
  found.genEmState = FindIgnoringCase(romDir, base + ".sav");
  found.kgenState = FindIgnoringCase(kgenDir, base + ".ksb");
  for (const std::string& name : romDir) {
    if (IsGenecystSnapshot(name, base)) found.genecystSnapshots.push_back(name);
  }
  for (const std::string& name : kgenDir) {
    if (IsKGenSnapshot(name, kgenPrefix)) found.kgenSnapshots.push_back(name);
  }

  // The Debian emulators match names exactly, as their file systems do.
  const std::filesystem::path blastEmBase = BlastEmSaveFolder();
  if (!blastEmBase.empty()) {
    found.blastEmDir = blastEmBase / Utf8ToPath(base);
    for (const std::string& name : FileNames(found.blastEmDir)) {
      if (name == "save.sram") found.blastEmBattery = name;
      if (IsBlastEmState(name)) found.blastEmStates.push_back(name);
    }
  }
  const std::filesystem::path mednafen = MednafenFolder();
  if (!mednafen.empty()) {
    for (const std::string& name : FileNames(mednafen / "sav")) {
      if (IsMednafenFile(name, base, ".sav")) found.mednafenBattery = name;
    }
    for (const std::string& name : FileNames(mednafen / "mcs")) {
      if (IsMednafenState(name, base)) found.mednafenStates.push_back(name);
    }
  }
  return found;
}

}  // namespace

std::filesystem::path BlastEmSaveFolder() {
  const auto home = HomeFolder();
  return home.empty() ? home : home / ".local" / "share" / "blastem";
}

std::filesystem::path MednafenFolder() {
  if (const char* own = std::getenv("MEDNAFEN_HOME"); own && *own) return Utf8ToPath(own);
  const auto home = HomeFolder();
  return home.empty() ? home : home / ".mednafen";
}

std::vector<std::string> JogosSalvos(const std::filesystem::path& romPath,
                                     std::string_view kgenExecutable) {
  const SavedGames found = FindSavedGames(romPath, kgenExecutable);
  std::vector<std::string> entries;
  const auto addSnapshots = [&entries](std::string_view heading,
                                       const std::vector<std::string>& names) {
    if (names.empty()) return;
    entries.emplace_back(heading);
    for (const std::string& name : names)
      entries.push_back(std::string(kSnapshotPrefix) + name);
  };
  if (found.genecystState) entries.emplace_back(kGenecystState);
  addSnapshots(kGenecystSnapshots, found.genecystSnapshots);
  if (found.genEmState) entries.emplace_back(kGenEmState);
  if (found.kgenState) entries.emplace_back(kKGenState);
  addSnapshots(kKGenSnapshots, found.kgenSnapshots);
  if (found.blastEmBattery) entries.emplace_back(kBlastEmBatterySave);
  addSnapshots(kBlastEmStates, found.blastEmStates);
  if (found.mednafenBattery) entries.emplace_back(kMednafenBatterySave);
  addSnapshots(kMednafenStates, found.mednafenStates);
  if (entries.empty()) entries.emplace_back(kNoSavedGames);
  return entries;
}

Result<std::filesystem::path> SavedGameFile(const std::vector<std::string>& entries,
                                            std::size_t index, const std::filesystem::path& romPath,
                                            std::string_view kgenExecutable) {
  if (index >= entries.size() || entries[index] == kNoSavedGames)
    return Error{"No saved game is selected."};
  const std::string& entry = entries[index];
  if (entry == kGenecystSnapshots || entry == kKGenSnapshots || entry == kBlastEmStates ||
      entry == kMednafenStates)
    return Error{"You can't Delete a file type"};

  const SavedGames found = FindSavedGames(romPath, kgenExecutable);
  const std::filesystem::path romDir = romPath.parent_path();
  const std::filesystem::path kgenDir = KGenDirectory(kgenExecutable);
  const auto inDir = [](const std::filesystem::path& dir,
                        const std::optional<std::string>& name) -> Result<std::filesystem::path> {
    if (!name) return Error{"The saved game is no longer there."};
    return dir / Utf8ToPath(*name);
  };
  if (entry == kGenecystState) return inDir(romDir, found.genecystState);
  if (entry == kGenEmState) return inDir(romDir, found.genEmState);
  if (entry == kKGenState) return inDir(kgenDir, found.kgenState);
  if (entry == kBlastEmBatterySave) return inDir(found.blastEmDir, found.blastEmBattery);
  if (entry == kMednafenBatterySave) return inDir(MednafenFolder() / "sav", found.mednafenBattery);

  // A snapshot lies where the heading above it says.
  const std::string name = entry.substr(std::min(entry.size(), kSnapshotPrefix.size()));
  for (std::size_t i = index; i-- > 0;) {
    if (entries[i] == kKGenSnapshots) return kgenDir / Utf8ToPath(name);
    if (entries[i] == kGenecystSnapshots) return romDir / Utf8ToPath(name);
    if (entries[i] == kBlastEmStates) return found.blastEmDir / Utf8ToPath(name);
    if (entries[i] == kMednafenStates) return MednafenFolder() / "mcs" / Utf8ToPath(name);
  }
  return Error{"No saved game is selected."};
}

}  // namespace romsteward
