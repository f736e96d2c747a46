#include "core/library/rom_sort.h"

#include <utility>

#include "core/common/strings.h"

namespace romsteward {

std::string RemoveChar(std::string_view text, char c) {
  std::string out(text);
  std::size_t p = out.find(c);
  while (p != std::string::npos) {
    out.erase(p, 1);
    p = p + 1 < out.size() ? out.find(c, p + 1) : std::string::npos;
  }
  return out;
}

std::string NameSortKey(std::string_view name) {
  return RemoveChar(name, ' ');
}

std::string TypeSortKey(std::string_view name) {
  const auto dot = name.rfind('.');
  return dot == std::string_view::npos ? std::string() : std::string(name.substr(dot));
}

std::size_t HalveToEven(std::size_t n) {
  const std::size_t half = n / 2;
  if (n % 2 == 0) return half;
  return half % 2 == 0 ? half : half + 1;
}

namespace {

// Folding to lower case puts "_" and the other signs between the two alphabets before the
// letters, closer to the old text comparison than folding to upper case would.
std::string FoldedKey(std::string_view name, SortOrder order) {
  return ToLowerAscii(order == SortOrder::Name ? NameSortKey(name) : TypeSortKey(name));
}

}  // namespace

void SortRomNames(std::vector<std::string>& names, SortOrder order) {
  const std::size_t n = names.size();
  // Each name is keyed once; the exchanges move names and keys together.
  std::vector<std::string> keys;
  keys.reserve(n);
  for (const std::string& name : names)
    keys.push_back(FoldedKey(name, order));

  for (std::size_t gap = HalveToEven(n); gap >= 1; gap = HalveToEven(gap)) {
    bool exchanged = true;
    while (exchanged) {
      exchanged = false;
      for (std::size_t i = 0; i + gap < n; ++i) {
        if (keys[i + gap] < keys[i]) {
          std::swap(keys[i + gap], keys[i]);
          std::swap(names[i + gap], names[i]);
          exchanged = true;
        }
      }
    }
  }
}

std::optional<std::size_t> ReselectByName(const std::vector<std::string>& entries,
                                          std::string_view name) {
  if (entries.empty()) return std::nullopt;
  const std::string wanted = FoldedKey(name, SortOrder::Name);
  // Inclusive bounds and a truncated middle, so the entries probed (and so what an unsorted
  // list yields) are those of the classic halving search.
  std::ptrdiff_t low = 0;
  std::ptrdiff_t high = static_cast<std::ptrdiff_t>(entries.size()) - 1;
  while (low <= high) {
    const std::ptrdiff_t middle = (low + high) / 2;
    const std::string key = FoldedKey(entries[static_cast<std::size_t>(middle)], SortOrder::Name);
    if (key == wanted) {
      // File names here tell case apart: "Sonic.bin" and "SONIC.bin" are two images, and
      // the one named exactly wins over the one the halving met first.
      for (std::size_t i = 0; i < entries.size(); ++i) {
        if (entries[i] == name) return i;
      }
      return static_cast<std::size_t>(middle);
    }
    if (key < wanted) {
      low = middle + 1;
    } else {
      high = middle - 1;
    }
  }
  return std::nullopt;
}

}  // namespace romsteward
