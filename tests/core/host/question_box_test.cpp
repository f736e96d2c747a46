#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include "core/host/host.h"
#include "support/scripted_host.h"

namespace romsteward {
namespace {

using test::ScriptedHost;

QuestionBox WarningBox() {
  QuestionBox box;
  box.title = "Warning!";
  box.text = "Invalid size";
  box.yes.caption = "&Ok";
  box.no.hidden = true;
  box.cancel.caption = "&Shut Up!";
  return box;
}

TEST(QuestionBox, AHiddenButtonCannotAnswer) {
  const QuestionBox box = WarningBox();
  EXPECT_TRUE(CanAnswer(box, kEscolhaYes));
  EXPECT_TRUE(CanAnswer(box, kEscolhaCancel));
  EXPECT_TRUE(CanAnswer(box, kEscolhaClosed));  // closed without a button
  EXPECT_FALSE(CanAnswer(box, kEscolhaNo));
  EXPECT_FALSE(CanAnswer(box, 1));
  EXPECT_TRUE(CanAnswer(QuestionBox{}, kEscolhaNo));
  EXPECT_EQ(ButtonFor(box, kEscolhaCancel), &box.cancel);
  EXPECT_EQ(ButtonFor(box, 5), nullptr);
  // Captions lose their access-key marks.
  EXPECT_EQ(CaptionText("&Fix 'n Save"), "Fix 'n Save");
  EXPECT_EQ(CaptionText("R&&D &now"), "R&D now");
  EXPECT_EQ(CaptionText("trailing&"), "trailing");
}

TEST(ScriptedHostTest, AnswersThePromptCannotTakeFailTheTest) {
  ScriptedHost host;
  host.AnswerQuestionBox(kEscolhaNo);
  int answer = -1;
  EXPECT_NONFATAL_FAILURE(answer = host.ShowQuestionBox(WarningBox()), "is hidden");
  EXPECT_EQ(answer, kEscolhaClosed);
  // So do an unexpected prompt and an answer a yes/no question cannot give.
  Answer yesNo = Answer::Yes;
  EXPECT_NONFATAL_FAILURE(yesNo = host.AskYesNo("Overwrite?", MessageIcon::Question, "Save"),
                          "Unexpected yes/no question titled \"Save\": \"Overwrite?\"");
  EXPECT_EQ(yesNo, Answer::No);
  host.AnswerYesNo(Answer::Cancel);
  EXPECT_NONFATAL_FAILURE(host.AskYesNo("Sure?", MessageIcon::Question, ""), "Yes or No");
}

TEST(ScriptedHostTest, UnusedAnswersAndOpenProgressFailTheTest) {
  EXPECT_NONFATAL_FAILURE(
      {
        ScriptedHost host;
        host.AnswerOpenFile("/a.ips");
      },
      "1 queued answer(s) were never asked for");
  EXPECT_NONFATAL_FAILURE(
      {
        ScriptedHost host;
        host.BeginProgress("Checksum");
      },
      "never ended");
}

}  // namespace
}  // namespace romsteward
