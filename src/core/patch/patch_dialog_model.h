#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

#include "core/common/result.h"
#include "core/host/host.h"
#include "core/settings/registry_store.h"

namespace romsteward {

/// Texts of the "Dynamic patching" window, for the front end to show.
struct PatchDialogTexts {
  static constexpr std::string_view kTitle = "Dynamic patching";
  static constexpr std::string_view kInitialName = "-Name-";
  static constexpr std::string_view kNameTip = "Name of this patch";
  static constexpr std::string_view kSaveTip = "Saves current dynamic patch";
  static constexpr std::string_view kValueTip = "Patch value, in hexadecimal";
  static constexpr std::string_view kPositionTip =
      "Byte position to path. The first value is zero.";
  static constexpr std::string_view kNameLabel = "Name:";
  static constexpr std::string_view kValueLabel = "Value (hexa):";
  static constexpr std::string_view kPositionLabel = "Position (hexa):";
  static constexpr std::string_view kSizeLabel = "File size:";
  static constexpr std::string_view kEditMenu = "Edit";
  static constexpr std::string_view kConvertToHexItem = "Convert value to &hexa";
};

/// Whether `text` may be stored as a value: hexadecimal digits and the backspace code only.
bool IsHexText(std::string_view text);
/// Each byte of `text` as two upper-case hexadecimal digits.
std::string TextToHex(std::string_view text);

/// The "Dynamic patching" window (`frmpatch`) without its widgets: the fields the user types
/// into, the size line and the commands, for one image listed as `listText`. Every message
/// and question goes through the Host; patches go to the store.
class PatchDialogModel {
public:
  /// Reads the image's length; fails with a message naming the file when it cannot.
  static Result<PatchDialogModel> Load(Host& host, RegistryStore& store,
                                       std::filesystem::path image, std::string listText);

  const std::string& Name() const { return m_name; }
  const std::string& Value() const { return m_value; }
  const std::string& Position() const { return m_position; }
  void SetName(std::string_view name) { m_name = name; }
  void SetValue(std::string_view value) { m_value = value; }
  void SetPosition(std::string_view position) { m_position = position; }

  std::uint64_t ImageLength() const { return m_length; }
  /// `lbltam`: "1,048,576 bytes (8 Megabits)".
  std::string SizeText() const;

  /// Save (`Command3`): checks the position and the value, reads the old bytes and stores the
  /// patch under the name (replacing one of the same name). True when stored.
  bool Save();
  /// "Convert value to &hexa": the value's text becomes its hexadecimal form.
  void ConvertValueToHex();
  /// The get-value command: asks how many bytes to read at the position and whether to show
  /// them as text or hexadecimal, and puts them into the value.
  void GetValue();

private:
  PatchDialogModel(Host& host, RegistryStore& store, std::filesystem::path image,
                   std::string listText, std::uint64_t length);
  /// The position typed, when it names a byte of the image.
  std::optional<std::uint64_t> CheckedPosition() const;

  Host* m_host;
  RegistryStore* m_store;
  std::filesystem::path m_image;
  std::string m_listText;
  std::uint64_t m_length = 0;
  std::string m_name{PatchDialogTexts::kInitialName};
  std::string m_value;
  std::string m_position;
};

}  // namespace romsteward
