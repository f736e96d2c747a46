#include "core/tools/split_size_chooser.h"

#include <algorithm>
#include <limits>

#include "core/common/strings.h"

namespace romsteward {

namespace {

constexpr char kBackspace = '\b';

}  // namespace

SplitSizeChooser::SplitSizeChooser(int romSizeMbit)
    : m_caption(" Select split size (rom size: " + std::to_string(romSizeMbit) + " Mbit)") {}

std::string SplitSizeChooser::OptionCaption(int option) {
  if (option == kCustomOption) return "Custom:";
  return std::to_string(option + 1) + " MegaBit";
}

void SplitSizeChooser::SelectOption(int option) {
  if (option >= 0 && option < kOptionCount) m_selected = option;
}

// Touching the custom field means the user wants a custom size; without this an OK after
// typing a number would quietly split at whichever fixed size was still selected.
void SplitSizeChooser::SetCustomText(std::string_view text) {
  m_customText = text;
  m_selected = kCustomOption;
}

bool SplitSizeChooser::KeyPasses(char key) {
  return (key >= '0' && key <= '9') || key == kBackspace;
}

bool SplitSizeChooser::TypeKey(char key) {
  if (!KeyPasses(key)) return false;
  std::string text = m_customText;
  if (key == kBackspace) {
    if (!text.empty()) text.pop_back();
  } else {
    text += key;
  }
  SetCustomText(text);
  return true;
}

void SplitSizeChooser::SpinUp() {
  const int number = CustomNumber();
  SetCustomText(std::to_string(number == std::numeric_limits<int>::max() ? number : number + 1));
}

void SplitSizeChooser::SpinDown() {
  const int number = CustomNumber();
  SetCustomText(std::to_string(number == std::numeric_limits<int>::min() ? number : number - 1));
}

int SplitSizeChooser::CustomNumber() const {
  std::string_view text = m_customText;
  while (!text.empty() && text.front() == ' ')
    text.remove_prefix(1);
  bool negative = false;
  if (!text.empty() && (text.front() == '-' || text.front() == '+')) {
    negative = text.front() == '-';
    text.remove_prefix(1);
  }
  // LeadingNumber saturates, so a long run of digits stays far above the limit.
  const std::int64_t magnitude =
      std::min<std::int64_t>(LeadingNumber(text), std::numeric_limits<int>::max());
  return static_cast<int>(negative ? -magnitude : magnitude);
}

Result<int> SplitSizeChooser::Accept() const {
  if (m_selected != kCustomOption) return m_selected + 1;
  const int number = CustomNumber();
  if (number > kLargestCustomMbit)
    return Error{
        "As the maximum ROM size for Genesis was 32 Megabits, there is no reason for a split "
        "with that size"};
  return number;
}

}  // namespace romsteward
