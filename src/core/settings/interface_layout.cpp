#include "core/settings/interface_layout.h"

#include <fmt/format.h>

#include <string>
#include <utility>
#include <vector>

#include "core/host/host.h"
#include "core/settings/stored_values.h"

namespace romsteward {

namespace {

constexpr int kHighestNumber = 27;
constexpr int kUnusedNumber = 4;

// Keys erased with the layout besides the numbered ones: the window's size, the main
// window's position and the preview window's position.
constexpr std::string_view kOtherErasedKeys[] = {"WF",      "HF",    "LaunchX",
                                                 "LaunchY", "prevX", "prevY"};

std::string Key(char letter, int number) {
  return fmt::format("{}{}", letter, number);
}

void AddRect(std::vector<std::pair<std::string, std::string>>& values, int number,
             const ControlRect& rect) {
  values.emplace_back(Key('X', number), std::to_string(rect.x));
  values.emplace_back(Key('Y', number), std::to_string(rect.y));
  values.emplace_back(Key('W', number), std::to_string(rect.width));
  values.emplace_back(Key('H', number), std::to_string(rect.height));
}

std::optional<int> ReadNumber(const AppSettings& settings, const std::string& key) {
  return StoredNumber(settings.GetSetting(kSectionSettings, key, "-"));
}

// A width or height below one pixel would make the control vanish: no size then.
std::optional<int> ReadSize(const AppSettings& settings, const std::string& key) {
  const std::optional<int> size = ReadNumber(settings, key);
  return size && *size > 0 ? size : std::nullopt;
}

}  // namespace

Status WriteInterfaceLayout(AppSettings& settings, const LayoutSnapshot& snapshot) {
  std::vector<std::pair<std::string, std::string>> values;
  for (std::size_t i = 0; i < kLayoutControls.size(); ++i) {
    if (i == kWindowSizeWrittenAfter) {
      values.emplace_back("WF", std::to_string(snapshot.windowWidth));
      values.emplace_back("HF", std::to_string(snapshot.windowHeight));
    }
    const LayoutControl& control = kLayoutControls[i];
    // 23 is written twice on purpose: the second write (cystfm) is the one that stays.
    if (const auto found = snapshot.controls.find(control.name); found != snapshot.controls.end())
      AddRect(values, control.number, found->second);
  }
  return settings.SaveSettings(kSectionSettings, values);
}

void SaveInterfaceLayout(Host& host, AppSettings& settings, const LayoutSnapshot& snapshot) {
  if (Status saved = WriteInterfaceLayout(settings, snapshot); !saved) {
    host.ShowMessage("The interface settings were not saved. " + saved.error().message,
                     MessageIcon::Critical, {});
  }
}

void EraseInterfaceLayout(Host& host, AppSettings& settings) {
  std::vector<std::string> keys;
  for (const char* pair : {"XY", "WH"}) {
    for (int number = 1; number <= kHighestNumber; ++number) {
      if (number == kUnusedNumber) continue;
      keys.push_back(Key(pair[0], number));
      keys.push_back(Key(pair[1], number));
    }
  }
  for (std::string_view key : kOtherErasedKeys)
    keys.emplace_back(key);

  std::string failure;
  const std::string section = SectionKeyPath(kSectionSettings);
  for (const std::string& key : keys) {
    if (!settings.Store().HasValue(section, key)) continue;
    Status erased = settings.DeleteSetting(kSectionSettings, key);
    if (!erased && failure.empty()) failure = erased.error().message;
  }
  if (!failure.empty()) {
    host.ShowMessage("Some interface settings could not be erased. " + failure,
                     MessageIcon::Critical, {});
  }
  host.ShowMessage("Please, restart Genesis Romsteward!", MessageIcon::None, {});
}

StoredLayout ReadInterfaceLayout(const AppSettings& settings) {
  StoredLayout layout;
  for (const LayoutControl& control : kLayoutControls) {
    if (control.name == "cystexclusive") continue;  // its number holds cystfm's rectangle
    StoredRect rect{ReadNumber(settings, Key('X', control.number)),
                    ReadNumber(settings, Key('Y', control.number)),
                    ReadSize(settings, Key('W', control.number)),
                    ReadSize(settings, Key('H', control.number))};
    if (rect != StoredRect{}) layout.controls.emplace(control.name, rect);
  }
  layout.windowWidth = ReadSize(settings, "WF");
  layout.windowHeight = ReadSize(settings, "HF");
  return layout;
}

}  // namespace romsteward
