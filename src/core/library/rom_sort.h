#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace romsteward {

/// The two orders of the ROM list, numbered as the "Sort ROMs by" menu and `ordem`.
enum class SortOrder { Name = 0, Type = 1 };

/// `text` without `c`, removed the old way: after each removal the search resumes one place
/// too far, so of two adjacent `c` only the first goes ("a  b" keeps one blank).
std::string RemoveChar(std::string_view text, char c);

/// The name-order key: the name with its blanks removed by RemoveChar.
std::string NameSortKey(std::string_view name);
/// The type-order key: the name from its last "." on, the point included; a name without a
/// point has the empty key, so such names come first.
std::string TypeSortKey(std::string_view name);

/// n / 2 rounded to the nearest whole number, an exact half going to the even neighbour:
/// the gap sequence of the sort (7 gives 4, 5 gives 2, 3 gives 2, 1 gives 0).
std::size_t HalveToEven(std::size_t n);

/// Sorts the names in place with the diminishing-gap exchange sort of the ROM list, keys
/// compared without regard to case. Not stable: equal keys end where the exchanges leave
/// them, which is part of what the list shows.
void SortRomNames(std::vector<std::string>& names, SortOrder order);

/// The entry whose name key equals that of `name` (case ignored), found by halving the
/// index range as if the entries were in name order; nullopt when the search misses. When it
/// hits, an entry spelled exactly as `name` is preferred to one differing in case or blanks.
std::optional<std::size_t> ReselectByName(const std::vector<std::string>& entries,
                                          std::string_view name);

}  // namespace romsteward
