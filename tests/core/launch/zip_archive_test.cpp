#include "core/launch/zip_archive.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/demo/demo_collection.h"
#include "support/temp_dir.h"
#include "support/zip_craft.h"

namespace romsteward {
namespace {

using test::CraftedMember;
using test::CraftZip;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

class ZipArchiveTest : public test::TempDirTest {
protected:
  std::filesystem::path Archive(const std::string& bytes, std::string_view name = "a.zip") {
    const auto path = PathOf(name);
    test::WriteTestFile(path, bytes);
    return path;
  }
  std::filesystem::path Folder(std::string_view name = "temp") {
    const auto path = PathOf(name);
    std::filesystem::create_directories(path);
    return path;
  }
  static std::string Zip(const std::vector<std::pair<std::string, std::string>>& members) {
    auto zip = BuildZipArchive(members);
    EXPECT_TRUE(zip.ok());
    return zip.ok() ? *zip : std::string();
  }
  // The archive with its first member claiming `size` uncompressed bytes, in its local
  // header and in the central directory.
  static std::string ClaimSize(std::string zip, std::uint32_t size) {
    const auto put = [&zip, size](std::size_t at) {
      for (int i = 0; i < 4; ++i) zip[at + i] = static_cast<char>(size >> (8 * i));
    };
    put(zip.find(std::string("PK\x03\x04", 4)) + 22);
    put(zip.find(std::string("PK\x01\x02", 4)) + 24);
    return zip;
  }
  // Every file name anywhere below the test directory, to prove nothing escaped.
  std::vector<std::string> AllFileNames() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(Dir()))
      names.push_back(entry.path().filename().string());
    return names;
  }
};

TEST_F(ZipArchiveTest, RecognisesArchivesByTheirFirstBytes) {
  const auto real = Archive(Zip({{"a.bin", "x"}}));
  const auto onlyPk = Archive("PKjunk", "pk.zip");
  const auto text = Archive("not an archive", "text.zip");

  EXPECT_TRUE(IsZipFile(real));
  EXPECT_TRUE(HasZipSignature(real));
  EXPECT_TRUE(IsZipFile(onlyPk));
  EXPECT_FALSE(HasZipSignature(onlyPk));
  EXPECT_FALSE(IsZipFile(text));
  EXPECT_FALSE(HasZipSignature(text));
  EXPECT_FALSE(IsZipFile(Dir()));
  EXPECT_FALSE(IsZipFile(PathOf("missing.zip")));
}

TEST_F(ZipArchiveTest, ListsMatchingFilesInArchiveOrder) {
  const auto path = Archive(CraftZip({
      {"b.SMD", "1"},
      {"notes.txt", "2"},
      {"sub/", "", 040755u << 16},
      {"a.bin", "3"},
      {"sub/c.md", "4"},
      {"game.2", "5"},
      {"game.1", "6"},
  }));

  auto roms = ListZipEntries(path, kRomMasks);
  ASSERT_TRUE(roms.ok()) << roms.error().message;
  EXPECT_THAT(roms->names, ElementsAre("b.SMD", "a.bin", "sub/c.md", "game.1"));
  EXPECT_EQ(roms->damage, "");

  auto all = ListZipEntries(path, kAllFilesMask);
  ASSERT_TRUE(all.ok());
  EXPECT_THAT(all->names,
              ElementsAre("b.SMD", "notes.txt", "a.bin", "sub/c.md", "game.2", "game.1"));
}

TEST_F(ZipArchiveTest, ExtractsMembersWholeAndRemovesThemAgain) {
  const auto path = Archive(Zip({{"top.bin", "top data"}, {"sub/deep/inner.smd", "inner data"}}));
  const auto folder = Folder();
  test::WriteTestFile(folder / "top.bin", "an older copy that is much longer than the new one");

  auto top = ExtractZipMember(path, "top.bin", folder);
  ASSERT_TRUE(top.ok()) << top.error().message;
  EXPECT_EQ(*top, folder / "top.bin");
  EXPECT_EQ(test::ReadTestFile(*top), "top data");

  const std::vector<std::string> both = {"sub/deep/inner.smd", "top.bin"};
  auto extracted = ExtractZipMembers(path, both, folder);
  ASSERT_TRUE(extracted.ok()) << extracted.error().message;
  EXPECT_EQ(test::ReadTestFile((*extracted)[0]), "inner data");

  ASSERT_TRUE(RemoveExtractedMember(folder, "sub/deep/inner.smd").ok());
  EXPECT_FALSE(std::filesystem::exists(folder / "sub"));  // emptied folders go too
  EXPECT_TRUE(std::filesystem::exists(folder / "top.bin"));

  auto missing = ExtractZipMember(path, "other.bin", folder);
  ASSERT_FALSE(missing.ok());
  EXPECT_THAT(missing.error().message, HasSubstr("other.bin"));
}

TEST_F(ZipArchiveTest, RefusesNamesThatLeadOutOfTheFolder) {
  const auto folder = Folder("deep/temp");
  for (const std::string name :
       {"../evil.bin", "sub/../../evil.bin", "/tmp/evil.bin", "..\\evil.bin", "C:evil.bin"}) {
    SCOPED_TRACE(name);
    const auto path = Archive(CraftZip({{name, "payload"}}));
    auto result = ExtractZipMember(path, name, folder);
    ASSERT_FALSE(result.ok());
    EXPECT_THAT(result.error().message, HasSubstr("refused"));
  }
  EXPECT_THAT(AllFileNames(), ::testing::Not(::testing::Contains("evil.bin")));
}

TEST_F(ZipArchiveTest, RefusesLinksInTheArchiveAndInTheFolder) {
  const auto outside = Folder("outside");
  const auto path = Archive(CraftZip({
      {"link.bin", (outside / "target").string(), 0120777u << 16},
      {"sub/x.bin", "payload"},
      {"y.bin", "fresh"},
  }));
  auto listing = ListZipEntries(path, kAllFilesMask);
  ASSERT_TRUE(listing.ok());
  EXPECT_THAT(listing->names, ElementsAre("sub/x.bin", "y.bin"));

  const auto folder = Folder();
  auto link = ExtractZipMember(path, "link.bin", folder);
  ASSERT_FALSE(link.ok());
  EXPECT_THAT(link.error().message, HasSubstr("link"));

  // A link planted in the temporary folder must not carry the write elsewhere.
  std::filesystem::create_directory_symlink(outside, folder / "sub");
  EXPECT_FALSE(ExtractZipMember(path, "sub/x.bin", folder).ok());
  test::WriteTestFile(outside / "victim", "keep me");
  std::filesystem::create_symlink(outside / "victim", folder / "y.bin");
  ASSERT_TRUE(ExtractZipMember(path, "y.bin", folder).ok());
  EXPECT_FALSE(std::filesystem::is_symlink(folder / "y.bin"));
  EXPECT_EQ(test::ReadTestFile(folder / "y.bin"), "fresh");
  EXPECT_EQ(test::ReadTestFile(outside / "victim"), "keep me");
  EXPECT_FALSE(std::filesystem::exists(outside / "x.bin"));
}

TEST_F(ZipArchiveTest, RefusesOversizedAndLyingMembers) {
  const auto folder = Folder();
  constexpr std::uint64_t kLimit = 64 * 1024;

  const auto claimsTooMuch =
      Archive(CraftZip({{"huge.bin", "tiny", 0100644u << 16, kMaxZipMemberSize + 1}}), "huge.zip");
  auto huge = ExtractZipMember(claimsTooMuch, "huge.bin", folder);
  ASSERT_FALSE(huge.ok());
  EXPECT_THAT(huge.error().message, HasSubstr("larger than 64 MiB"));

  // A bomb claims little: it is stopped by what it unpacks to, not by what it says.
  const auto bomb =
      Archive(ClaimSize(Zip({{"bomb.bin", std::string(kLimit * 64, '\0')}}), 100), "bomb.zip");
  auto inflated = ExtractZipMember(bomb, "bomb.bin", folder, kLimit);
  ASSERT_FALSE(inflated.ok());
  EXPECT_THAT(inflated.error().message, HasSubstr("more than 65536 bytes"));
  const auto liar = Archive(
      CraftZip({{"liar.bin", std::string(kLimit + 1, 'x'), 0100644u << 16, 100}}), "liar.zip");
  EXPECT_FALSE(ExtractZipMember(liar, "liar.bin", folder, kLimit).ok());

  const auto shortOne =
      Archive(CraftZip({{"short.bin", std::string(500, 'x'), 0100644u << 16, 10}}), "short.zip");
  EXPECT_FALSE(ExtractZipMember(shortOne, "short.bin", folder).ok());

  EXPECT_TRUE(std::filesystem::is_empty(folder));  // no half-written file stays behind
}

TEST_F(ZipArchiveTest, DamagedArchiveListsWhatCanBeRead) {
  std::string data(20000, '\0');
  for (std::size_t i = 0; i < data.size(); ++i)
    data[i] = static_cast<char>(i * 7919 >> 3);
  const std::string zip = Zip({{"one.bin", data}, {"two.bin", data}, {"three.bin", data}});
  // Cut inside the third member's local header: the directory at the end is gone as well.
  std::size_t third = 0;
  for (int i = 0; i < 3; ++i)
    third = zip.find(std::string("PK\x03\x04", 4), i ? third + 1 : 0);
  const auto path = Archive(zip.substr(0, third + 10));

  auto listing = ListZipEntries(path, kRomMasks);
  ASSERT_TRUE(listing.ok());
  EXPECT_THAT(listing->names, ElementsAre("one.bin", "two.bin"));
  EXPECT_NE(listing->damage, "");

  auto garbage = ListZipEntries(Archive("PK but nothing else", "garbage.zip"), kRomMasks);
  ASSERT_TRUE(garbage.ok());
  EXPECT_TRUE(garbage->names.empty());
  EXPECT_NE(garbage->damage, "");
}

}  // namespace
}  // namespace romsteward
