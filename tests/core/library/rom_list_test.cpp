#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "core/common/strings.h"
#include "core/common/wildcard.h"
#include "core/library/dir_history.h"
#include "core/library/place.h"
#include "core/library/rom_scan.h"
#include "core/library/rom_sort.h"
#include "support/temp_dir.h"

namespace romsteward {
namespace {

using ::testing::ElementsAre;
using ::testing::UnorderedElementsAre;

std::vector<std::string> Sorted(std::vector<std::string> names, SortOrder order) {
  SortRomNames(names, order);
  return names;
}

TEST(RemoveChar, ResumesOnePlaceTooFarSoRunsOfBlanksKeepSome) {
  EXPECT_EQ(RemoveChar("Sonic The Hedgehog.bin", ' '), "SonicTheHedgehog.bin");
  EXPECT_EQ(RemoveChar("a  b", ' '), "a b");
  EXPECT_EQ(RemoveChar("a   b", ' '), "a b");
  EXPECT_EQ(RemoveChar("a    b", ' '), "a  b");
  EXPECT_EQ(RemoveChar("  lead", ' '), " lead");
  EXPECT_EQ(RemoveChar("trail ", ' '), "trail");
  EXPECT_EQ(RemoveChar("none", ' '), "none");
}

TEST(SortRomNames, GapsHalveWithHalvesGoingToTheEvenNeighbour) {
  EXPECT_EQ(HalveToEven(1), 0u);
  EXPECT_EQ(HalveToEven(2), 1u);
  EXPECT_EQ(HalveToEven(3), 2u);
  EXPECT_EQ(HalveToEven(5), 2u);
  EXPECT_EQ(HalveToEven(7), 4u);
  EXPECT_EQ(HalveToEven(9), 4u);
  EXPECT_EQ(HalveToEven(10), 5u);
}

TEST(SortRomNames, NameOrderIgnoresCaseAndSingleBlanks) {
  EXPECT_THAT(Sorted({"b.bin", "A.bin", "C.smd"}, SortOrder::Name),
              ElementsAre("A.bin", "b.bin", "C.smd"));
  // With the blank counted, "ab c" would come first (a blank sorts before letters).
  EXPECT_THAT(Sorted({"ab c.bin", "abb.bin"}, SortOrder::Name), ElementsAre("abb.bin", "ab c.bin"));
  // A run of two blanks keeps one in the key, and that one sorts before "a".
  EXPECT_THAT(Sorted({"aa.bin", "a  z.bin"}, SortOrder::Name), ElementsAre("a  z.bin", "aa.bin"));
  // Signs between the two alphabets sort before the letters, as the old text order did.
  EXPECT_THAT(Sorted({"b.bin", "_a.bin"}, SortOrder::Name), ElementsAre("_a.bin", "b.bin"));
}

TEST(SortRomNames, TypeOrderGoesByTheLastExtension) {
  EXPECT_THAT(Sorted({"z.smd", "y.MD", "x.bin", "w.1", "readme"}, SortOrder::Type),
              ElementsAre("readme", "w.1", "x.bin", "y.MD", "z.smd"));
}

TEST(SortRomNames, EqualKeysEndWhereTheExchangesLeaveThem) {
  // The gap-2 exchange carries b.bin in front of a.bin, and nothing moves it back.
  EXPECT_THAT(Sorted({"x.smd", "a.bin", "b.bin"}, SortOrder::Type),
              ElementsAre("b.bin", "a.bin", "x.smd"));
  // Names equal but for case or a blank keep the order the gaps leave too.
  EXPECT_THAT(Sorted({"Z.bin", "AB.bin", "a b.bin"}, SortOrder::Name),
              ElementsAre("a b.bin", "AB.bin", "Z.bin"));
}

TEST(SortRomNames, EverySizeComesOutInKeyOrder) {
  std::mt19937 random(7);
  const std::string letters = "aB c.1smdINx";
  for (std::size_t n = 0; n <= 70; ++n) {
    std::vector<std::string> names;
    for (std::size_t i = 0; i < n; ++i) {
      std::string name;
      for (int k = 0; k < 6; ++k)
        name += letters[random() % letters.size()];
      names.push_back(name);
    }
    for (SortOrder order : {SortOrder::Name, SortOrder::Type}) {
      std::vector<std::string> sorted = Sorted(names, order);
      const auto key = [order](const std::string& name) {
        return ToLowerAscii(order == SortOrder::Name ? NameSortKey(name) : TypeSortKey(name));
      };
      ASSERT_TRUE(std::is_sorted(sorted.begin(), sorted.end(),
                                 [&](const auto& a, const auto& b) { return key(a) < key(b); }))
          << "n = " << n;
      std::sort(names.begin(), names.end());
      std::sort(sorted.begin(), sorted.end());
      ASSERT_EQ(sorted, names);  // nothing lost or doubled
    }
  }
}

TEST(ReselectByName, FindsByHalvingWithBlanksAndCaseIgnored) {
  const std::vector<std::string> entries = {"alpha.bin", "Beta Max.bin", "delta.smd",
                                            "echo.md",   "gamma.1",      "zulu.bin"};
  EXPECT_EQ(ReselectByName(entries, "alpha.bin"), 0u);
  EXPECT_EQ(ReselectByName(entries, "zulu.bin"), 5u);
  EXPECT_EQ(ReselectByName(entries, "BETAMAX.BIN"), 1u);
  EXPECT_EQ(ReselectByName(entries, "foxtrot.bin"), std::nullopt);
  EXPECT_EQ(ReselectByName(entries, ""), std::nullopt);
  EXPECT_EQ(ReselectByName({}, "alpha.bin"), std::nullopt);
  // Out of name order the halving goes astray: in type order "c.1" is not found.
  EXPECT_EQ(ReselectByName({"c.1", "a.bin", "b.md"}, "c.1"), std::nullopt);
}

TEST(MatchesMask, StarsAndQuestionMarksWithoutCase) {
  EXPECT_TRUE(MatchesMask("GAME.BIN", "*.bin"));
  EXPECT_TRUE(MatchesMask("a.b.bin", "*.bin"));
  EXPECT_FALSE(MatchesMask("game.bin.txt", "*.bin"));
  EXPECT_FALSE(MatchesMask("game.10", "*.1"));
  EXPECT_FALSE(MatchesMask("game.mdx", "*.md"));
  EXPECT_TRUE(MatchesMask("README", "*.*"));
  EXPECT_TRUE(MatchesMask("game.1", "gam?.?"));
  EXPECT_FALSE(MatchesMask("game.1", "gam?"));
  EXPECT_TRUE(MatchesMask("sub/game.md", "*.md"));
  EXPECT_TRUE(MatchesAnyMask("x.SMD", "*.bin;*.smd"));
  EXPECT_FALSE(MatchesAnyMask("x.txt", "*.bin;*.smd"));
  EXPECT_FALSE(MatchesAnyMask("x.txt", ""));
}

TEST(PushDirHistory, ShiftsDownToTheOldPlaceOfThePath) {
  DirHistory history = {"/a", "/b", "/c", "/d", "/e"};
  EXPECT_EQ(PushDirHistory(history, "/d"), 4u);
  EXPECT_THAT(history, ElementsAre("/d", "/a", "/b", "/c", "/e"));

  EXPECT_EQ(PushDirHistory(history, "/new"), 5u);  // the oldest falls off
  EXPECT_THAT(history, ElementsAre("/new", "/d", "/a", "/b", "/c"));

  EXPECT_EQ(PushDirHistory(history, "/new"), 1u);
  EXPECT_THAT(history, ElementsAre("/new", "/d", "/a", "/b", "/c"));

  DirHistory fresh;
  EXPECT_EQ(PushDirHistory(fresh, "/one"), 1u);
  EXPECT_EQ(PushDirHistory(fresh, "/two"), 2u);
  EXPECT_THAT(fresh, ElementsAre("/two", "/one", "", "", ""));
}

class RomScanTest : public test::TempDirTest {};

TEST_F(RomScanTest, RomMasksGroupByExtensionAndSkipWhatIsNoPlainFile) {
  for (const char* name :
       {"b.smd", "a.BIN", "c.md", "d.1", "d.2", "notes.txt", ".hidden.bin", "e.Smd", "f.bin.bak"})
    test::WriteTestFile(PathOf(name), "x");
  std::filesystem::create_directory(PathOf("folder.bin"));
  std::filesystem::create_symlink(PathOf("nowhere"), PathOf("dangling.bin"));

  auto roms = ScanRomDirectory(Dir(), ListFilter::RomFiles);
  ASSERT_TRUE(roms.ok()) << roms.error().message;
  ASSERT_EQ(roms->size(), 5u);
  EXPECT_EQ((*roms)[0], "a.BIN");
  EXPECT_THAT(std::vector<std::string>(roms->begin() + 1, roms->begin() + 3),
              UnorderedElementsAre("b.smd", "e.Smd"));
  EXPECT_EQ((*roms)[3], "c.md");
  EXPECT_EQ((*roms)[4], "d.1");

  auto all = ScanRomDirectory(Dir(), ListFilter::AllFiles);
  ASSERT_TRUE(all.ok());
  EXPECT_THAT(*all, UnorderedElementsAre("b.smd", "a.BIN", "c.md", "d.1", "d.2", "notes.txt",
                                         "e.Smd", "f.bin.bak"));

  EXPECT_FALSE(ScanRomDirectory(PathOf("missing"), ListFilter::AllFiles).ok());
}

TEST_F(RomScanTest, PlacesExistAsFilesOrDirectories) {
  test::WriteTestFile(PathOf("game.bin"), "x");
  const std::string file = PathToUtf8(PathOf("game.bin"));
  const std::string dir = PathToUtf8(Dir());
  EXPECT_TRUE(PathExists(file, PathKind::File));
  EXPECT_FALSE(PathExists(file, PathKind::Directory));
  EXPECT_TRUE(PathExists(dir, PathKind::Directory));
  EXPECT_TRUE(PathExists("  " + dir + "  ", PathKind::Directory));
  EXPECT_FALSE(PathExists(dir, PathKind::File));
  EXPECT_FALSE(PathExists(dir + "/missing", PathKind::Directory));
  EXPECT_FALSE(PathExists("", PathKind::Directory));
  EXPECT_TRUE(PathExists("C:\\", PathKind::Directory));  // a drive root is taken on trust

  EXPECT_TRUE(IsRemotePath("\\\\server\\share"));
  EXPECT_TRUE(IsRemotePath("smb://server/share"));
  EXPECT_TRUE(IsRemotePath("sftp://host/roms"));
  EXPECT_FALSE(IsRemotePath("/home/me/roms"));
  EXPECT_FALSE(IsRemotePath("C:\\roms"));
  EXPECT_FALSE(IsRemotePath("/odd/dir://name"));
}

}  // namespace
}  // namespace romsteward
