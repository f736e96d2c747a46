#pragma once

#include <functional>
#include <initializer_list>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace romsteward {

/// What the window shows of one menu item, button or check box.
struct ControlState {
  std::string caption;
  bool enabled = true;
  bool checked = false;
  bool visible = true;
};

/// Every menu item and button of the main window whose state the commands change, by its
/// control name ("mnu_file", "btncrc", and "mnu_dirs(2)" for an element of a control array).
/// Asking for a name that is not here is a programming error and throws.
class WindowControls {
public:
  WindowControls();

  ControlState& operator[](std::string_view name);
  const ControlState& operator[](std::string_view name) const;
  bool Has(std::string_view name) const;

  void SetEnabled(std::initializer_list<std::string_view> names, bool enabled);
  /// Radio behaviour of a control array: checks `name(index)`, unchecks its `count` siblings.
  void CheckOnly(std::string_view arrayName, int index, int count);
  /// The index of the checked element of a control array, or -1.
  int CheckedIndex(std::string_view arrayName, int count) const;

  std::vector<std::string> Names() const;

private:
  std::map<std::string, ControlState, std::less<>> m_states;
};

/// "name(index)", the name of a control array's element.
std::string ElementName(std::string_view arrayName, int index);

}  // namespace romsteward
