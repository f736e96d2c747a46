// Layout detection, header decoding and the checksum sum from arbitrary file contents.
#include <cstdint>

#include "core/cart/checksum.h"
#include "core/cart/detect.h"
#include "core/cart/header.h"
#include "core/cart/logical_io.h"
#include "fuzz_support.h"

using namespace romsteward;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static fuzz::MemoryFile image;
  const std::string_view bytes = fuzz::AsText(data, size);
  // The decoders see the raw header too, whatever its length.
  (void)DecodeHeader(RawHeader(std::string(bytes.substr(0, kHeaderLength))));

  image.Fill(bytes);
  auto file = BinaryFile::Open(image.Path());
  if (!file) return 0;
  const Layout layout = DetectRomFormat(*file);
  (void)ReadCartridgeHeader(*file);
  (void)RomSizeMbit(*file, "fuzz.bin", layout);
  // A split set would be looked for next to the memory file: its first volume is summed
  // through the SMD path instead.
  (void)CalcChecksum(*file, layout == Layout::SplitFirst ? Layout::Smd : layout);
  (void)ReadLogicalImage(*file, layout);
  return 0;
}
