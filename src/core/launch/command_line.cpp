#include "core/launch/command_line.h"

#include <fstream>
#include <sstream>

#include "core/common/strings.h"
#include "core/launch/shell_words.h"

namespace romsteward {

namespace {

constexpr std::string_view kNotFound = "NOT FOUND";

// The classic emulators take no country switch for what they run anyway.
bool OverridesCountry(std::string_view country) {
  return country != "USA" && country != kNotFound && !TrimBlanks(country).empty();
}

bool NamesCountry(std::string_view country) {
  return country != kNotFound && !TrimBlanks(country).empty();
}

// The first word of a `gen.ini` line: up to the first blank, trimmed, lower case.
std::string FirstWord(std::string_view line) {
  return ToLowerAscii(TrimBlanks(line.substr(0, line.find(' '))));
}

constexpr std::string_view kKeptGenIniWords[] = {
    "-setinput", "-setkey",  "-analogjoyres", "-setjoythresh", "-remapbut",
    "-pcxdir",   "-savedir", "-patchdir",     "-romdir",       "-res"};

// The region the Debian emulators are given: the three forced countries as they are, any
// other named country as Europe (as the classic tabs do), none for an unnamed one.
std::string_view RegionOf(std::string_view country) {
  if (!NamesCountry(country)) return {};
  if (country == "USA" || country == "Japan") return country;
  return "Europe";
}

void AddBlastEmArguments(const CompositionInput& input, std::vector<std::string>& arguments,
                         ProcessSpec& process) {
  const std::string_view region = RegionOf(input.country);
  if (!region.empty()) {
    arguments.push_back("-r");
    arguments.push_back(region == "USA" ? "U" : region == "Japan" ? "J" : "E");
  }
  if (input.options.blastFullscreen) arguments.push_back("-f");
  // BlastEm has no switch for silence: SDL is given no sound device.
  if (input.options.blastNoSound) process.environment.emplace_back("SDL_AUDIODRIVER", "dummy");
}

// Mednafen keeps every setting it is given in its own configuration file, so each one this
// launch relies on is passed every time.
void AddMednafenArguments(const CompositionInput& input, std::vector<std::string>& arguments) {
  const std::string_view region = RegionOf(input.country);
  const std::string regionValue = region.empty()      ? "game"
                                  : region == "USA"   ? "overseas_ntsc"
                                  : region == "Japan" ? "domestic_ntsc"
                                                      : "overseas_pal";
  const auto flag = [](bool on) { return std::string(on ? "1" : "0"); };
  arguments.insert(arguments.end(),
                   {"-md.region", regionValue, "-sound", flag(!input.options.mednafenNoSound),
                    "-video.frameskip", flag(input.options.mednafenFrameSkip), "-video.fs",
                    flag(input.options.mednafenFullscreen)});
}

std::string ReadWholeFile(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) return {};
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

std::string JoinForDisplay(const std::vector<std::string>& words) {
  std::string text;
  for (const auto& word : words)
    text += (text.empty() ? "" : " ") + word;
  return text;
}

// The extra command line as a shell user reads it; a launch refuses an open quote before it
// gets here, so the blank split only serves a caller that did not ask.
std::vector<std::string> ExtraWords(std::string_view extra) {
  auto words = SplitShellWords(extra);
  return words ? std::move(*words) : SplitAtBlanks(extra);
}

}  // namespace

std::string GenEmOptionText(const EmulatorOptions& options, std::string_view country) {
  std::string text;
  if (options.disableJoypad) text += " -nojoy ";
  if (options.disableSound) text += " -nosound ";
  if (options.enableZ80) text += " -z80 ";
  if (options.fakeZ80) text += " -fakedz80 ";
  if (options.modeX) text += " -modex ";
  if (OverridesCountry(country)) {
    text += country == "Japan" || country == "Europe" ? " -" + ToLowerAscii(country) + " "
                                                      : std::string(" -europe");
  }
  if (options.genFrameSkip != 2) text += " -frame " + std::to_string(options.genFrameSkip) + " ";
  return text;
}

std::string KGenOptionText(const EmulatorOptions& options, std::string_view country) {
  std::string text;
  if (OverridesCountry(country)) {
    text += country == "Europe" || country == "Japan" ? std::string(" -") + country.front() + " "
                                                      : std::string(" -E");
  }
  if (options.kgenDisableSound) text += " -S ";
  text += " -F" + std::to_string(options.kgenFrameSkip) + " ";
  return text;
}

std::string GenecystOptionText(const EmulatorOptions& options, std::string_view country) {
  std::string text = " -hidegui" + std::string(kCrLf);
  const auto line = [&text](std::string_view option) { (text += option) += kCrLf; };
  if (options.cystFpuCopies) line("-fpucopy");
  if (options.cystRdtscProfiling) line("-rdtsc");
  if (options.cystDisableZ80) line("-disablez80");
  if (options.cystFakedZ80) line("-fakez80");
  if (options.cystForceFm) line("-forcefm");
  if (options.cystNoFm) line("-nofm");
  if (options.cystNoDac) line("-nodac");
  if (options.cystCpuSkipper) line("-cpuskip");
  if (options.cystWaitVsync) line("-waitvsync");
  if (NamesCountry(country)) {
    const bool known = country == "Europe" || country == "Japan" || country == "USA";
    line("-version " + std::string(known ? country : "Europe"));
  }
  if (options.cystExclusive) line("-exclusive");
  const int rate = options.cystSoundRate;
  line("-sndrate " + std::string(rate >= 0 && rate < static_cast<int>(std::size(kCystSoundRates))
                                     ? kCystSoundRates[rate]
                                     : kCystSoundRates[2]));
  return text;
}

std::string ClassicArgumentText(EmulatorTab tab, std::string_view romPath,
                                const EmulatorOptions& options, std::string_view country,
                                std::string_view extra) {
  std::string text;
  switch (tab) {
    case EmulatorTab::GenEm:
      text = std::string(romPath) + GenEmOptionText(options, country);
      break;
    case EmulatorTab::KGen:
      text = std::string(romPath) + KGenOptionText(options, country);
      break;
    default:
      text = "-run " + std::string(romPath) + GenecystOptionText(options, country);
      break;
  }
  return text + " " + std::string(extra);
}

std::string RewriteGenIni(std::string_view optionBlock, std::string_view oldText) {
  std::string block(optionBlock);
  while (!oldText.empty()) {
    // A file edited by hand may end its lines with CR LF, LF or CR alone.
    const auto end = oldText.find_first_of("\r\n");
    const std::string_view line = oldText.substr(0, end);
    std::size_t next = end == std::string_view::npos ? oldText.size() : end + 1;
    if (end != std::string_view::npos && oldText[end] == '\r' && next < oldText.size() &&
        oldText[next] == '\n')
      ++next;
    oldText.remove_prefix(next);
    const std::string word = FirstWord(line);
    for (std::string_view kept : kKeptGenIniWords) {
      if (word == kept) {
        (block += kCrLf) += line;
        break;
      }
    }
  }
  return std::string(kGenIniBanner1) + std::string(kCrLf) + std::string(kGenIniBanner2) +
         std::string(kCrLf) + block;
}

std::vector<std::string> SplitAtBlanks(std::string_view text) {
  std::vector<std::string> words;
  std::size_t start = std::string_view::npos;
  for (std::size_t i = 0; i <= text.size(); ++i) {
    const bool blank =
        i == text.size() || text[i] == ' ' || text[i] == '\t' || text[i] == '\r' || text[i] == '\n';
    if (blank && start != std::string_view::npos) {
      words.emplace_back(text.substr(start, i - start));
      start = std::string_view::npos;
    } else if (!blank && start == std::string_view::npos) {
      start = i;
    }
  }
  return words;
}

EmulatorCommand ComposeEmulatorCommand(const CompositionInput& input) {
  EmulatorCommand command;
  const EmulatorTab tab = input.profile->tab;
  const bool calibrate = input.romPath.empty();
  std::vector<std::string> arguments;

  if (!input.profile->classic) {
    if (tab == EmulatorTab::BlastEm) {
      AddBlastEmArguments(input, arguments, command.process);
    } else {
      AddMednafenArguments(input, arguments);
    }
    if (!calibrate) arguments.push_back(input.romPath);
    for (auto& word : ExtraWords(input.extra))
      arguments.push_back(std::move(word));
    command.argumentText = JoinForDisplay(arguments);
  } else if (calibrate) {
    command.argumentText = " -calib";
    arguments = SplitAtBlanks(command.argumentText);
  } else {
    command.argumentText =
        ClassicArgumentText(tab, input.romPath, input.options, input.country, input.extra);
    std::string_view rest = command.argumentText;
    if (tab == EmulatorTab::Genecyst) {
      // The options go into gen.ini; the command keeps what stands before the first CR LF.
      const auto lineEnd = rest.find(kCrLf);
      const auto emulatorDir = Utf8ToPath(input.emulatorPath).parent_path();
      command.genIniPath = emulatorDir / "gen.ini";
      std::error_code error;
      const std::string old = std::filesystem::exists(command.genIniPath, error)
                                  ? ReadWholeFile(command.genIniPath)
                                  : std::string();
      command.genIniText = RewriteGenIni(rest.substr(lineEnd + kCrLf.size()), old);
      rest = rest.substr(0, lineEnd);
      arguments.push_back("-run");
      rest.remove_prefix(std::string_view("-run ").size());
    }
    // The ROM path is one argument whatever it holds; the switches follow it, then the extra
    // command line (Genecyst's went into gen.ini).
    arguments.push_back(input.romPath);
    rest.remove_prefix(input.romPath.size());
    if (tab != EmulatorTab::Genecyst) rest.remove_suffix(input.extra.size());
    for (auto& word : SplitAtBlanks(rest))
      arguments.push_back(std::move(word));
    if (tab != EmulatorTab::Genecyst) {
      for (auto& word : ExtraWords(input.extra))
        arguments.push_back(std::move(word));
    }
  }

  command.process.workingDirectory = Utf8ToPath(input.emulatorPath).parent_path();
  if (input.runner.empty()) {
    command.process.program = input.emulatorPath;
  } else {
    command.process.program = input.runner.front();
    command.process.arguments.assign(input.runner.begin() + 1, input.runner.end());
    command.process.arguments.push_back(input.emulatorPath);
  }
  command.process.arguments.insert(command.process.arguments.end(), arguments.begin(),
                                   arguments.end());
  return command;
}

}  // namespace romsteward
