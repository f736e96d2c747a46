#include "core/patch/patch_dialog_model.h"

#include <gtest/gtest.h>

#include "core/patch/patch_store_fixture.h"

namespace romsteward {
namespace {

using test::Bytes;
using test::PromptKind;

class PatchDialog : public test::PatchStoreTest {
protected:
  PatchDialogModel Open(std::string_view imageBytes) {
    Put("SONIC.BIN", imageBytes);
    auto model = PatchDialogModel::Load(m_host, *m_store, PathOf("SONIC.BIN"), "SONIC.BIN");
    EXPECT_TRUE(model.ok());
    return std::move(model).value();
  }
  std::string Image(std::size_t size) const {
    std::string bytes(size, '\0');
    for (std::size_t i = 0; i < size; ++i)
      bytes[i] = static_cast<char>(i);
    return bytes;
  }
};

TEST_F(PatchDialog, SizeLineInBytesAndWholeMegabits) {
  EXPECT_EQ(Open(std::string(1048576, 'x')).SizeText(), "1,048,576 bytes (8 Megabits)");
  EXPECT_EQ(Open(std::string(1500000, 'x')).SizeText(), "1,500,000 bytes (11 Megabits)");
  EXPECT_EQ(Open("abc").SizeText(), "3 bytes (0 Megabits)");
  EXPECT_FALSE(PatchDialogModel::Load(m_host, *m_store, PathOf("none.bin"), "none.bin").ok());
}

TEST_F(PatchDialog, SaveStoresOneBasedPositionNewAndOldBytes) {
  PatchDialogModel dialog = Open(Image(0x400));
  EXPECT_EQ(dialog.Name(), "-Name-");
  dialog.SetName("Infinite lives");
  dialog.SetPosition("1f");
  dialog.SetValue("ABC");  // an odd count gets a leading zero
  ASSERT_TRUE(dialog.Save()) << m_host.Transcript();
  EXPECT_EQ(dialog.Value(), "0ABC");
  EXPECT_EQ(Stored("SONIC.BIN|Infinite lives"), "32|" + Bytes({0x0A, 0xBC, '|', 0x1F, 0x20}));

  // Position 0 is stored as 1; the same name replaces the patch; "|" and 0x00 are fine.
  dialog.SetPosition("0");
  dialog.SetValue("7C00");
  ASSERT_TRUE(dialog.Save());
  EXPECT_EQ(Stored("SONIC.BIN|Infinite lives"), "1|" + Bytes({'|', 0, '|', 0, 1}));
  EXPECT_TRUE(m_host.Events().empty());
}

TEST_F(PatchDialog, SaveRefusesWhatItCannotStore) {
  PatchDialogModel dialog = Open(Image(0x400));
  const std::string badPosition =
      "The specified file position is invalid! This value must be between 0 and 3FF.";
  for (std::string_view position : {"400", "", "-1", "12G", "0x10"}) {
    dialog.SetPosition(position);
    dialog.SetValue("00");
    EXPECT_FALSE(dialog.Save());
  }
  dialog.SetPosition("3FF");
  dialog.SetValue("4G");
  EXPECT_FALSE(dialog.Save());
  std::vector<std::string> expected(5, badPosition);
  expected.push_back(
      "The value you typed isn't in HEX format. Convert it pressing 'Convert value to hex' in "
      "edit menu");
  EXPECT_EQ(m_host.Texts(), expected);
  EXPECT_FALSE(HasDynamicPatches(*m_store, "SONIC.BIN"));
}

TEST_F(PatchDialog, ValueFromTextOrFromTheImage) {
  PatchDialogModel dialog = Open("0123456789");
  dialog.SetValue(Bytes({'H', 'i', '|', 0}));
  dialog.ConvertValueToHex();
  EXPECT_EQ(dialog.Value(), "48697C00");

  dialog.SetPosition("8");
  m_host.AnswerText("5").AnswerYesNo(Answer::Yes);  // more than the file holds: up to its end
  dialog.GetValue();
  EXPECT_EQ(dialog.Value(), "89");
  m_host.AnswerText("2").AnswerYesNo(Answer::No);
  dialog.GetValue();
  EXPECT_EQ(dialog.Value(), "3839");
  const auto questions = m_host.EventsOf(PromptKind::Text);
  EXPECT_EQ(questions[0].text, "What's the size of the text you want to read from the rom?");
  EXPECT_EQ(questions[0].title, "Get text from ROM");
  EXPECT_EQ(m_host.EventsOf(PromptKind::YesNo)[0].text, "Show values in ASCII? (no for hexa)");

  // Anything but a plain count ends the command before the second question.
  for (std::optional<std::string> size : {std::optional<std::string>("02"), {" 2"}, {"2.0"}, {}}) {
    m_host.AnswerText(size);
    dialog.GetValue();
  }
  EXPECT_EQ(dialog.Value(), "3839");
  dialog.SetPosition("A");
  dialog.GetValue();
  EXPECT_EQ(m_host.Texts().back(), "Invalid file position!");
}

}  // namespace
}  // namespace romsteward
