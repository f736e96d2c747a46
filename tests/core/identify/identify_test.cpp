#include "core/identify/identify.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "core/cart/convert.h"
#include "core/common/strings.h"
#include "core/demo/demo_collection.h"
#include "core/demo/demo_dat.h"
#include "core/identify/dat_rename.h"
#include "support/byte_files.h"
#include "support/cart_images.h"
#include "support/scripted_host.h"

namespace romsteward {
namespace {

using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

RomHashes HashOf(std::string_view bytes) {
  RomHasher hasher;
  hasher.Update(bytes.substr(0, 3));
  hasher.Update(bytes.substr(3));
  return hasher.Finish();
}

TEST(RomHasher, GivesTheStandardCrc32AndSha1InPieces) {
  const RomHashes hashes = HashOf("123456789");
  EXPECT_EQ(Crc32Text(hashes.crc32), "cbf43926");
  EXPECT_EQ(hashes.size, 9u);
  EXPECT_EQ(HashOf("abc").sha1, "a9993e364706816aba3e25717850c26c9cd0d89d");
}

class ImageHashing : public test::ByteFileTest {};

TEST_F(ImageHashing, EveryLayoutHashesAsTheBinItConvertsTo) {
  const std::string logical = test::MakeCartridge(64 * 1024, 3);
  const RomHashes plain = HashOf(logical);
  for (const Layout layout : {Layout::Bin, Layout::Smd, Layout::Md}) {
    const auto path = PathOf("game." + std::string(LayoutCode(layout)));
    test::WriteImage(path, logical, layout);
    auto image = HashImageFile(path);
    ASSERT_TRUE(image.ok()) << image.error().message;
    EXPECT_EQ(image->layout, layout);
    EXPECT_EQ(image->hashes, plain) << LayoutCode(layout);
    auto inMemory = HashImageBytes(EncodeImage(logical, layout), "member");
    ASSERT_TRUE(inMemory.ok());
    EXPECT_EQ(inMemory->hashes, plain);
  }
  const auto volumes = test::WriteSplitSet(PathOf("set."), logical, 32 * 1024);
  auto set = HashImageFile(volumes[0]);
  ASSERT_TRUE(set.ok());
  EXPECT_EQ(set->hashes, plain);
  EXPECT_THAT(HashImageFile(volumes[1]).error().message, HasSubstr("later volume"));
  // Anything that is no image is hashed as it is.
  EXPECT_EQ(HashImageFile(Put("notes.txt", "123456789"))->hashes, HashOf("123456789"));
}

TEST_F(ImageHashing, DataThatCannotBePutInPlainOrderIsRefused) {
  const std::string smd = EncodeImage(test::MakeCartridge(32 * 1024), Layout::Smd);
  EXPECT_THAT(HashImageFile(Put("cut.smd", smd.substr(0, smd.size() - 100))).error().message,
              HasSubstr("not a whole number of 16 KiB blocks"));
  EXPECT_THAT(HashImageBytes(smd.substr(0, 1000), "m").error().message,
              HasSubstr("not a whole number"));
  const std::string md = EncodeImage(test::MakeCartridge(32 * 1024), Layout::Md);
  EXPECT_THAT(HashImageBytes(md + "x", "odd.md").error().message, HasSubstr("odd length"));
  EXPECT_FALSE(HashImageFile(PathOf("missing.bin")).ok());
}

TEST(DatIndex, EveryHashTheDatGivesMustAgree) {
  const RomHashes abc = HashOf("abc");
  const auto rom = [](std::optional<std::uint32_t> crc, std::string sha1,
                      std::optional<std::uint64_t> size = std::nullopt) {
    return DatRom{"r.bin", size, crc, std::move(sha1), {}};
  };
  DatFile dat;
  dat.games = {{"Both", {rom(abc.crc32, abc.sha1)}}};
  EXPECT_EQ(DatIndex(dat).Find(abc)->matchedBy, "crc32+sha1");
  dat.games = {{"Sha1 only", {rom(std::nullopt, abc.sha1)}}};
  EXPECT_EQ(DatIndex(dat).Find(abc)->matchedBy, "sha1");
  dat.games = {{"Crc only", {rom(abc.crc32, "")}}};
  const auto crcOnly = DatIndex(dat).Find(abc);
  ASSERT_TRUE(crcOnly);
  EXPECT_EQ(crcOnly->matchedBy, "crc32");
  EXPECT_EQ(crcOnly->game, "Crc only");
  // A CRC collision never overrules the SHA-1, nor a wrong size.
  dat.games = {{"Collision", {rom(abc.crc32, std::string(40, '0'))}},
               {"Other size", {rom(abc.crc32, "", 4)}}};
  EXPECT_FALSE(DatIndex(dat).Find(abc));
}

class DemoIdentification : public test::ByteFileTest {
protected:
  void SetUp() override { ASSERT_TRUE(WriteDemoCollection(Dir()).ok()); }
  std::vector<IdentifiedImage> Identify(std::vector<std::string> places, Host* host = nullptr) {
    auto dat = ReadDatFile(PathOf(kDemoDatName));
    EXPECT_TRUE(dat.ok());
    m_dat = std::move(*dat);
    auto images = CollectImages(places);
    IdentifyImages(images, DatIndex(m_dat), host);
    return images;
  }
  static std::string Summary(const IdentifiedImage& image) {
    std::string name = PathToUtf8(image.path.filename());
    if (!image.member.empty()) name += "|" + image.member;
    return name + ": " +
           (image.match    ? image.match->game + " by " + image.match->matchedBy
            : image.hashes ? "unknown"
                           : "error");
  }
  DatFile m_dat;
};

TEST_F(DemoIdentification, MatchesSomeListsTheUnknownAndKeepsSplitSetsWhole) {
  test::ScriptedHost host;
  auto images = Identify({PathToUtf8(Dir()), PathToUtf8(PathOf("gone"))}, &host);
  std::vector<std::string> summaries;
  for (const auto& image : images)
    summaries.push_back(Summary(image));
  EXPECT_THAT(summaries,
              ElementsAre("Broken Lantern (E).bin: unknown", "Coral Archive (B).bin: unknown",
                          "Harbor Lights (U).smd: Harbor Lights (USA) by crc32+sha1",
                          "Iron Meadow.1: Iron Meadow (Europe) by crc32+sha1",
                          "Pocket Pair.zip|Tin Soldier (U).bin: Tin Soldier (USA) by sha1",
                          "Pocket Pair.zip|Velvet Comet (J).smd: unknown",
                          "Quiet Orbit (J).md: Quiet Orbit (Japan) by crc32",
                          "Star Courier (W).bin: Star Courier (World) (Rev 1) by crc32+sha1",
                          "gone: error"));
  EXPECT_EQ(images[3].laterVolumes.size(), 2u);
  EXPECT_THAT(images.back().problem, HasSubstr("no such file or directory"));
  EXPECT_EQ(host.ProgressReports().back(), 100);
  EXPECT_EQ(m_dat.problems.size(), 1u);
}

TEST_F(DemoIdentification, ALostFirstVolumeOrADamagedArchiveIsListedNotDropped) {
  std::filesystem::remove(PathOf("Iron Meadow.1"));
  test::WriteTestFile(PathOf("Torn.zip"), "PK\x03\x04 not really an archive");
  // A 7z archive whose second member is cut off, and a FIFO.
  auto sevenZip =
      BuildZipArchive({{"a.bin", std::string(5000, 'a')}, {"b.bin", std::string(5000, 'b')}},
                      ArchiveFormat::SevenZip);
  ASSERT_TRUE(sevenZip.ok());
  test::WriteTestFile(PathOf("Cut.7z"), sevenZip->substr(0, sevenZip->size() - 40));
  ASSERT_EQ(::mkfifo(PathOf("pipe.bin").c_str(), 0600), 0);
  auto images = Identify({PathToUtf8(PathOf("Iron Meadow.2")), PathToUtf8(PathOf("Torn.zip")),
                          PathToUtf8(PathOf("Cut.7z")), PathToUtf8(PathOf("pipe.bin"))});
  ASSERT_GE(images.size(), 4u);
  EXPECT_THAT(images[0].problem, HasSubstr("later volume"));
  EXPECT_THAT(images[1].problem, AllOf(HasSubstr("ZIP archive"), HasSubstr("Torn.zip")));
  EXPECT_THAT(images[images.size() - 2].problem,
              AllOf(HasSubstr("7z archive"), HasSubstr(PathToUtf8(PathOf("Cut.7z")))));
  EXPECT_THAT(images.back().problem, HasSubstr("pipe.bin: it is not a regular file"));
}

TEST_F(DemoIdentification, RenamingNeverReplacesAndRefusesNamesThatLeadElsewhere) {
  test::WriteTestFile(PathOf("Harbor Lights (USA).smd"), "in the way");
  auto images = Identify({PathToUtf8(Dir())});
  images[0].match = DatMatch{"../escape", "r", "sha1"};  // a hostile DAT's name
  images[1].match = DatMatch{"a/b", "r", "sha1"};
  const RenamePlan plan = PlanDatRenames(images);
  std::vector<std::string> targets;
  for (const auto& step : plan.steps)
    targets.push_back(PathToUtf8(step.to.filename()));
  EXPECT_THAT(targets, ElementsAre("Iron Meadow (Europe).1", "Iron Meadow (Europe).2",
                                   "Iron Meadow (Europe).3", "Quiet Orbit (Japan).md",
                                   "Star Courier (World) (Rev 1).bin"));
  ASSERT_EQ(plan.skipped.size(), 4u);
  EXPECT_THAT(plan.skipped[0], HasSubstr("\"../escape\" cannot be a file name"));
  EXPECT_THAT(plan.skipped[2], HasSubstr("Harbor Lights (USA).smd already exists"));
  EXPECT_THAT(plan.skipped[3], HasSubstr("inside an archive"));

  // Something appearing after the plan was made still is not replaced.
  test::WriteTestFile(PathOf("Quiet Orbit (Japan).md"), "late");
  const auto failures = ApplyRenames(plan);
  ASSERT_EQ(failures.size(), 1u);
  EXPECT_THAT(failures[0], HasSubstr("already exists"));
  EXPECT_EQ(test::ReadTestFile(PathOf("Quiet Orbit (Japan).md")), "late");
  EXPECT_TRUE(std::filesystem::exists(PathOf("Iron Meadow (Europe).3")));
  EXPECT_FALSE(std::filesystem::exists(PathOf("Iron Meadow.1")));
}

}  // namespace
}  // namespace romsteward
