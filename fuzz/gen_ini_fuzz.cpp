// The gen.ini rewrite: the Genecyst option block from fuzzed options, over a fuzzed old file.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "core/launch/command_line.h"
#include "core/settings/emulator_options.h"
#include "fuzz_support.h"

using namespace romsteward;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 2) return 0;
  // Two bytes choose the check boxes and the sound rate; the rest is the old file.
  EmulatorOptions options;
  const unsigned bits = data[0] | (data[1] << 8);
  options.cystFpuCopies = bits & 1;
  options.cystRdtscProfiling = bits & 2;
  options.cystDisableZ80 = bits & 4;
  options.cystFakedZ80 = bits & 8;
  options.cystForceFm = bits & 16;
  options.cystNoFm = bits & 32;
  options.cystNoDac = bits & 64;
  options.cystExclusive = bits & 128;
  options.cystCpuSkipper = bits & 256;
  options.cystWaitVsync = bits & 512;
  options.cystSoundRate = static_cast<int>((bits >> 10) % 3);
  static constexpr const char* kCountries[] = {"USA", "Europe", "Japan", "NOT FOUND", "Brazil"};
  const std::string_view country = kCountries[(bits >> 12) % 5];

  const std::string text = GenecystOptionText(options, country);
  const auto lineEnd = text.find("\r\n");
  if (lineEnd == std::string::npos) std::abort();
  const std::string block = text.substr(lineEnd + 2) + " ";
  const std::string_view old = fuzz::AsText(data + 2, size - 2);
  const std::string rewritten = RewriteGenIni(block, old);

  // The banner and the new block come first, whole; what follows is only kept old lines.
  const std::string head =
      std::string(kGenIniBanner1) + "\r\n" + std::string(kGenIniBanner2) + "\r\n" + block;
  if (rewritten.compare(0, head.size(), head) != 0) std::abort();
  // Lines may end in CR, LF or both: counting every CR and LF bounds the number of lines.
  std::size_t lines = 1;
  for (char c : old)
    lines += c == '\n' || c == '\r' ? 1 : 0;
  if (rewritten.size() > head.size() + old.size() + 2 * lines) std::abort();
  return 0;
}
