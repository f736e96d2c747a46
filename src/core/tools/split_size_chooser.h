#pragma once

#include <string>
#include <string_view>

#include "core/common/result.h"

namespace romsteward {

/// The split size chooser (`frmsplittam`): twelve fixed sizes and a custom field, as state and
/// rules that a dialog (or a terminal prompt) binds to. The dialog shows `Caption()`, one option
/// per `OptionCaption(i)`, the custom text with its two spin buttons, OK and Cancel; on OK it
/// calls `Accept()` and stays open while that refuses.
class SplitSizeChooser {
public:
  static constexpr int kPresetCount = 12;
  /// The index of the "Custom:" option, after the twelve fixed sizes 0..11.
  static constexpr int kCustomOption = kPresetCount;
  static constexpr int kOptionCount = kPresetCount + 1;
  static constexpr int kLargestCustomMbit = 32;

  /// `romSizeMbit` is the selected image's size, shown in the caption.
  explicit SplitSizeChooser(int romSizeMbit);

  /// " Select split size (rom size: N Mbit)".
  const std::string& Caption() const { return m_caption; }
  /// "1 MegaBit" .. "12 MegaBit" for 0..11, "Custom:" for kCustomOption.
  static std::string OptionCaption(int option);

  int SelectedOption() const { return m_selected; }
  /// Out-of-range indexes are ignored.
  void SelectOption(int option);

  const std::string& CustomText() const { return m_customText; }
  /// The custom field's whole text, as the field holds it after an edit; selects "Custom:".
  void SetCustomText(std::string_view text);
  /// The custom field's key filter: digits 0-9 and backspace pass, nothing else.
  static bool KeyPasses(char key);
  /// One key typed into the custom field: a digit is appended, backspace removes the last
  /// character, any other key is swallowed. Returns whether the key passed.
  bool TypeKey(char key);
  /// Add or subtract 1 to the number in the custom field, without bounds.
  void SpinUp();
  void SpinDown();
  /// The custom field read as a whole number (leading blanks and a sign allowed, anything
  /// after the digits ignored, empty text 0).
  int CustomNumber() const;

  /// OK: the chosen size in megabits, or the refusal to show (critical) while the chooser
  /// stays open. A custom size of zero or less is accepted here; the split then ends.
  Result<int> Accept() const;
  /// What Cancel returns.
  static constexpr int kCancelled = 0;

private:
  std::string m_caption;
  int m_selected = 0;
  std::string m_customText;
};

}  // namespace romsteward
