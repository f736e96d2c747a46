#include "core/tools/split_size_chooser.h"

#include <gtest/gtest.h>

namespace romsteward {
namespace {

TEST(SplitSizeChooser, OptionsGiveTheirSizeAndTheCustomFieldTakesDigitsUpTo32) {
  SplitSizeChooser chooser(24);
  EXPECT_EQ(chooser.Caption(), " Select split size (rom size: 24 Mbit)");
  chooser.SelectOption(11);
  EXPECT_EQ(chooser.Accept().value(), 12);

  chooser.SetCustomText("32");
  EXPECT_EQ(chooser.Accept().value(), 32);
  chooser.SpinUp();
  ASSERT_FALSE(chooser.Accept().ok());
  EXPECT_EQ(chooser.Accept().error().message,
            "As the maximum ROM size for Genesis was 32 Megabits, there is no reason for a split "
            "with that size");
  chooser.SetCustomText("99999999999999999999");  // saturates instead of wrapping below 32
  EXPECT_FALSE(chooser.Accept().ok());

  // The custom field takes digits only and spins past zero.
  chooser.SetCustomText("");
  chooser.SelectOption(5);
  for (const char key : std::string("1a-2 .\b\b\b9"))
    chooser.TypeKey(key);
  EXPECT_EQ(chooser.CustomText(), "9");
  // Typing in the field means the custom size, whatever option was selected before.
  EXPECT_EQ(chooser.SelectedOption(), SplitSizeChooser::kCustomOption);

  chooser.SetCustomText("");
  EXPECT_EQ(chooser.Accept().value(), 0);
  chooser.SpinDown();
  EXPECT_EQ(chooser.CustomText(), "-1");
  EXPECT_EQ(chooser.Accept().value(), -1);  // passes the chooser; the split then ends
}

}  // namespace
}  // namespace romsteward
