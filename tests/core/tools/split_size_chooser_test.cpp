#include "core/tools/split_size_chooser.h"

#include <gtest/gtest.h>

namespace romsteward {
namespace {

TEST(SplitSizeChooser, ShowsTheImageSizeAndTheThirteenOptions) {
  SplitSizeChooser chooser(24);
  EXPECT_EQ(chooser.Caption(), " Select split size (rom size: 24 Mbit)");
  EXPECT_EQ(SplitSizeChooser::OptionCaption(0), "1 MegaBit");
  EXPECT_EQ(SplitSizeChooser::OptionCaption(11), "12 MegaBit");
  EXPECT_EQ(SplitSizeChooser::OptionCaption(SplitSizeChooser::kCustomOption), "Custom:");
}

TEST(SplitSizeChooser, AFixedOptionGivesItsSize) {
  SplitSizeChooser chooser(8);
  chooser.SelectOption(3);
  EXPECT_EQ(chooser.Accept().value(), 4);
  chooser.SelectOption(11);
  EXPECT_EQ(chooser.Accept().value(), 12);
  chooser.SelectOption(40);  // no such option: the choice stays
  EXPECT_EQ(chooser.Accept().value(), 12);
}

TEST(SplitSizeChooser, CustomSizeUpTo32IsAcceptedAndAbove32Refused) {
  SplitSizeChooser chooser(8);
  chooser.SetCustomText("32");
  ASSERT_TRUE(chooser.Accept().ok());
  EXPECT_EQ(chooser.Accept().value(), 32);

  chooser.SpinUp();
  EXPECT_EQ(chooser.CustomText(), "33");
  const Result<int> refused = chooser.Accept();
  ASSERT_FALSE(refused.ok());
  EXPECT_EQ(refused.error().message,
            "As the maximum ROM size for Genesis was 32 Megabits, there is no reason for a split "
            "with that size");

  // A number too long for any integer is still far above the limit, not wrapped below it.
  chooser.SetCustomText("99999999999999999999");
  EXPECT_FALSE(chooser.Accept().ok());
}

TEST(SplitSizeChooser, ZeroAndNegativeSizesPassTheChooser) {
  SplitSizeChooser chooser(8);
  chooser.SetCustomText("");
  EXPECT_EQ(chooser.Accept().value(), 0);
  chooser.SpinDown();
  chooser.SpinDown();
  EXPECT_EQ(chooser.CustomText(), "-2");
  EXPECT_EQ(chooser.Accept().value(), -2);
}

TEST(SplitSizeChooser, KeyFilterLetsOnlyDigitsAndBackspaceThrough) {
  SplitSizeChooser chooser(8);
  for (const char key : std::string("1a-2 ."))
    chooser.TypeKey(key);
  EXPECT_EQ(chooser.CustomText(), "12");
  EXPECT_TRUE(chooser.TypeKey('\b'));
  EXPECT_EQ(chooser.CustomText(), "1");
  chooser.TypeKey('\b');
  chooser.TypeKey('\b');  // nothing left to remove
  EXPECT_EQ(chooser.CustomText(), "");
  EXPECT_FALSE(SplitSizeChooser::KeyPasses('+'));
  EXPECT_FALSE(SplitSizeChooser::KeyPasses('\r'));
}

TEST(SplitSizeChooser, EditingTheCustomFieldSelectsCustom) {
  SplitSizeChooser chooser(8);
  chooser.SelectOption(5);
  chooser.TypeKey('9');
  EXPECT_EQ(chooser.SelectedOption(), SplitSizeChooser::kCustomOption);
  EXPECT_EQ(chooser.Accept().value(), 9);
}

TEST(SplitSizeChooser, CustomTextIsReadAsItsLeadingWholeNumber) {
  SplitSizeChooser chooser(8);
  chooser.SetCustomText(" 7 Mbit");
  EXPECT_EQ(chooser.CustomNumber(), 7);
  chooser.SetCustomText("x7");
  EXPECT_EQ(chooser.CustomNumber(), 0);
  chooser.SpinUp();
  EXPECT_EQ(chooser.CustomText(), "1");
}

}  // namespace
}  // namespace romsteward
