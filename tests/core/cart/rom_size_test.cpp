#include <gtest/gtest.h>

#include "core/cart/checksum.h"
#include "core/cart/detect.h"
#include "core/cart/header.h"
#include "core/cart/header_repair.h"
#include "core/cart/interleave.h"
#include "core/cart/logical_io.h"
#include "core/cart/rom_size_check.h"
#include "core/cart/rom_size_repair.h"
#include "core/common/strings.h"
#include "core/settings/app_settings.h"
#include "store_fixture.h"
#include "support/cart_images.h"
#include "support/scripted_host.h"

namespace romsteward {
namespace {

constexpr std::size_t kKib = 1024;

// A cartridge of `size` bytes whose header claims `claimed`. The letter B is kept out of its
// first block, so that the text probe finds "BY" only where a test puts it.
std::string Cartridge(std::size_t size, std::uint64_t claimed,
                      std::string_view firstBlockText = {}) {
  std::string logical = test::MakeCartridge(size, 11);
  for (std::size_t i = 0x200; i < kBlockSize; ++i) {
    if (logical[i] == 'B' || logical[i] == 'b') logical[i] = 'C';
  }
  logical.replace(0x300, firstBlockText.size(), firstBlockText);
  logical.replace(0x1A4, 4, NumberToBytes(claimed - 1, 4));
  return logical;
}

class RomSizeTest : public test::StoreTest {
protected:
  // The image in `layout`, split sets in volumes of 32 KiB; returns the path to select.
  std::filesystem::path Write(std::string_view logical, Layout layout) {
    if (layout == Layout::SplitFirst)
      return test::WriteSplitSet(PathOf("game"), logical, 32 * kKib)[0];
    const auto path = PathOf("game." + ToLowerAscii(LayoutCode(layout)));
    test::WriteImage(path, logical, layout);
    return path;
  }
  static Layout LayoutOf(const std::filesystem::path& path) {
    auto file = BinaryFile::Open(path);
    return file ? DetectRomFormat(*file) : Layout::NoRom;
  }
  static std::uint16_t Sum(const std::filesystem::path& path) {
    auto file = BinaryFile::Open(path);
    if (!file) return 0;
    auto sum = CalcChecksum(*file, DetectRomFormat(*file));
    EXPECT_TRUE(sum) << sum.error().message;
    return sum ? *sum : 0;
  }
};

TEST_F(RomSizeTest, EachDisagreementGetsItsOwnPrompt) {
  struct Case {
    std::string name;
    std::string logical;
    std::string text;
    bool truncateOffered;
  };
  const Case cases[] = {
      {"longer, credits", Cartridge(64 * kKib, 48 * kKib, "cracked by nobody"),
       "ROM size is wrong! This ROM probably has an intro or trainer, i advise to fix the "
       "header. Do you want to:",
       true},
      {"longer", Cartridge(64 * kKib, 48 * kKib),
       "ROM size is wrong! This ROM can be destroyed if you truncate it. Do you want to:", true},
      {"shorter", Cartridge(64 * kKib, 80 * kKib),
       "The ROM is shorter than it should be, according to the header. One of them is probably "
       "corrupt. Do you want to:",
       false},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    const auto image = Write(c.logical, Layout::Bin);
    test::ScriptedHost host;
    host.AnswerQuestionBox(kEscolhaCancel);
    EXPECT_EQ(CheckRomSize(host, image), RepairOutcome::LeftAsIs);
    ASSERT_EQ(host.Events().size(), 1u) << host.Transcript();
    const QuestionBox& box = host.Events()[0].box;
    EXPECT_EQ(box.title, "Error!");
    EXPECT_EQ(box.text, c.text);
    EXPECT_EQ(box.yes.caption, "&Fix header");
    EXPECT_EQ(box.no.caption, "&Truncate");
    EXPECT_EQ(box.no.hidden, !c.truncateOffered);
    EXPECT_EQ(test::ReadTestFile(image), c.logical);
  }
}

TEST_F(RomSizeTest, ReadOnlyAndCommandLineRunsOfferNothing) {
  const auto longer = Write(Cartridge(64 * kKib, 48 * kKib), Layout::Bin);
  test::ScriptedHost quiet;
  EXPECT_EQ(CheckRomSize(quiet, longer, true), RepairOutcome::LeftAsIs);
  EXPECT_TRUE(quiet.Events().empty());

  test::MakeReadOnly(longer);
  test::ScriptedHost host;
  EXPECT_EQ(CheckRomSize(host, longer), RepairOutcome::LeftAsIs);
  ASSERT_EQ(host.Events().size(), 1u);
  EXPECT_EQ(host.Events()[0].kind, test::PromptKind::Message);
  EXPECT_EQ(host.Events()[0].text, "ROM size is wrong! But you can't fix it while it's read-only!");

  // A file shorter than its header is reported on a command-line run all the same.
  const auto shorter = PathOf("short.bin");
  test::WriteImage(shorter, Cartridge(64 * kKib, 80 * kKib), Layout::Bin);
  test::ScriptedHost run;
  run.AnswerQuestionBox(kEscolhaClosed);
  CheckRomSize(run, shorter, true);
  EXPECT_EQ(run.Events().size(), 1u);
}

TEST_F(RomSizeTest, TheSplitSetSizeLeavesOutEveryCopierHeader) {
  const auto first = Write(Cartridge(96 * kKib, 96 * kKib), Layout::SplitFirst);
  auto file = BinaryFile::Open(first);
  ASSERT_TRUE(file);
  EXPECT_EQ(FileRomSize(*file, Layout::SplitFirst), 96 * kKib);
  test::ScriptedHost host;
  EXPECT_EQ(CheckRomSize(host, first), RepairOutcome::Sound);
  EXPECT_TRUE(host.Events().empty());
}

TEST_F(RomSizeTest, BothRepairsOnEveryLayoutKeepTheImageWhole) {
  const std::string logical = Cartridge(96 * kKib, 48 * kKib);
  const std::string kept = logical.substr(0, 48 * kKib);
  for (const Layout layout : {Layout::Bin, Layout::Smd, Layout::Md, Layout::SplitFirst}) {
    SCOPED_TRACE(LayoutCode(layout));
    {
      const auto image = Write(logical, layout);
      const std::uint16_t before = Sum(image);
      test::ScriptedHost host;
      host.AnswerQuestionBox(kEscolhaYes);
      EXPECT_EQ(CheckRomSize(host, image), RepairOutcome::Repaired) << host.Transcript();
      EXPECT_EQ(LayoutOf(image), layout);
      EXPECT_EQ(Sum(image), before);
      auto file = BinaryFile::Open(image);
      ASSERT_TRUE(file);
      EXPECT_EQ(ReadCartridgeHeader(*file).rom.end, 96 * kKib - 1);
    }
    {
      const auto image = Write(logical, layout);
      test::ScriptedHost host;
      host.AnswerQuestionBox(kEscolhaNo);
      EXPECT_EQ(CheckRomSize(host, image), RepairOutcome::Repaired) << host.Transcript();
      EXPECT_EQ(LayoutOf(image), layout);
      EXPECT_EQ(Sum(image), ChecksumOfLogicalImage(kept));
      test::ScriptedHost again;
      EXPECT_EQ(CheckRomSize(again, image), RepairOutcome::Sound) << again.Transcript();
      EXPECT_EQ(CheckEmbeddedHeader(again, Settings(), image, "game"), RepairOutcome::Sound)
          << again.Transcript();
      if (layout == Layout::SplitFirst) {
        // The cut fell inside the second volume; the third went.
        EXPECT_EQ(std::filesystem::file_size(PathOf("game.2")), 512 + 16 * kKib);
        EXPECT_FALSE(std::filesystem::exists(PathOf("game.3")));
      } else {
        auto file = BinaryFile::Open(image);
        ASSERT_TRUE(file);
        EXPECT_EQ(ReadLogicalImage(*file, layout).value(), kept);
      }
    }
  }
}

TEST_F(RomSizeTest, TruncationNeedsWholeBlocks) {
  const auto image = Write(Cartridge(64 * kKib, 40 * kKib), Layout::Smd);
  const std::string before = test::ReadTestFile(image);
  test::ScriptedHost host;
  host.AnswerQuestionBox(kEscolhaNo);
  EXPECT_EQ(CheckRomSize(host, image), RepairOutcome::Failed);
  EXPECT_EQ(host.Events().back().icon, MessageIcon::Critical);
  EXPECT_EQ(test::ReadTestFile(image), before);
}

}  // namespace
}  // namespace romsteward
