#include "core/settings/emulator_options.h"

#include <array>
#include <limits>
#include <variant>

#include "core/common/strings.h"
#include "core/settings/stored_values.h"

namespace romsteward {

namespace {

enum class Control { Check, FrameSkip, SoundRate, Tab };

// What reading a cartridge's set does when the value is missing.
enum class WhenMissing {
  Fails,         // the fallback text is no number ("a", "c", "" or "x")
  KeepsCurrent,  // `frm`: the value shown stays
  Becomes,       // `kfrm`, `cystskip`, `cystsync`: a fixed number
};

using Member = std::variant<bool EmulatorOptions::*, int EmulatorOptions::*>;

struct Field {
  std::string_view key;
  Control control;
  Member member;
  WhenMissing missing = WhenMissing::Fails;
  int missingValue = 0;
};

// The option set in saving order.
constexpr std::array<Field, 27> kFields = {{
    {"Joy", Control::Check, &EmulatorOptions::disableJoypad},
    {"snd", Control::Check, &EmulatorOptions::disableSound},
    {"z80", Control::Check, &EmulatorOptions::enableZ80},
    {"fz80", Control::Check, &EmulatorOptions::fakeZ80},
    {"modex", Control::Check, &EmulatorOptions::modeX},
    {"frm", Control::FrameSkip, &EmulatorOptions::genFrameSkip, WhenMissing::KeepsCurrent},
    {"gnew", Control::Check, &EmulatorOptions::useGenNew},
    {"ksnd", Control::Check, &EmulatorOptions::kgenDisableSound},
    {"kfrm", Control::FrameSkip, &EmulatorOptions::kgenFrameSkip, WhenMissing::Becomes, 1},
    {"cystFPU", Control::Check, &EmulatorOptions::cystFpuCopies},
    {"cystTSC", Control::Check, &EmulatorOptions::cystRdtscProfiling},
    {"cystz80", Control::Check, &EmulatorOptions::cystDisableZ80},
    {"cystfakez80", Control::Check, &EmulatorOptions::cystFakedZ80},
    {"cystforcefm", Control::Check, &EmulatorOptions::cystForceFm},
    {"cystfm", Control::Check, &EmulatorOptions::cystNoFm},
    {"cystdac", Control::Check, &EmulatorOptions::cystNoDac},
    {"cystexc", Control::Check, &EmulatorOptions::cystExclusive},
    {"cystsnd", Control::SoundRate, &EmulatorOptions::cystSoundRate},
    {"cystskip", Control::Check, &EmulatorOptions::cystCpuSkipper, WhenMissing::Becomes, 0},
    {"cystsync", Control::Check, &EmulatorOptions::cystWaitVsync, WhenMissing::Becomes, 0},
    {"prefemu", Control::Tab, &EmulatorOptions::preferredEmulator},
    {"ativapatch", Control::Check, &EmulatorOptions::activateDynamicPatch},
    {"bemfull", Control::Check, &EmulatorOptions::blastFullscreen, WhenMissing::Becomes, 0},
    {"bemsnd", Control::Check, &EmulatorOptions::blastNoSound, WhenMissing::Becomes, 0},
    {"mdnfull", Control::Check, &EmulatorOptions::mednafenFullscreen, WhenMissing::Becomes, 0},
    {"mdnsnd", Control::Check, &EmulatorOptions::mednafenNoSound, WhenMissing::Becomes, 0},
    {"mdnskip", Control::Check, &EmulatorOptions::mednafenFrameSkip, WhenMissing::Becomes, 0},
}};

constexpr std::string_view kPatchKey = "ativapatch";
constexpr std::string_view kTabKey = "prefemu";

int Get(const EmulatorOptions& options, const Field& field) {
  return std::visit([&options](auto member) { return static_cast<int>(options.*member); },
                    field.member);
}

// Whether the control can show `value`; as a control refuses a value out of its range.
bool Accepts(const Field& field, int value) {
  switch (field.control) {
    case Control::Check:
      return value == 0 || value == 1;
    case Control::FrameSkip:
      return value >= kFrameSkipMin && value <= kFrameSkipMax;
    case Control::SoundRate:
      return value >= 0 && value < static_cast<int>(std::size(kCystSoundRates));
    case Control::Tab:
      return value >= 0 && value < kEmulatorTabCount;
  }
  return false;
}

// Puts `value` into the control; false (nothing changed) when it cannot take it.
bool Set(EmulatorOptions& options, const Field& field, int value) {
  if (!Accepts(field, value)) return false;
  std::visit(
      [&options, value](auto member) {
        using Type = std::remove_reference_t<decltype(options.*member)>;
        options.*member = static_cast<Type>(value);
      },
      field.member);
  return true;
}

const Field* FindField(std::string_view key) {
  for (const Field& field : kFields) {
    if (EqualsIgnoreCase(field.key, key)) return &field;
  }
  return nullptr;
}

// The number the text starts with, none giving 0: the tab index is read this way.
std::optional<int> LenientNumber(std::string_view text) {
  const std::int64_t number = LeadingNumber(text);
  if (number > std::numeric_limits<int>::max()) return std::nullopt;
  return static_cast<int>(number);
}

std::string Prefixed(std::string_view entryText, std::string_view key) {
  std::string name(entryText);
  name += '.';
  name += key;
  return name;
}

}  // namespace

const std::vector<std::string_view>& OptionKeys() {
  static const std::vector<std::string_view> keys = [] {
    std::vector<std::string_view> all;
    for (const Field& field : kFields)
      all.push_back(field.key);
    return all;
  }();
  return keys;
}

std::optional<std::string> OptionText(const EmulatorOptions& options, std::string_view key) {
  const Field* field = FindField(key);
  if (!field) return std::nullopt;
  return std::to_string(Get(options, *field));
}

bool SetOptionFromText(EmulatorOptions& options, std::string_view key, std::string_view text) {
  const Field* field = FindField(key);
  const std::optional<int> value = StoredNumber(text);
  return field && value && Set(options, *field, *value);
}

Status SaveOptions(AppSettings& settings, OptionSection section, const EmulatorOptions& options,
                   const GeneralSettings& general, std::string_view entryText) {
  std::vector<std::pair<std::string, std::string>> values;
  const bool cartridge = section == OptionSection::Cartridge;
  if (!cartridge) {
    values = {{"cart", std::string(BooleanText(general.saveAllCartridges))},
              {"tray", std::string(BooleanText(general.minimizeInTray))},
              {"ordem", std::to_string(general.sortBy)},
              {"show", std::to_string(general.show)},
              {"title", std::to_string(general.windowTitle)}};
  }
  for (const Field& field : kFields) {
    std::string name = cartridge ? Prefixed(entryText, field.key) : std::string(field.key);
    values.emplace_back(std::move(name), std::to_string(Get(options, field)));
  }
  return settings.SaveSettings(cartridge ? kSectionCartridge : kSectionSettings, values);
}

bool LoadCartridgeOptions(const AppSettings& settings, std::string_view entryText,
                          bool patchEnabled, EmulatorOptions& controls) {
  const RegistryStore& store = settings.Store();
  const std::string keyPath = SectionKeyPath(kSectionCartridge);
  bool allRead = true;
  for (const Field& field : kFields) {
    if (field.key == kPatchKey && !patchEnabled) continue;
    auto stored = store.GetValue(keyPath, Prefixed(entryText, field.key));
    if (!stored) {
      if (field.missing == WhenMissing::Fails) allRead = false;
      if (field.missing == WhenMissing::Becomes) Set(controls, field, field.missingValue);
      continue;
    }
    const std::optional<int> value = StoredNumber(*stored);
    if (!value || !Set(controls, field, *value)) allRead = false;
  }
  return allRead;
}

void LoadDefaultOptions(const AppSettings& settings, bool patchEnabled, EmulatorOptions& controls) {
  const RegistryStore& store = settings.Store();
  const std::string keyPath = SectionKeyPath(kSectionSettings);
  const EmulatorOptions defaults;
  for (const Field& field : kFields) {
    if (field.key == kPatchKey && !patchEnabled) continue;
    std::optional<int> value;
    if (auto stored = store.GetValue(keyPath, field.key)) {
      value = field.key == kTabKey ? LenientNumber(*stored) : StoredNumber(*stored);
    }
    if (!value || !Set(controls, field, *value)) Set(controls, field, Get(defaults, field));
  }
}

void LoadOptionsForSelection(const AppSettings& settings, std::string_view entryText,
                             bool patchEnabled, EmulatorOptions& controls) {
  if (!LoadCartridgeOptions(settings, entryText, patchEnabled, controls)) {
    LoadDefaultOptions(settings, patchEnabled, controls);
  }
}

}  // namespace romsteward
