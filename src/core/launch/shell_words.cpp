#include "core/launch/shell_words.h"

#include <optional>

namespace romsteward {

namespace {

bool IsBlank(char c) {
  return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

// Inside double quotes a backslash escapes only these; before anything else it stays.
bool EscapableInDoubleQuotes(char c) {
  return c == '$' || c == '`' || c == '"' || c == '\\' || c == '\n';
}

}  // namespace

Result<std::vector<std::string>> SplitShellWords(std::string_view text) {
  std::vector<std::string> words;
  // Engaged once a word has begun: "" alone is an empty word, a run of blanks is none.
  std::optional<std::string> word;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (IsBlank(c)) {
      if (word) words.push_back(std::move(*word));
      word.reset();
      continue;
    }
    if (!word) word.emplace();
    if (c == '\\') {
      // A backslash at the very end has nothing to keep: it stands for itself.
      if (i + 1 == text.size()) {
        *word += c;
      } else if (text[++i] != '\n') {
        *word += text[i];
      }
    } else if (c == '\'') {
      const std::size_t close = text.find('\'', i + 1);
      if (close == std::string_view::npos)
        return Error{"The extra command line has a ' that is not closed: " + std::string(text)};
      *word += text.substr(i + 1, close - i - 1);
      i = close;
    } else if (c == '"') {
      std::size_t j = i + 1;
      for (; j < text.size() && text[j] != '"'; ++j) {
        if (text[j] == '\\' && j + 1 < text.size() && EscapableInDoubleQuotes(text[j + 1])) {
          if (text[++j] != '\n') *word += text[j];
        } else {
          *word += text[j];
        }
      }
      if (j == text.size())
        return Error{"The extra command line has a \" that is not closed: " + std::string(text)};
      i = j;
    } else {
      *word += c;
    }
  }
  if (word) words.push_back(std::move(*word));
  return words;
}

}  // namespace romsteward
