#pragma once

#include <optional>
#include <string_view>

namespace romsteward {

/// A stored text as a whole number the way a control takes it: a plain decimal number,
/// blanks around it allowed, a fraction rounded half to even; nullopt when the text is no
/// number or does not fit.
std::optional<int> StoredNumber(std::string_view text);

/// A stored Boolean menu state: "True"/"False" in any case, or a number (non-zero true);
/// nullopt for anything else.
std::optional<bool> StoredBoolean(std::string_view text);

}  // namespace romsteward
