#include "core/common/wildcard.h"

#include "core/common/strings.h"

namespace romsteward {

bool MatchesMask(std::string_view name, std::string_view pattern) {
  if (pattern == "*.*") return true;
  // Greedy matching with one backtrack point: linear in practice, no recursion, so a
  // hostile mask of many stars cannot blow the stack.
  std::size_t n = 0;
  std::size_t p = 0;
  std::size_t starP = std::string_view::npos;
  std::size_t starN = 0;
  while (n < name.size()) {
    if (p < pattern.size() && pattern[p] == '*') {
      starP = p++;
      starN = n;
    } else if (p < pattern.size() &&
               (pattern[p] == '?' || ToUpperAscii(pattern[p]) == ToUpperAscii(name[n]))) {
      ++p;
      ++n;
    } else if (starP != std::string_view::npos) {
      p = starP + 1;
      n = ++starN;
    } else {
      return false;
    }
  }
  while (p < pattern.size() && pattern[p] == '*')
    ++p;
  return p == pattern.size();
}

bool MatchesAnyMask(std::string_view name, std::string_view masks) {
  while (true) {
    const auto semicolon = masks.find(';');
    const std::string_view mask = TrimBlanks(masks.substr(0, semicolon));
    if (!mask.empty() && MatchesMask(name, mask)) return true;
    if (semicolon == std::string_view::npos) return false;
    masks.remove_prefix(semicolon + 1);
  }
}

}  // namespace romsteward
