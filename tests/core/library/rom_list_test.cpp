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
  EXPECT_EQ(RemoveChar(" Sonic The Hedgehog ", ' '), "SonicTheHedgehog");
  EXPECT_EQ(RemoveChar("a  b", ' ') + RemoveChar("a   b", ' ') + RemoveChar("a    b", ' '),
            "a ba ba  b");
}

TEST(SortRomNames, NameOrderIgnoresCaseAndSingleBlanks) {
  EXPECT_THAT(Sorted({"b.bin", "A.bin", "C.smd"}, SortOrder::Name),
              ElementsAre("A.bin", "b.bin", "C.smd"));
  // Counted, the blank would sort "ab c" first; a run of two keeps one blank, which does.
  EXPECT_THAT(Sorted({"ab c.bin", "abb.bin"}, SortOrder::Name), ElementsAre("abb.bin", "ab c.bin"));
  EXPECT_THAT(Sorted({"aa.bin", "a  z.bin"}, SortOrder::Name), ElementsAre("a  z.bin", "aa.bin"));
  // Signs between the two alphabets sort before the letters, as the old text order did.
  EXPECT_THAT(Sorted({"b.bin", "_a.bin"}, SortOrder::Name), ElementsAre("_a.bin", "b.bin"));
}

TEST(SortRomNames, TypeOrderGoesByTheLastExtensionAndIsNotStable) {
  EXPECT_THAT(Sorted({"z.smd", "y.MD", "x.bin", "w.1", "readme"}, SortOrder::Type),
              ElementsAre("readme", "w.1", "x.bin", "y.MD", "z.smd"));
  // The gap-2 exchange carries b.bin in front of a.bin, and nothing moves it back.
  EXPECT_THAT(Sorted({"x.smd", "a.bin", "b.bin"}, SortOrder::Type),
              ElementsAre("b.bin", "a.bin", "x.smd"));
}

TEST(SortRomNames, EverySizeComesOutInKeyOrder) {
  std::mt19937 random(7);
  for (std::size_t n = 0; n <= 70; ++n) {
    std::vector<std::string> names(n);
    for (std::string& name : names)
      for (int k = 0; k < 6; ++k)
        name += "aB c.1smdINx"[random() % 12];
    for (SortOrder order : {SortOrder::Name, SortOrder::Type}) {
      std::vector<std::string> sorted = Sorted(names, order);
      const auto key = [order](const std::string& name) {
        return ToLowerAscii(order == SortOrder::Name ? NameSortKey(name) : TypeSortKey(name));
      };
      ASSERT_TRUE(std::is_sorted(sorted.begin(), sorted.end(),
                                 [&](const auto& a, const auto& b) { return key(a) < key(b); }));
      ASSERT_TRUE(std::is_permutation(sorted.begin(), sorted.end(), names.begin(), names.end()));
    }
  }
}

TEST(ReselectByName, FindsByHalvingWithBlanksAndCaseIgnored) {
  const std::vector<std::string> entries = {"alpha.bin", "Beta Max.bin", "delta.smd",
                                            "echo.md",   "gamma.1",      "zulu.bin"};
  EXPECT_EQ(ReselectByName(entries, "zulu.bin"), 5u);
  EXPECT_EQ(ReselectByName(entries, "BETAMAX.BIN"), 1u);
  EXPECT_EQ(ReselectByName(entries, "foxtrot.bin"), std::nullopt);
  EXPECT_EQ(ReselectByName({}, "alpha.bin"), std::nullopt);
  // Out of name order the halving goes astray: in type order "c.1" is not found.
  EXPECT_EQ(ReselectByName({"c.1", "a.bin", "b.md"}, "c.1"), std::nullopt);
}

TEST(ReselectByName, AnExactNameWinsOverOneDifferingInCaseOrBlanks) {
  std::vector<std::string> entries = {"sonic.bin", "SONIC.bin", "Sonic.bin", "So nic.bin"};
  SortRomNames(entries, SortOrder::Name);
  for (const std::string& name : entries)
    EXPECT_EQ(entries[*ReselectByName(entries, name)], name);
  // Without an exact one, any of them (case-folding is only the fallback).
  EXPECT_TRUE(ReselectByName(entries, "sOnIc.BIN"));
}

TEST(MatchesMask, StarsAndQuestionMarksWithoutCase) {
  EXPECT_TRUE(MatchesMask("a.b.BIN", "*.bin") && MatchesMask("README", "*.*"));
  EXPECT_FALSE(MatchesMask("game.bin.txt", "*.bin") || MatchesMask("game.10", "*.1"));
  EXPECT_TRUE(MatchesMask("game.1", "gam?.?") && !MatchesMask("game.1", "gam?"));
  EXPECT_TRUE(MatchesAnyMask("x.SMD", "*.bin;*.smd") && !MatchesAnyMask("x.txt", "*.bin;*.smd"));
}

TEST(PushDirHistory, ShiftsDownToTheOldPlaceOfThePath) {
  DirHistory history = {"/a", "/b", "/c", "/d", "/e"};
  EXPECT_EQ(PushDirHistory(history, "/d"), 4u);
  EXPECT_THAT(history, ElementsAre("/d", "/a", "/b", "/c", "/e"));
  EXPECT_EQ(PushDirHistory(history, "/new"), 5u);  // the oldest falls off
  EXPECT_THAT(history, ElementsAre("/new", "/d", "/a", "/b", "/c"));
  DirHistory fresh;
  PushDirHistory(fresh, "/one");
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
  ASSERT_EQ(roms->size(), 5u);
  EXPECT_EQ((*roms)[0], "a.BIN");
  EXPECT_THAT(std::vector(roms->begin() + 1, roms->begin() + 3),
              UnorderedElementsAre("b.smd", "e.Smd"));
  EXPECT_THAT(std::vector(roms->begin() + 3, roms->end()), ElementsAre("c.md", "d.1"));
  EXPECT_EQ(ScanRomDirectory(Dir(), ListFilter::AllFiles)->size(), 8u);
  EXPECT_FALSE(ScanRomDirectory(PathOf("missing"), ListFilter::AllFiles).ok());
}

TEST_F(RomScanTest, PlacesExistAsFilesOrDirectoriesAndRemoteOnesAreKnown) {
  test::WriteTestFile(PathOf("game.bin"), "x");
  const std::string file = PathToUtf8(PathOf("game.bin"));
  const std::string dir = PathToUtf8(Dir());
  EXPECT_TRUE(PathExists(file, PathKind::File) && !PathExists(file, PathKind::Directory));
  EXPECT_TRUE(PathExists("  " + dir + "  ", PathKind::Directory));
  EXPECT_FALSE(PathExists(dir, PathKind::File) || PathExists("", PathKind::Directory));
  EXPECT_TRUE(PathExists("C:\\", PathKind::Directory));  // a drive root is taken on trust

  EXPECT_TRUE(IsRemotePath("\\\\server\\share") && IsRemotePath("smb://server/share"));
  EXPECT_FALSE(IsRemotePath("C:\\roms") || IsRemotePath("/odd/dir://name"));
}

}  // namespace
}  // namespace romsteward
