// The settings store's escaped values and the stored numbers and states read back from it.
#include <cstdint>
#include <cstdlib>

#include "core/common/strings.h"
#include "core/settings/stored_values.h"
#include "fuzz_support.h"

using namespace romsteward;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes = fuzz::AsText(data, size);
  // Whatever is stored shows as one escaped line and reads back as the same bytes.
  const std::string shown = EscapeExactly(bytes);
  if (shown.find('\n') != std::string::npos) std::abort();
  const auto back = DecodeHexEscapes(shown);
  if (!back || *back != bytes) std::abort();
  if (EscapeForDisplay(bytes).find('\n') != std::string::npos) std::abort();
  // A text typed by the user may hold any escape, good or bad.
  (void)DecodeHexEscapes(bytes);
  (void)StoredNumber(bytes);
  (void)StoredBoolean(bytes);
  return 0;
}
