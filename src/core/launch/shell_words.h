#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/common/result.h"

namespace romsteward {

/// Splits a typed command line into words the way a shell user expects, without a shell:
/// blanks separate words; '...' keeps everything as it stands; "..." keeps everything but a
/// backslash before $ ` " \ or a line end; a backslash outside quotes keeps the next
/// character (a blank, a quote). Nothing is expanded: no variables, no patterns, no commands.
/// `-cfg "my file.cfg"` gives two words. A quote left open is an error.
Result<std::vector<std::string>> SplitShellWords(std::string_view text);

}  // namespace romsteward
