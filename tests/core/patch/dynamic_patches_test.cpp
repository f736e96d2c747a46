#include "core/patch/dynamic_patches.h"

#include <gtest/gtest.h>

#include "core/patch/patch_commands.h"
#include "core/patch/patch_dialog_model.h"
#include "core/patch/patch_run.h"
#include "core/settings/app_settings.h"
#include "support/byte_files.h"
#include "support/scripted_host.h"
#include "support/settings_fixture.h"

namespace romsteward {
namespace {

using test::Bytes;
using test::PromptKind;

/// A settings store in the test's directory and a scripted host.
class PatchStoreTest : public test::SettingsTest {
protected:
  void StoreRaw(std::string_view valueName, std::string_view data) {
    ASSERT_TRUE(Store().SetValue(PatchKeyPath(), valueName, data).ok());
  }
  std::string Stored(std::string_view valueName) const {
    return SettingsTest::Stored(kSectionPatch, valueName);
  }

  test::ScriptedHost m_host;
};

TEST(DynamicPatchValue, FieldsReadBackWhateverBytesTheyHold) {
  const PatchValue awkward{0x1235, Bytes({'|', 0, '|', 'x'}), Bytes({0, 0, '|', '|'})};
  const auto back = DecodePatchValue(EncodePatchValue(awkward));
  ASSERT_TRUE(back.has_value());
  EXPECT_EQ(back->position, 0x1235u);
  EXPECT_EQ(back->newBytes, awkward.newBytes);
  EXPECT_EQ(back->oldBytes, awkward.oldBytes);
  // Old bytes cut short by the image's end still split right.
  EXPECT_EQ(DecodePatchValue("9|" + Bytes({'|', 'B', 'C', 'D', '|', 'x'}))->newBytes, "|BCD");
  for (std::string_view bad : {"", "12|AB", "x|A|B", "0|A|B", "|A|B", "1 |A|B"}) {
    EXPECT_FALSE(DecodePatchValue(bad).has_value()) << bad;
  }
}

TEST_F(PatchStoreTest, EachUseSeesItsOwnSetOfAnImagesPatches) {
  EXPECT_FALSE(HasDynamicPatches(Store(), "A.BIN"));
  ASSERT_TRUE(PatchesForLaunch(Store(), "A.BIN").ok());  // no PATCH key yet: nothing to do
  for (const char* name :
       {"A.BIN|lives", "A.BIN2|sequel", "a.bin|lower", "B.BIN|time", "A.BIN|level"}) {
    StoreRaw(name, "1|a|b");
  }
  EXPECT_TRUE(HasDynamicPatches(Store(), "A.BIN"));
  EXPECT_FALSE(HasDynamicPatches(Store(), "A.bin"));  // the prefix test minds the case
  EXPECT_EQ(ListDynamicPatchNames(Store(), "A.BIN"),
            (std::vector<std::string>{"lives", "lower", "level"}));
  const auto launch = PatchesForLaunch(Store(), "A.BIN");
  std::vector<std::string> launched;
  for (const auto& [name, data] : launch.value())
    launched.push_back(name);
  EXPECT_EQ(launched, (std::vector<std::string>{"A.BIN|lives", "A.BIN2|sequel", "A.BIN|level"}));

  ASSERT_TRUE(RemoveDynamicPatch(Store(), "a.bin", "LIVES").ok());  // any letter case
  EXPECT_EQ(Stored("A.BIN|lives"), "<missing>");
  EXPECT_FALSE(RemoveDynamicPatch(Store(), "A.BIN", "lives").ok());
}

class PatchDialog : public PatchStoreTest {
protected:
  PatchDialogModel Open(std::string_view imageBytes) {
    Put("SONIC.BIN", imageBytes);
    return std::move(PatchDialogModel::Load(m_host, Store(), PathOf("SONIC.BIN"), "SONIC.BIN"))
        .value();
  }
};

TEST_F(PatchDialog, SaveStoresOneBasedPositionNewAndOldBytes) {
  std::string image(0x400, '\0');
  for (std::size_t i = 0; i < image.size(); ++i)
    image[i] = static_cast<char>(i);
  EXPECT_EQ(Open(std::string(1500000, 'x')).SizeText(), "1,500,000 bytes (11 Megabits)");
  PatchDialogModel dialog = Open(image);
  dialog.SetName("lives");
  dialog.SetPosition("1f");
  dialog.SetValue("ABC");  // an odd count gets a leading zero
  ASSERT_TRUE(dialog.Save());
  EXPECT_EQ(dialog.Value(), "0ABC");
  EXPECT_EQ(Stored("SONIC.BIN|lives"), "32|" + Bytes({0x0A, 0xBC, '|', 0x1F, 0x20}));
  dialog.SetPosition("0");  // stored as 1; the same name replaces the patch
  dialog.SetValue("7C00");
  ASSERT_TRUE(dialog.Save());
  EXPECT_EQ(Stored("SONIC.BIN|lives"), "1|" + Bytes({'|', 0, '|', 0, 1}));

  for (std::string_view position : {"400", "", "-1", "0x10"}) {
    dialog.SetPosition(position);
    EXPECT_FALSE(dialog.Save());
    EXPECT_EQ(m_host.Texts().back(),
              "The specified file position is invalid! This value must be between 0 and 3FF.");
  }
  dialog.SetPosition("3FF");
  dialog.SetValue("4G");
  EXPECT_FALSE(dialog.Save());
  EXPECT_EQ(m_host.Texts().back(),
            "The value you typed isn't in HEX format. Convert it pressing 'Convert value to "
            "hex' in edit menu");
  EXPECT_EQ(Stored("SONIC.BIN|lives"), "1|" + Bytes({'|', 0, '|', 0, 1}));
}

TEST_F(PatchDialog, ValueFromTextOrFromTheImage) {
  PatchDialogModel dialog = Open("0123456789");
  dialog.SetValue(Bytes({'H', 'i', '|', 0}));
  dialog.ConvertValueToHex();
  EXPECT_EQ(dialog.Value(), "48697C00");
  dialog.SetPosition("8");
  m_host.AnswerText("5").AnswerYesNo(Answer::Yes);  // more than there is: up to the end
  dialog.GetValue();
  EXPECT_EQ(dialog.Value(), "89");
  m_host.AnswerText("2").AnswerYesNo(Answer::No);
  dialog.GetValue();
  EXPECT_EQ(dialog.Value(), "3839");
  EXPECT_EQ(m_host.EventsOf(PromptKind::Text).at(0).title, "Get text from ROM");
  // Anything but a plain count ends the command before the second question.
  m_host.AnswerText("02").AnswerText(std::nullopt);
  dialog.GetValue();
  dialog.GetValue();
  EXPECT_EQ(m_host.EventsOf(PromptKind::YesNo).size(), 2u);
  dialog.SetPosition("A");
  dialog.GetValue();
  EXPECT_EQ(m_host.Texts().back(), "Invalid file position!");
}

TEST_F(PatchStoreTest, IpsRecordsBecomeNumberedPatchesWithTheImagesOldBytes) {
  const auto image = Put("GAME.BIN", "0123456789");
  const auto ips =
      Put("cheat.ips", "PATCH" + Bytes({0, 0, 2, 0, 3, '|', 0, 'x'}) + Bytes({0, 0, 8, 0, 4}) +
                           "WXYZ" + Bytes({0, 0, 1, 0, 10}) + "cut short");
  m_host.AnswerOpenFile(ips.string()).AnswerText("  cheat  ");
  ConvertIpsToDynamicPatchesCommand(m_host, Store(), image, "GAME.BIN", Dir().string());
  EXPECT_EQ(m_host.EventsOf(PromptKind::Text).at(0).title, "Base name");
  EXPECT_EQ(Stored("GAME.BIN|cheat0"), "3|" + Bytes({'|', 0, 'x', '|'}) + "234");
  EXPECT_EQ(Stored("GAME.BIN|cheat1"), "9|WXYZ|89");  // past the end: the old bytes there are
  const auto said = m_host.EventsOf(PromptKind::Message);
  ASSERT_EQ(said.size(), 2u);
  EXPECT_NE(said[0].text.find("cheat.ips is cut short"), std::string::npos);
  EXPECT_EQ(said[1].text, "Romsteward generated 2 dynamic patches from the IPS!");

  m_host.AnswerOpenFile(ips.string()).AnswerText("   ");  // a blank name ends it silently
  ConvertIpsToDynamicPatchesCommand(m_host, Store(), image, "GAME.BIN", Dir().string());
  EXPECT_EQ(m_host.EventsOf(PromptKind::Message).size(), 2u);
}

TEST_F(PatchStoreTest, AnIpsOfVeryManyRecordsIsStoredAfterAQuestionWholeOrNotAtAll) {
  const auto image = Put("GAME.BIN", std::string(8192, 'o'));
  std::string ips = "PATCH";
  constexpr std::size_t kRecords = 5000;
  for (std::size_t i = 0; i < kRecords; ++i)
    ips += Bytes({0, static_cast<int>(i >> 8), static_cast<int>(i & 0xFF), 0, 1, 'n'});
  ips += "EOF";
  const auto store = [&] {
    return StoreIpsAsDynamicPatches(m_host, Store(), image, "GAME.BIN", ips, "many.ips", "m");
  };
  m_host.AnswerYesNo(Answer::No);
  EXPECT_EQ(store(), CommandResult::Cancelled);
  EXPECT_NE(m_host.Texts().at(0).find("many.ips holds 5,000 records"), std::string::npos);
  // Cancelled once most records were written: the store keeps none of them.
  m_host.AnswerYesNo(Answer::Yes);
  m_host.CancelProgressAt(50);
  EXPECT_EQ(store(), CommandResult::Cancelled);
  EXPECT_FALSE(HasDynamicPatches(Store(), "GAME.BIN"));

  m_host.CancelProgressAt(101);
  m_host.AnswerYesNo(Answer::Yes);
  EXPECT_EQ(store(), CommandResult::Done);
  EXPECT_EQ(ListDynamicPatchNames(Store(), "GAME.BIN").size(), kRecords);
  EXPECT_EQ(Stored("GAME.BIN|m4999"), "5000|n|o");
  EXPECT_FALSE(m_host.ProgressReports().empty());
}

TEST_F(PatchStoreTest, RemovalOffersOnlyThisImagesPatchesAndAsksFirst) {
  EXPECT_FALSE(RemoveDynamicPatchesCommand(m_host, Store(), "A.BIN"));
  EXPECT_EQ(m_host.Texts().back(), "No dynamic patches found");
  StoreRaw("A.BIN|lives", "1|a|b");
  StoreRaw("A.BIN2|time", "1|a|b");
  m_host.AnswerList("lives").AnswerYesNo(Answer::No).AnswerList("lives").AnswerYesNo(Answer::Yes);
  EXPECT_FALSE(RemoveDynamicPatchesCommand(m_host, Store(), "a.bin"));
  EXPECT_EQ(Stored("A.BIN|lives"), "1|a|b");
  EXPECT_TRUE(RemoveDynamicPatchesCommand(m_host, Store(), "a.bin"));
  EXPECT_EQ(Stored("A.BIN|lives"), "<missing>");
  EXPECT_EQ(m_host.EventsOf(PromptKind::List).at(0).items, std::vector<std::string>{"lives"});
  EXPECT_EQ(m_host.EventsOf(PromptKind::YesNo).at(0).text,
            "Are you sure you want to remove 'lives' dynamic patch?");
}

class PatchRun : public PatchStoreTest {
protected:
  bool RecordLeft() {
    const auto records = Store().EnumerateValueNames(SectionKeyPath(kSectionPatchRun));
    return records.ok() && !records->empty();
  }
};

TEST_F(PatchRun, PatchesHoldForTheRunAndTheSavedOldBytesComeBackAfter) {
  const auto image = Put("A.BIN", "0123456789");
  StoreRaw("A.BIN|wide", "3|ABCD|2345");
  StoreRaw("A.BIN2|sequel", "5|xy|45");  // same prefix: applied too, after "wide"
  StoreRaw("a.bin|other case", "1|Q|0");
  StoreRaw("A.BIN|stale", "1|X|S");                             // saved when the first byte was "S"
  StoreRaw("A.BIN|tail", "10|" + Bytes({'|', 0, 'Z'}) + "|9");  // runs past the end
  StoreRaw("A.BIN|broken", "7|no second field");
  {
    DynamicPatchRun run = DynamicPatchRun::Apply(m_host, Store(), "A.BIN", image);
    EXPECT_EQ(m_host.Texts(),
              std::vector<std::string>{"Error in dynamic patch. Please, create it again"});
    EXPECT_EQ(test::ReadTestFile(image), "X1ABxy678" + Bytes({'|', 0, 'Z'}));
    EXPECT_TRUE(RecordLeft());
  }  // the end of the scope restores
  EXPECT_EQ(test::ReadTestFile(image), "S123456789");
  EXPECT_FALSE(RecordLeft());
}

TEST_F(PatchRun, FileGoneBeforeTheRestoreKeepsTheRecordUntilTheNextStart) {
  const auto image = Put("COPY.BIN", "0123456789");
  StoreRaw("COPY.BIN|p", "1|Z|0");
  auto run = DynamicPatchRun::Apply(m_host, Store(), "COPY.BIN", image);
  std::filesystem::remove(image);  // the extracted copy was cleaned away
  run.Restore();
  EXPECT_NE(m_host.Texts().at(0).find("the next start will try again"), std::string::npos);
  EXPECT_TRUE(RecordLeft());
  EXPECT_EQ(RecoverInterruptedPatchRuns(m_host, Store()), 0u);
  EXPECT_NE(m_host.Texts().back().find("no longer exists"), std::string::npos);
  EXPECT_FALSE(RecordLeft());
}

}  // namespace
}  // namespace romsteward
