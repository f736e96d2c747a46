#include "core/launch/process_runner.h"

namespace romsteward {

std::string LastLines(std::string_view text, std::size_t lines) {
  if (text.ends_with('\n')) text.remove_suffix(1);
  std::size_t start = text.size();
  for (std::size_t found = 0; found < lines; ++found) {
    const std::size_t end = text.rfind('\n', start == 0 ? 0 : start - 1);
    if (end == std::string_view::npos || start == 0) return std::string(text);
    start = end;
  }
  return std::string(text.substr(start + 1));
}

}  // namespace romsteward
