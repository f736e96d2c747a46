#include "core/patch/dynamic_patches.h"

#include <gtest/gtest.h>

#include "core/patch/patch_store_fixture.h"

namespace romsteward {
namespace {

using test::Bytes;

TEST(DynamicPatchValue, ReadsBackWhateverBytesTheFieldsHold) {
  const PatchValue awkward{0x1235, Bytes({'|', 0, '|', 'x'}), Bytes({0, 0, '|', '|'})};
  const std::string data = EncodePatchValue(awkward);
  EXPECT_EQ(data, "4661|" + Bytes({'|', 0, '|', 'x', '|', 0, 0, '|', '|'}));
  const auto back = DecodePatchValue(data);
  ASSERT_TRUE(back.has_value());
  EXPECT_EQ(back->position, 0x1235u);
  EXPECT_EQ(back->newBytes, awkward.newBytes);
  EXPECT_EQ(back->oldBytes, awkward.oldBytes);

  // Old bytes cut short by the end of the image: the split falls on the first "|".
  const auto shortOld = DecodePatchValue("9|ABCD|x");
  ASSERT_TRUE(shortOld.has_value());
  EXPECT_EQ(shortOld->newBytes, "ABCD");
  EXPECT_EQ(shortOld->oldBytes, "x");
  const auto empty = DecodePatchValue("3||");
  ASSERT_TRUE(empty.has_value());
  EXPECT_TRUE(empty->newBytes.empty());
}

TEST(DynamicPatchValue, MalformedValuesAreRefused) {
  for (std::string_view bad : {"", "12", "12|AB", "x|A|B", "0|A|B", "|A|B", "-1|A|B", "1 |A|B"}) {
    EXPECT_FALSE(DecodePatchValue(bad).has_value()) << bad;
  }
}

class DynamicPatchStore : public test::PatchStoreTest {};

TEST_F(DynamicPatchStore, EachUseSeesItsOwnSetOfAnImagesPatches) {
  EXPECT_FALSE(HasDynamicPatches(*m_store, "A.BIN"));  // no patch was ever stored
  EXPECT_TRUE(ListDynamicPatchNames(*m_store, "A.BIN").empty());

  StoreRaw("A.BIN|lives", "1|a|b");
  StoreRaw("A.BIN2|other game", "2|c|d");
  StoreRaw("a.bin|lower", "3|e|f");
  StoreRaw("B.BIN|time", "4|g|h");
  StoreRaw("A.BIN|level", "5|i|j");

  EXPECT_TRUE(HasDynamicPatches(*m_store, "A.BIN"));
  EXPECT_TRUE(HasDynamicPatches(*m_store, "a.bin"));
  EXPECT_FALSE(HasDynamicPatches(*m_store, "A.bin"));  // the prefix test minds the case
  EXPECT_FALSE(HasDynamicPatches(*m_store, "C.BIN"));

  EXPECT_EQ(ListDynamicPatchNames(*m_store, "A.BIN"),
            (std::vector<std::string>{"lives", "lower", "level"}));

  const auto launch = PatchesForLaunch(*m_store, "A.BIN");
  ASSERT_TRUE(launch.ok());
  std::vector<std::string> names;
  for (const auto& [name, data] : *launch)
    names.push_back(name);
  EXPECT_EQ(names, (std::vector<std::string>{"A.BIN|lives", "A.BIN2|other game", "A.BIN|level"}));
}

TEST_F(DynamicPatchStore, RemovalMatchesTheNameInAnyCase) {
  StoreRaw("Sonic.bin|Lives", "1|a|b");
  ASSERT_TRUE(RemoveDynamicPatch(*m_store, "Sonic.bin", "Lives").ok());
  EXPECT_FALSE(HasDynamicPatches(*m_store, "Sonic.bin"));
  EXPECT_FALSE(RemoveDynamicPatch(*m_store, "Sonic.bin", "Lives").ok());
}

}  // namespace
}  // namespace romsteward
