#include "core/launch/zip_archive.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/common/strings.h"
#include "core/demo/demo_collection.h"
#include "support/scripted_host.h"
#include "support/temp_dir.h"

namespace romsteward {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

class ZipArchiveTest : public test::TempDirTest {
protected:
  ZipArchiveTest() { std::filesystem::create_directories(folder); }

  std::filesystem::path Archive(const std::string& bytes, std::string_view name = "a.zip") {
    test::WriteTestFile(PathOf(name), bytes);
    return PathOf(name);
  }
  static std::string Zip(const std::vector<std::pair<std::string, std::string>>& members) {
    auto zip = BuildZipArchive(members);
    return zip ? *zip : std::string();
  }
  // The archive with a 4-byte field of its first member's headers set to `value`: `local` in
  // the local header, `central` in the central directory (-1 leaves one alone).
  static std::string Patch(std::string zip, int local, int central, std::uint32_t value) {
    std::string bytes;
    for (int i = 0; i < 4; ++i)
      bytes += static_cast<char>(value >> (8 * i));
    if (local >= 0) zip.replace(zip.find("PK\x03\x04") + local, 4, bytes);
    if (central >= 0) zip.replace(zip.find("PK\x01\x02") + central, 4, bytes);
    return zip;
  }
  static std::string Link(std::string zip) { return Patch(std::move(zip), -1, 38, 0120777u << 16); }
  static std::string Claim(std::string zip, std::uint32_t size) {
    return Patch(std::move(zip), 22, 24, size);
  }
  const std::filesystem::path folder = PathOf("deep/temp");
};

TEST_F(ZipArchiveTest, RecognisesArchivesByTheirFirstBytes) {
  const auto real = Archive(Zip({{"a.bin", "x"}}));
  const auto onlyPk = Archive("PKjunk", "pk.zip");
  EXPECT_TRUE(IsZipFile(real) && HasZipSignature(real));
  EXPECT_TRUE(IsZipFile(onlyPk) && !HasZipSignature(onlyPk));
  EXPECT_FALSE(IsZipFile(Archive("not an archive", "text.zip")));
  EXPECT_FALSE(IsZipFile(Dir()) || IsZipFile(PathOf("missing.zip")));
}

TEST_F(ZipArchiveTest, ListsMatchingPlainFilesInArchiveOrder) {
  const auto path = Archive(Zip({{"b.SMD", "1"},
                                 {"notes.txt", "2"},
                                 {"sub/", ""},
                                 {"sub/c.md", "4"},
                                 {"game.2", "5"},
                                 {"game.1", "6"}}));
  const auto link = Archive(Link(Zip({{"link.bin", "/etc/passwd"}, {"d.bin", "7"}})), "l.zip");
  auto roms = ListZipEntries(path, kRomMasks);
  ASSERT_TRUE(roms.ok()) << roms.error().message;
  EXPECT_THAT(roms->names, ElementsAre("b.SMD", "sub/c.md", "game.1"));
  EXPECT_EQ(roms->damage, "");
  EXPECT_THAT(ListZipEntries(path, kAllFilesMask)->names,
              ElementsAre("b.SMD", "notes.txt", "sub/c.md", "game.2", "game.1"));
  EXPECT_THAT(ListZipEntries(link, kAllFilesMask)->names, ElementsAre("d.bin"));
}

TEST_F(ZipArchiveTest, ExtractsMembersWholeAndRemovesThemAgain) {
  const auto path = Archive(Zip({{"top.bin", "top data"}, {"sub/deep/inner.smd", "inner"}}));
  test::WriteTestFile(folder / "top.bin", "an older copy that is much longer than the new one");
  const std::vector<std::string> both = {"sub/deep/inner.smd", "top.bin"};
  auto extracted = ExtractZipMembers(path, both, folder);
  ASSERT_TRUE(extracted.ok()) << extracted.error().message;
  EXPECT_EQ((*extracted)[1], folder / "top.bin");
  EXPECT_EQ(test::ReadTestFile((*extracted)[0]), "inner");
  EXPECT_EQ(test::ReadTestFile((*extracted)[1]), "top data");

  ASSERT_TRUE(RemoveExtractedMember(folder, "sub/deep/inner.smd").ok());
  EXPECT_FALSE(std::filesystem::exists(folder / "sub"));  // emptied folders go too
  EXPECT_TRUE(std::filesystem::exists(folder / "top.bin"));
  EXPECT_THAT(ExtractZipMember(path, "other.bin", folder).error().message, HasSubstr("other.bin"));
}

TEST_F(ZipArchiveTest, VisitsMembersInOnePassEachAloneInTheFolder) {
  // Enough members that reopening the archive per member would show in the count.
  std::vector<std::pair<std::string, std::string>> members;
  for (int i = 0; i < 2000; ++i)
    members.emplace_back("m" + std::to_string(i) + ".bin", std::to_string(i));
  members.emplace_back("sub/last.bin", "last");
  const auto path = Archive(Zip(members));
  // Asked in the reverse of the archive's order, one twice.
  std::vector<std::string> wanted{"sub/last.bin"};
  for (int i = 1999; i >= 0; --i)
    wanted.push_back(members[static_cast<std::size_t>(i)].first);
  wanted.push_back("m7.bin");

  std::vector<std::size_t> order;
  bool alone = true;
  const auto opens = ArchiveOpenCount();
  Status visited = VisitExtractedMembers(
      path, wanted, folder, [&](std::size_t index, const std::filesystem::path& file) {
        EXPECT_EQ(file, folder / Utf8ToPath(wanted[index]));
        alone = alone && std::distance(std::filesystem::recursive_directory_iterator(folder), {}) ==
                             (index == 0 ? 2 : 1);
        order.push_back(index);
        return Status{};
      });
  ASSERT_TRUE(visited.ok()) << visited.error().message;
  EXPECT_EQ(ArchiveOpenCount() - opens, 1u);
  EXPECT_TRUE(alone);
  ASSERT_EQ(order.size(), wanted.size());
  EXPECT_EQ(order.front(), 2000u);  // archive order: m0.bin first, asked second to last
  EXPECT_EQ(order[7], 1993u);
  EXPECT_EQ(order[8], 2001u);  // the second ask of m7.bin, on the same extraction
  EXPECT_EQ(order.back(), 0u);
  EXPECT_TRUE(std::filesystem::is_empty(folder));

  // A missing member, or an error of the visit, ends it with nothing left in the folder.
  const std::vector<std::string> missing{"m1.bin", "none.bin"};
  EXPECT_THAT(
      VisitExtractedMembers(path, missing, folder,
                            [](std::size_t, const std::filesystem::path&) { return Status{}; })
          .error()
          .message,
      HasSubstr("holds no member \"none.bin\""));
  int visits = 0;
  EXPECT_EQ(VisitExtractedMembers(path, wanted, folder,
                                  [&visits](std::size_t, const std::filesystem::path&) {
                                    ++visits;
                                    return Status{Error{"stop"}};
                                  })
                .error()
                .message,
            "stop");
  EXPECT_EQ(visits, 1);
  EXPECT_TRUE(std::filesystem::is_empty(folder));
  const std::vector<std::string> unsafe{"../m1.bin"};
  EXPECT_FALSE(VisitExtractedMembers(path, unsafe, folder, {}).ok());
  // A file already there under a member's name is refused, not replaced or deleted.
  test::WriteTestFile(folder / "m1.bin", "mine");
  EXPECT_FALSE(VisitExtractedMembers(path, missing, folder, {}).ok());
  EXPECT_EQ(test::ReadTestFile(folder / "m1.bin"), "mine");
}

TEST_F(ZipArchiveTest, NothingIsEverWrittenOutsideTheFolder) {
  for (const std::string name :
       {"../evil.bin", "sub/../../evil.bin", "/tmp/evil.bin", "..\\evil.bin", "C:evil.bin"}) {
    auto result = ExtractZipMember(Archive(Zip({{name, "payload"}})), name, folder);
    EXPECT_THAT(result.error().message, HasSubstr("refused")) << name;
  }
  EXPECT_FALSE(std::filesystem::exists(PathOf("deep/evil.bin")) ||
               std::filesystem::exists(PathOf("evil.bin")));

  const auto outside = PathOf("outside");
  std::filesystem::create_directory(outside);
  test::WriteTestFile(outside / "victim", "keep me");
  const auto path = Archive(
      Link(Zip({{"link.bin", (outside / "victim").string()}, {"sub/x.bin", "x"}, {"y.bin", "y"}})));
  EXPECT_THAT(ExtractZipMember(path, "link.bin", folder).error().message, HasSubstr("link"));

  // Links planted in the folder: one on the member's path is refused, one under the
  // member's own name is replaced, never written through.
  std::filesystem::create_directory_symlink(outside, folder / "sub");
  EXPECT_FALSE(ExtractZipMember(path, "sub/x.bin", folder).ok());
  std::filesystem::create_symlink(outside / "victim", folder / "y.bin");
  ASSERT_TRUE(ExtractZipMember(path, "y.bin", folder).ok());
  EXPECT_FALSE(std::filesystem::is_symlink(folder / "y.bin"));
  EXPECT_EQ(test::ReadTestFile(outside / "victim"), "keep me");
  EXPECT_FALSE(std::filesystem::exists(outside / "x.bin"));
}

TEST_F(ZipArchiveTest, RefusesOversizedAndLyingMembers) {
  constexpr std::uint64_t kLimit = 64 * 1024;
  const auto huge = Archive(Claim(Zip({{"huge.bin", "tiny"}}), kMaxZipMemberSize + 1));
  EXPECT_THAT(ExtractZipMember(huge, "huge.bin", folder).error().message,
              HasSubstr("larger than 64 MiB"));

  // A bomb claims little: it is stopped by what it unpacks to, not by what it says.
  const auto bomb = Archive(Claim(Zip({{"bomb.bin", std::string(kLimit * 64, '\0')}}), 100));
  EXPECT_THAT(ExtractZipMember(bomb, "bomb.bin", folder, kLimit).error().message,
              HasSubstr("more than 65536 bytes"));
  const auto shorter = Archive(Claim(Zip({{"s.bin", std::string(500, 'x')}}), 5000));
  EXPECT_FALSE(ExtractZipMember(shorter, "s.bin", folder).ok());
  EXPECT_TRUE(std::filesystem::is_empty(folder));  // no half-written file stays behind
}

TEST_F(ZipArchiveTest, DamagedArchiveListsWhatCanBeRead) {
  std::string data(20000, '\0');
  for (std::size_t i = 0; i < data.size(); ++i)
    data[i] = static_cast<char>(i * 7919 >> 3);
  const std::string zip = Zip({{"one.bin", data}, {"two.bin", data}, {"three.bin", data}});
  // Cut inside the third member's local header: the directory at the end is gone as well.
  const auto third = zip.find("PK\x03\x04", zip.find("PK\x03\x04", 1) + 1);
  auto listing = ListZipEntries(Archive(zip.substr(0, third + 10)), kRomMasks);
  EXPECT_THAT(listing->names, ElementsAre("one.bin", "two.bin"));
  EXPECT_NE(listing->damage, "");

  // Not one member can be read: the file only starts like an archive, and is refused.
  auto garbage = ListZipEntries(Archive("PK but nothing else"), kRomMasks);
  ASSERT_FALSE(garbage.ok());
  EXPECT_THAT(garbage.error().message, HasSubstr("Cannot read the ZIP archive"));
}

TEST_F(ZipArchiveTest, DuplicatedNamesAndAFailureHalfWayLeaveNothingBehind) {
  // Two members of one name: the first is the one listed first and the one extracted.
  const auto twice = Archive(Zip({{"a.bin", "first"}, {"a.bin", "second"}}));
  EXPECT_THAT(ListZipEntries(twice, kRomMasks)->names, ElementsAre("a.bin", "a.bin"));
  ASSERT_TRUE(ExtractZipMember(twice, "a.bin", folder).ok());
  EXPECT_EQ(test::ReadTestFile(folder / "a.bin"), "first");
  ASSERT_TRUE(RemoveExtractedMember(folder, "a.bin").ok());

  // The second member is a bomb: the first, already written, is taken back.
  const auto path =
      Archive(Zip({{"sub/ok.bin", "fine"}, {"deep/bomb.bin", std::string(1 << 20, 'z')}}));
  const std::vector<std::string> both = {"sub/ok.bin", "deep/bomb.bin"};
  EXPECT_FALSE(ExtractZipMembers(path, both, folder, 64 * 1024).ok());
  EXPECT_TRUE(std::filesystem::is_empty(folder));

  // "." steps name the folder they stand in: "d/sub/." is the file d/sub, taken back whole.
  const auto dotted = Archive(Zip({{"d/sub/.", "dot"}, {"d/./e.bin", "e"}}));
  const std::vector<std::string> names = ListZipEntries(dotted, kAllFilesMask)->names;
  ASSERT_THAT(names, ElementsAre("d/sub/.", "d/./e.bin"));
  auto extracted = ExtractZipMembers(dotted, names, folder);
  ASSERT_TRUE(extracted.ok()) << extracted.error().message;
  EXPECT_EQ(test::ReadTestFile(folder / "d" / "sub"), "dot");
  for (const std::string& name : names)
    ASSERT_TRUE(RemoveExtractedMember(folder, name).ok());
  EXPECT_TRUE(std::filesystem::is_empty(folder));
  EXPECT_EQ(UnsafeMemberNameReason("./."), "it is a folder");

  // A step too long for the file system fails the member after the folders above it were
  // made: they go again.
  const std::string tooLong = "d/e/" + std::string(300, 'x') + "/f.bin";
  EXPECT_FALSE(ExtractZipMember(Archive(Zip({{tooLong, "f"}})), tooLong, folder).ok());
  EXPECT_TRUE(std::filesystem::is_empty(folder));
}

TEST_F(ZipArchiveTest, SevenZipArchivesGoThroughTheSameCode) {
  auto built = BuildZipArchive(
      {{"a.bin", "alpha"}, {"sub/b.smd", "beta"}, {"c.txt", "gamma"}, {"../evil.bin", "x"}},
      ArchiveFormat::SevenZip);
  ASSERT_TRUE(built.ok()) << built.error().message;
  const auto path = Archive(*built, "a.7z");
  EXPECT_TRUE(IsZipFile(path) && HasZipSignature(path));
  EXPECT_EQ(ArchiveFormatOf(path), ArchiveFormat::SevenZip);
  EXPECT_EQ(ArchiveFormatOf(Archive(Zip({{"a.bin", "x"}}))), ArchiveFormat::Zip);

  auto listing = ListZipEntries(path, kRomMasks);
  ASSERT_TRUE(listing.ok());
  EXPECT_THAT(listing->names, ElementsAre("a.bin", "sub/b.smd", "../evil.bin"));
  EXPECT_EQ(listing->damage, "");
  auto extracted = ExtractZipMember(path, "sub/b.smd", folder);
  ASSERT_TRUE(extracted.ok()) << extracted.error().message;
  EXPECT_EQ(test::ReadTestFile(*extracted), "beta");
  ASSERT_TRUE(RemoveExtractedMember(folder, "sub/b.smd").ok());

  EXPECT_EQ(ExtractZipMember(path, "../evil.bin", folder).error().message,
            "The 7z member \"../evil.bin\" is refused: its name leads out of the folder it is "
            "extracted to.");
  EXPECT_TRUE(std::filesystem::is_empty(folder));

  // Garbage after a valid signature is no archive, an archive cut short is damage; neither
  // is a crash.
  const std::string signature(kSevenZipSignature);
  auto garbage = ListZipEntries(Archive(signature + std::string(100, '\x42'), "g.7z"), kRomMasks);
  ASSERT_FALSE(garbage.ok());
  EXPECT_THAT(garbage.error().message, HasSubstr("7z archive"));
  // Its directory is at the end: cut in half, not one member can be read.
  const auto cut = Archive(built->substr(0, built->size() / 2), "cut.7z");
  EXPECT_THAT(ListZipEntries(cut, kRomMasks).error().message, HasSubstr("7z archive"));
  EXPECT_THAT(ExtractZipMember(cut, "a.bin", folder).error().message, HasSubstr("7z archive"));
  EXPECT_TRUE(std::filesystem::is_empty(folder));
}

TEST(ArchiveLibraryVersion, AnOutdatedLibraryIsReported) {
  test::ScriptedHost host;
  CheckArchiveLibraryVersion(host, 3006002);
  CheckArchiveLibraryVersion(host, 3007000);
  EXPECT_TRUE(host.Events().empty());
  CheckArchiveLibraryVersion(host, 3006001);
  EXPECT_THAT(host.Texts(), ElementsAre(HasSubstr("are outdated")));
}

}  // namespace
}  // namespace romsteward
