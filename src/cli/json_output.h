#pragma once

// The one way every command prints --json (docs/json.md): one document on standard output,
// indented by two, then a new line; texts from files and headers as valid UTF-8.
#include <nlohmann/json.hpp>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>

#include "core/common/strings.h"

namespace romsteward::cli {

/// Keys keep the order they were added in, so the output reads like the text form.
using Json = nlohmann::ordered_json;

/// Bytes as a JSON string: well-formed UTF-8 kept, any other byte read as Latin-1, so odd
/// names and header texts never make the output invalid.
inline Json JsonText(std::string_view bytes) {
  return Latin1FallbackToUtf8(bytes);
}

/// A text that may be missing: null when it is.
inline Json JsonTextOrNull(const std::optional<std::string>& text) {
  return text ? JsonText(*text) : Json(nullptr);
}

inline void PrintJson(std::ostream& out, const Json& document) {
  out << document.dump(2) << '\n';
}

}  // namespace romsteward::cli
