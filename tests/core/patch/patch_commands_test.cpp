#include "core/patch/patch_commands.h"

#include <gtest/gtest.h>

#include "core/patch/patch_store_fixture.h"

namespace romsteward {
namespace {

using test::Bytes;
using test::PromptKind;

class PatchCommands : public test::PatchStoreTest {};

TEST_F(PatchCommands, IpsRecordsBecomeNumberedPatchesWithTheImagesOldBytes) {
  const auto image = Put("GAME.BIN", "0123456789");
  const auto ips = Put("cheat.ips", "PATCH" + Bytes({0, 0, 2, 0, 3}) + Bytes({'|', 0, 'x'}) +
                                        Bytes({0, 0, 8, 0, 4}) + "WXYZ" + "EOF");
  m_host.AnswerOpenFile(ips.string()).AnswerText("  cheat  ");
  ConvertIpsToDynamicPatchesCommand(m_host, *m_store, image, "GAME.BIN", Dir().string());

  EXPECT_EQ(m_host.EventsOf(PromptKind::OpenFile)[0].dialog.title, "Open IPS file");
  const auto ask = m_host.EventsOf(PromptKind::Text)[0];
  EXPECT_EQ(ask.text, "Type the base name of the patches that will be generated from the ips");
  EXPECT_EQ(ask.title, "Base name");
  EXPECT_EQ(m_host.Texts().back(), "Romsteward generated 2 dynamic patches from the IPS!");
  EXPECT_EQ(Stored("GAME.BIN|cheat0"), "3|" + Bytes({'|', 0, 'x', '|'}) + "234");
  // Past the image's end the old bytes are what there is.
  EXPECT_EQ(Stored("GAME.BIN|cheat1"), "9|WXYZ|89");
  EXPECT_EQ(test::ReadTestFile(image), "0123456789");

  // A blank name or a cancelled dialog ends the command without a word.
  test::ScriptedHost quiet;
  quiet.AnswerOpenFile(ips.string()).AnswerText("   ");
  ConvertIpsToDynamicPatchesCommand(quiet, *m_store, image, "GAME.BIN", Dir().string());
  quiet.AnswerOpenFile(std::nullopt);
  ConvertIpsToDynamicPatchesCommand(quiet, *m_store, image, "GAME.BIN", Dir().string());
  EXPECT_TRUE(quiet.EventsOf(PromptKind::Message).empty());
}

TEST_F(PatchCommands, DamagedIpsConvertsItsCompleteRecordsAndSaysSo) {
  const auto image = Put("GAME.BIN", "0123456789");
  const std::string ips = "PATCH" + Bytes({0, 0, 1, 0, 1}) + "A" + Bytes({0, 0, 5, 0, 9}) + "BC";
  EXPECT_EQ(StoreIpsAsDynamicPatches(m_host, *m_store, image, "GAME.BIN", ips, "cut.ips", "p"), 1u);
  ASSERT_EQ(m_host.Texts().size(), 2u);
  EXPECT_NE(m_host.Texts()[0].find("cut.ips"), std::string::npos);
  EXPECT_EQ(m_host.Texts()[1], "Romsteward generated 1 dynamic patches from the IPS!");
  EXPECT_EQ(Stored("GAME.BIN|p0"), "2|A|1");
}

TEST_F(PatchCommands, RemovalOffersOnlyThisImagesPatchesAndAsksFirst) {
  EXPECT_FALSE(RemoveDynamicPatchesCommand(m_host, *m_store, "A.BIN"));
  EXPECT_EQ(m_host.Events().back().text, "No dynamic patches found");
  EXPECT_EQ(m_host.Events().back().icon, MessageIcon::Exclamation);

  StoreRaw("A.BIN|lives", "1|a|b");
  StoreRaw("A.BIN2|time", "1|a|b");
  m_host.AnswerList("lives").AnswerYesNo(Answer::No);
  EXPECT_FALSE(RemoveDynamicPatchesCommand(m_host, *m_store, "a.bin"));
  const auto list = m_host.EventsOf(PromptKind::List).back();
  EXPECT_EQ(list.title, "Remove dynamic patches");
  EXPECT_EQ(list.items, std::vector<std::string>{"lives"});
  EXPECT_EQ(m_host.EventsOf(PromptKind::YesNo).back().text,
            "Are you sure you want to remove 'lives' dynamic patch?");
  EXPECT_EQ(Stored("A.BIN|lives"), "1|a|b");

  m_host.AnswerList("lives").AnswerYesNo(Answer::Yes);
  EXPECT_TRUE(RemoveDynamicPatchesCommand(m_host, *m_store, "a.bin"));
  EXPECT_EQ(Stored("A.BIN|lives"), "<missing>");
  EXPECT_EQ(Stored("A.BIN2|time"), "1|a|b");
}

}  // namespace
}  // namespace romsteward
