#include "core/settings/stored_values.h"

#include <charconv>
#include <cmath>
#include <limits>
#include <string>

#include "core/common/strings.h"

namespace romsteward {

std::optional<int> StoredNumber(std::string_view text) {
  if (!IsNumeric(text)) return std::nullopt;
  std::string_view number = TrimBlanks(text);
  if (number.front() == '+') number.remove_prefix(1);
  // from_chars ignores the locale: a decimal point is a point whatever the desktop's language.
  double parsed = 0;
  const auto [end, error] = std::from_chars(number.data(), number.data() + number.size(), parsed);
  if (error != std::errc{} || end != number.data() + number.size()) return std::nullopt;
  // The default rounding mode rounds half to even, as the old integer conversion did.
  const double value = std::nearbyint(parsed);
  if (value < std::numeric_limits<int>::min() || value > std::numeric_limits<int>::max()) {
    return std::nullopt;
  }
  return static_cast<int>(value);
}

std::optional<bool> StoredBoolean(std::string_view text) {
  const std::string_view trimmed = TrimBlanks(text);
  if (EqualsIgnoreCase(trimmed, "True")) return true;
  if (EqualsIgnoreCase(trimmed, "False")) return false;
  if (const std::optional<int> number = StoredNumber(trimmed)) return *number != 0;
  return std::nullopt;
}

}  // namespace romsteward
