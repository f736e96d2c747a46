#include "core/library/dir_history.h"

#include <utility>

namespace romsteward {

std::size_t PushDirHistory(DirHistory& history, std::string_view path) {
  std::string carry(path);
  std::size_t i = 0;
  while (true) {
    std::string old = std::exchange(history[i], std::move(carry));
    ++i;
    if (old == path) break;
    carry = std::move(old);
    if (i >= history.size() || carry.empty()) break;
  }
  return i;
}

}  // namespace romsteward
