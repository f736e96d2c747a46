#include "core/patch/patch_dialog_model.h"

#include <fmt/format.h>

#include "core/common/binary_file.h"
#include "core/common/strings.h"
#include "core/patch/dynamic_patches.h"
#include "core/patch/patch_file_dialogs.h"

namespace romsteward {

namespace {

constexpr char kBackspace = '\b';

int HexDigitValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  return ToUpperAscii(c) - 'A' + 10;
}

// A pair of typed characters as one byte: the hexadecimal digits from its start, stopping at
// anything else (a backspace code passes the check but adds no digit).
char PairToByte(std::string_view pair) {
  int value = 0;
  for (char c : pair) {
    if (!IsHexDigit(c)) break;
    value = value * 16 + HexDigitValue(c);
  }
  return static_cast<char>(value);
}

}  // namespace

bool IsHexText(std::string_view text) {
  for (char c : text) {
    if (!IsHexDigit(c) && c != kBackspace) return false;
  }
  return true;
}

std::string TextToHex(std::string_view text) {
  std::string hex;
  hex.reserve(text.size() * 2);
  for (char c : text)
    hex += fmt::format("{:02X}", static_cast<unsigned char>(c));
  return hex;
}

Result<PatchDialogModel> PatchDialogModel::Load(Host& host, RegistryStore& store,
                                                std::filesystem::path image, std::string listText) {
  auto file = BinaryFile::Open(image);
  if (!file) return file.error();
  const std::uint64_t length = file->Size();
  return PatchDialogModel(host, store, std::move(image), std::move(listText), length);
}

PatchDialogModel::PatchDialogModel(Host& host, RegistryStore& store, std::filesystem::path image,
                                   std::string listText, std::uint64_t length)
    : m_host(&host),
      m_store(&store),
      m_image(std::move(image)),
      m_listText(std::move(listText)),
      m_length(length) {}

std::string PatchDialogModel::SizeText() const {
  return FormatThousands(m_length) + " bytes (" + FormatThousands(m_length * 8 / 1048576) +
         " Megabits)";
}

std::optional<std::uint64_t> PatchDialogModel::CheckedPosition() const {
  const std::string_view text = TrimBlanks(m_position);
  if (text.empty() || text.size() > 15) return std::nullopt;
  std::uint64_t position = 0;
  for (char c : text) {
    if (!IsHexDigit(c)) return std::nullopt;
    position = position * 16 + static_cast<std::uint64_t>(HexDigitValue(c));
  }
  if (position >= m_length) return std::nullopt;
  return position;
}

bool PatchDialogModel::Save() {
  const auto position = CheckedPosition();
  if (!position) {
    // An empty file has no valid position to name.
    const std::string text =
        m_length == 0 ? "The specified file position is invalid! The file is empty."
                      : fmt::format(
                            "The specified file position is invalid! This value must be between "
                            "0 and {:X}.",
                            m_length - 1);
    m_host->ShowMessage(text, MessageIcon::None, kDefaultTitle);
    return false;
  }
  if (!IsHexText(m_value)) {
    m_host->ShowMessage(
        "The value you typed isn't in HEX format. Convert it pressing 'Convert value to hex' "
        "in edit menu",
        MessageIcon::None, kDefaultTitle);
    return false;
  }
  auto image = BinaryFile::Open(m_image);
  if (!image) {
    m_host->ShowMessage(image.error().message, MessageIcon::Critical, kDefaultTitle);
    return false;
  }
  if (m_value.size() % 2 != 0) m_value.insert(m_value.begin(), '0');

  PatchValue patch;
  patch.position = *position + 1;
  for (std::size_t i = 0; i < m_value.size(); i += 2) {
    patch.newBytes += PairToByte(std::string_view(m_value).substr(i, 2));
  }
  patch.oldBytes = image->ReadAt(*position, patch.newBytes.size());
  if (!StorePatch(*m_store, m_listText, m_name, patch, m_image)) {
    m_host->ShowMessage(kRegistryError, MessageIcon::Critical, kDefaultTitle);
    return false;
  }
  return true;
}

void PatchDialogModel::ConvertValueToHex() {
  m_value = TextToHex(m_value);
}

void PatchDialogModel::GetValue() {
  const auto position = CheckedPosition();
  if (!position) {
    m_host->ShowMessage("Invalid file position!", MessageIcon::None, kDefaultTitle);
    return;
  }
  const auto answer = m_host->AskText("What's the size of the text you want to read from the rom?",
                                      "Get text from ROM", {}, false);
  // Only a plain count is taken: no blanks, signs, leading zeros or fractions.
  if (!answer || answer->empty() || answer->size() > 15 ||
      answer->find_first_not_of("0123456789") != std::string::npos ||
      (answer->size() > 1 && answer->front() == '0')) {
    return;
  }
  const std::uint64_t wanted = std::stoull(*answer);
  auto image = BinaryFile::Open(m_image);
  if (!image) {
    m_host->ShowMessage(image.error().message, MessageIcon::Critical, kDefaultTitle);
    return;
  }
  const std::uint64_t count = std::min(wanted, m_length - *position);
  const std::string bytes = image->ReadAt(*position, static_cast<std::size_t>(count));
  const Answer ascii =
      m_host->AskYesNo("Show values in ASCII? (no for hexa)", MessageIcon::None, kDefaultTitle);
  m_value = ascii == Answer::Yes ? bytes : TextToHex(bytes);
}

}  // namespace romsteward
