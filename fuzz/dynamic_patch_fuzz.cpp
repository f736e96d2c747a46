// Dynamic patch values as read back from the settings store: decoding never fails loudly,
// and what decodes encodes back to a text that decodes the same.
#include <cstdint>
#include <cstdlib>

#include "core/patch/dynamic_patches.h"
#include "fuzz_support.h"

using namespace romsteward;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto value = DecodePatchValue(fuzz::AsText(data, size));
  if (!value) return 0;
  if (value->position == 0) std::abort();
  const auto again = DecodePatchValue(EncodePatchValue(*value));
  // Equally long fields read back as written; a shorter old field is only ever stored for a
  // patch that runs past the end of its image, and reads back as a whole.
  if (!again || again->position != value->position) std::abort();
  if (value->oldBytes.size() == value->newBytes.size() &&
      (again->newBytes != value->newBytes || again->oldBytes != value->oldBytes))
    std::abort();
  return 0;
}
