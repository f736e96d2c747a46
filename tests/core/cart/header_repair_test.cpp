#include "core/cart/header_repair.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "core/cart/checksum.h"
#include "core/cart/convert.h"
#include "core/cart/detect.h"
#include "core/cart/header.h"
#include "core/cart/interleave.h"
#include "core/cart/logical_io.h"
#include "core/cart/rom_size_check.h"
#include "core/common/strings.h"
#include "support/cart_images.h"
#include "support/scripted_host.h"
#include "support/settings_fixture.h"

namespace romsteward {
namespace {

class HeaderRepairTest : public test::SettingsTest {
protected:
  static void Poke(const std::filesystem::path& path, std::size_t offset, char byte) {
    std::string bytes = test::ReadTestFile(path);
    bytes[offset] = byte;
    test::WriteTestFile(path, bytes);
  }
  static std::string CopierHeader(const std::filesystem::path& path) {
    return test::ReadTestFile(path).substr(0, kCopierHeaderSize);
  }
};

TEST_F(HeaderRepairTest, ACopierHeaderWithAWrongBlockCountIsRewritten) {
  const auto image = PathOf("game.smd");
  test::WriteImage(image, test::MakeCartridge(64 * 1024), Layout::Smd);
  Poke(image, 0, 9);
  test::ScriptedHost host;
  host.AnswerYesNo(Answer::No).AnswerYesNo(Answer::Yes);
  EXPECT_EQ(CheckEmbeddedHeader(host, Settings(), image, "game"), RepairOutcome::LeftAsIs);
  EXPECT_EQ(CopierHeader(image)[0], 9);
  EXPECT_EQ(CheckEmbeddedHeader(host, Settings(), image, "game"), RepairOutcome::Repaired);
  EXPECT_EQ(CopierHeader(image), BuildSmdHeader(4, false));
  EXPECT_EQ(host.Texts().back(), "The embedded SMD header is corrupt!\r\nDo you want to fix it?");
  EXPECT_EQ(CheckEmbeddedHeader(host, Settings(), image, "game"), RepairOutcome::Sound);
}

TEST_F(HeaderRepairTest, ASplitSetIsAskedOnceAndReadOnlyVolumesAreLeft) {
  const auto volumes =
      test::WriteSplitSet(PathOf("game"), test::MakeCartridge(128 * 1024), 32 * 1024);
  Poke(volumes[1], 0, 7);
  Poke(volumes[2], 0, 0);
  Poke(volumes[3], 2, 0x40);  // the last volume says more follow
  test::MakeReadOnly(volumes[1]);

  // Checked from a later volume, the whole set is compared all the same.
  test::ScriptedHost host;
  host.AnswerYesNo(Answer::Yes);
  EXPECT_EQ(CheckEmbeddedHeader(host, Settings(), volumes[3], "game.4"), RepairOutcome::LeftAsIs);
  EXPECT_EQ(host.Texts(),
            (std::vector<std::string>{
                "The embedded SMD header is corrupt, but you can't fix it while this "
                "file is read-only! (volume 2)",
                "The embedded SMD header is corrupt! (volume 3)\r\nDo you want to fix it?"}));
  EXPECT_EQ(CopierHeader(volumes[1])[0], 7);
  EXPECT_EQ(CopierHeader(volumes[2]), BuildSmdHeader(2, true));
  EXPECT_EQ(CopierHeader(volumes[3]), BuildSmdHeader(2, false));
}

TEST_F(HeaderRepairTest, AnInvalidSizeWarnsUntilSilencedForGood) {
  const auto image = PathOf("odd.smd");
  test::WriteTestFile(image, EncodeImage(test::MakeCartridge(64 * 1024), Layout::Smd) + "tail");
  Poke(image, 0, 3);  // the size is judged first: no copier-header question
  test::ScriptedHost host;
  host.AnswerQuestionBox(kEscolhaYes).AnswerQuestionBox(kEscolhaCancel);
  for (int i = 0; i < 3; ++i)
    EXPECT_EQ(CheckEmbeddedHeader(host, Settings(), image, "Odd.smd"), RepairOutcome::LeftAsIs);
  ASSERT_EQ(host.Events().size(), 2u) << host.Transcript();
  const QuestionBox& box = host.Events()[0].box;
  EXPECT_EQ(box.title, "Warning!");
  EXPECT_EQ(
      box.text,
      "This ROM has an unfixable error (invalid rom size), and probably will not work right.");
  EXPECT_TRUE(box.no.hidden);
  Reopen();
  EXPECT_EQ(Settings().GetSetting(kSectionCartridge, "Odd.smd.shutup"), "1");
  EXPECT_EQ(CheckEmbeddedHeader(host, Settings(), image, "Odd.smd"), RepairOutcome::LeftAsIs);
  EXPECT_EQ(CopierHeader(image)[0], 3);
}

constexpr std::size_t kKib = 1024;

// A cartridge of `size` bytes whose header claims `claimed`. The letter B is kept out of its
// first block, so that the probe for "BY" finds one only where a test puts it.
std::string Cartridge(std::size_t size, std::uint64_t claimed, std::string_view credits = {}) {
  std::string logical = test::MakeCartridge(size, 11);
  std::replace_if(
      logical.begin() + 0x200, logical.begin() + kBlockSize,
      [](char c) { return c == 'B' || c == 'b'; }, 'C');
  logical.replace(0x300, credits.size(), credits);
  return logical.replace(0x1A4, 4, NumberToBytes(claimed - 1, 4));
}

class RomSizeTest : public test::SettingsTest {
protected:
  // The image in `layout` (split sets in volumes of 32 KiB); returns the path to select.
  std::filesystem::path Write(std::string_view logical, Layout layout) {
    if (layout == Layout::SplitFirst)
      return test::WriteSplitSet(PathOf("game"), logical, 32 * kKib)[0];
    test::WriteImage(PathOf("game.img"), logical, layout);
    return PathOf("game.img");
  }
  static std::pair<Layout, std::uint16_t> LayoutAndSum(const std::filesystem::path& path) {
    auto file = BinaryFile::Open(path);
    const Layout layout = DetectRomFormat(*file);
    return {layout, CalcChecksum(*file, layout).value()};
  }
};

TEST_F(RomSizeTest, EachDisagreementGetsItsOwnPrompt) {
  const std::tuple<std::string, std::string, bool> cases[] = {
      {Cartridge(64 * kKib, 48 * kKib, "cracked by nobody"),
       "ROM size is wrong! This ROM probably has an intro or trainer, i advise to fix the "
       "header. Do you want to:",
       true},
      {Cartridge(64 * kKib, 48 * kKib),
       "ROM size is wrong! This ROM can be destroyed if you truncate it. Do you want to:", true},
      {Cartridge(64 * kKib, 80 * kKib),
       "The ROM is shorter than it should be, according to the header. One of them is probably "
       "corrupt. Do you want to:",
       false}};
  for (const auto& [logical, text, truncateOffered] : cases) {
    test::ScriptedHost host;
    host.AnswerQuestionBox(kEscolhaCancel);
    EXPECT_EQ(CheckRomSize(host, Write(logical, Layout::Bin)), RepairOutcome::LeftAsIs);
    const QuestionBox& box = host.Events().at(0).box;
    EXPECT_EQ(box.title, "Error!");
    EXPECT_EQ(box.text, text);
    EXPECT_EQ(box.no.hidden, !truncateOffered);
    EXPECT_EQ(test::ReadTestFile(PathOf("game.img")), logical);
  }
}

TEST_F(RomSizeTest, NoChangeWithoutAPossibleRepair) {
  // A header size that is no whole number of blocks cannot be cut to.
  auto image = Write(Cartridge(64 * kKib, 40 * kKib), Layout::Smd);
  const std::string before = test::ReadTestFile(image);
  test::ScriptedHost host;
  host.AnswerQuestionBox(kEscolhaNo);
  EXPECT_EQ(CheckRomSize(host, image), RepairOutcome::Failed);
  EXPECT_EQ(test::ReadTestFile(image), before);

  image = Write(Cartridge(64 * kKib, 48 * kKib), Layout::Bin);
  EXPECT_EQ(CheckRomSize(host, image, true), RepairOutcome::LeftAsIs);  // longer: no word
  test::MakeReadOnly(image);
  EXPECT_EQ(CheckRomSize(host, image), RepairOutcome::LeftAsIs);
  EXPECT_EQ(host.Texts().back(), "ROM size is wrong! But you can't fix it while it's read-only!");
}

TEST_F(RomSizeTest, BothRepairsOnEveryLayoutKeepTheImageWhole) {
  const std::string logical = Cartridge(96 * kKib, 48 * kKib);
  const std::string kept = logical.substr(0, 48 * kKib);
  for (const Layout layout : {Layout::Bin, Layout::Smd, Layout::Md, Layout::SplitFirst}) {
    SCOPED_TRACE(LayoutCode(layout));
    // Fix header: the header takes the pure ROM data's size (a split set's copier headers
    // left out) and nothing else changes.
    auto image = Write(logical, layout);
    const auto before = LayoutAndSum(image);
    test::ScriptedHost host;
    host.AnswerQuestionBox(kEscolhaYes).AnswerQuestionBox(kEscolhaNo);
    EXPECT_EQ(CheckRomSize(host, image), RepairOutcome::Repaired);
    EXPECT_EQ(LayoutAndSum(image), before);
    EXPECT_EQ(ReadCartridgeHeader(BinaryFile::Open(image).value()).rom.end, 96 * kKib - 1);

    // Truncate: the logical bytes that stay are the first 48 KiB, in the same layout.
    image = Write(logical, layout);
    EXPECT_EQ(CheckRomSize(host, image), RepairOutcome::Repaired);
    EXPECT_EQ(LayoutAndSum(image), std::pair(layout, ChecksumOfLogicalImage(kept)));
    EXPECT_EQ(CheckRomSize(host, image), RepairOutcome::Sound);
    EXPECT_EQ(CheckEmbeddedHeader(host, Settings(), image, "game"), RepairOutcome::Sound);
    if (layout != Layout::SplitFirst) {
      EXPECT_EQ(ReadLogicalImage(BinaryFile::Open(image).value(), layout).value(), kept);
    }
  }
  // The cut fell inside the second volume; the third went.
  EXPECT_EQ(std::filesystem::file_size(PathOf("game.2")), 512 + 16 * kKib);
  EXPECT_FALSE(std::filesystem::exists(PathOf("game.3")));
}

}  // namespace
}  // namespace romsteward
