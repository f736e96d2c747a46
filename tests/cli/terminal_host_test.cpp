#include "cli/terminal_host.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

namespace romsteward::cli {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

// The checksum prompt and the invalid-size warning, as their callers configure them.
QuestionBox CrcBox() {
  QuestionBox box;
  box.title = "CRC error!";
  box.text = "The checksum is wrong. Fix it?";
  box.cancel.caption = "&Fix 'n Save";
  box.cancel.tooltip = "Fixes CRC and backup the old one";
  return box;
}

QuestionBox WarningBox() {
  QuestionBox box;
  box.title = "Warning!";
  box.text = "Invalid size";
  box.yes.caption = "&Ok";
  box.no.hidden = true;
  box.cancel.caption = "&Shut Up!";
  return box;
}

class TerminalHostTest : public ::testing::Test {
protected:
  TerminalHost Make(AutoAnswer answer, bool interactive, const std::string& input = {}) {
    m_in.str(input);
    TerminalHostOptions options;
    options.autoAnswer = answer;
    options.interactive = interactive;
    return TerminalHost(m_in, m_err, options);
  }
  std::istringstream m_in;
  std::ostringstream m_err;
};

TEST_F(TerminalHostTest, WithoutATerminalEveryQuestionGetsTheAnswerThatChangesNothing) {
  TerminalHost host = Make(AutoAnswer::None, false, "y\ny\ny\n");
  EXPECT_EQ(host.AskYesNo("Delete it?", MessageIcon::Question, "Delete"), Answer::No);
  EXPECT_EQ(host.AskYesNoCancel("Save?", MessageIcon::Question, ""), Answer::Cancel);
  EXPECT_EQ(host.ShowQuestionBox(CrcBox()), kEscolhaClosed);
  EXPECT_EQ(host.AskText("Name?", "Base name", "base", false), std::nullopt);
  EXPECT_EQ(host.ChooseOpenFile({"Open IPS file", {{"IPS files", "*.ips"}}, "", ""}), std::nullopt);
  EXPECT_TRUE(host.ChooseOpenFiles({"Join", {}, "", ""}).empty());
  EXPECT_EQ(host.ChooseFromList("Remove", {"a", "b"}), std::nullopt);
  EXPECT_FALSE(host.IsShiftHeld());
  // Each question is still shown, with the answer taken and why.
  EXPECT_THAT(m_err.str(), HasSubstr("question: Delete: Delete it? -> no (no terminal to ask)"));
  EXPECT_THAT(m_err.str(), HasSubstr("Open IPS file (IPS files *.ips) -> nothing chosen"));
}

TEST_F(TerminalHostTest, YesAndNoAnswerEveryQuestion) {
  TerminalHost yes = Make(AutoAnswer::Yes, true, "n\n");
  EXPECT_EQ(yes.AskYesNo("Sure?", MessageIcon::Question, ""), Answer::Yes);
  EXPECT_EQ(yes.AskYesNoCancel("Sure?", MessageIcon::Question, ""), Answer::Yes);
  EXPECT_EQ(yes.ShowQuestionBox(CrcBox()), kEscolhaYes);
  EXPECT_EQ(yes.AskText("Size?", "Get text", "16", false), "16");
  EXPECT_EQ(yes.ChooseSaveFile({"Save", {}, "", ""}), std::nullopt);  // a file is never made up

  TerminalHost no = Make(AutoAnswer::No, true);
  EXPECT_EQ(no.AskYesNoCancel("Sure?", MessageIcon::Question, ""), Answer::No);
  EXPECT_EQ(no.ShowQuestionBox(CrcBox()), kEscolhaNo);
  // The warning's No button is hidden, so --no cannot press it: the box is closed.
  EXPECT_EQ(no.ShowQuestionBox(WarningBox()), kEscolhaClosed);
  EXPECT_THAT(m_err.str(), HasSubstr("Invalid size -> closed without a choice (--no)"));
}

TEST_F(TerminalHostTest, OnATerminalTheAnswerIsRead) {
  TerminalHost host = Make(AutoAnswer::None, true, "maybe\nY\nc\n");
  EXPECT_EQ(host.AskYesNo("Remove it?", MessageIcon::Question, ""), Answer::Yes);
  EXPECT_THAT(m_err.str(), HasSubstr("Please answer y or n."));
  EXPECT_EQ(host.AskYesNoCancel("Save?", MessageIcon::None, ""), Answer::Cancel);
  // The end of input answers as no terminal would.
  EXPECT_EQ(host.AskYesNo("Again?", MessageIcon::Question, ""), Answer::No);
}

TEST_F(TerminalHostTest, TheQuestionBoxOffersOnlyItsShownButtons) {
  TerminalHost host = Make(AutoAnswer::None, true, "3\n2\ns\nOK\n\n");
  // Shown: 1) Ok 2) Shut Up!; "3" is no button, "2" is Shut Up!.
  EXPECT_EQ(host.ShowQuestionBox(WarningBox()), kEscolhaCancel);
  EXPECT_THAT(m_err.str(), HasSubstr("  1) Ok\n  2) Shut Up!\n"));
  EXPECT_THAT(m_err.str(), HasSubstr("That is not one of the buttons."));
  EXPECT_EQ(host.ShowQuestionBox(WarningBox()), kEscolhaCancel);  // its access key
  EXPECT_EQ(host.ShowQuestionBox(WarningBox()), kEscolhaYes);     // its caption
  EXPECT_EQ(host.ShowQuestionBox(WarningBox()), kEscolhaClosed);  // an empty line
  EXPECT_EQ(host.ShowQuestionBox(CrcBox()), kEscolhaClosed);      // end of input
  EXPECT_THAT(m_err.str(), HasSubstr("3) Fix 'n Save - Fixes CRC and backup the old one"));
}

TEST_F(TerminalHostTest, TextFilesAndListsOnATerminal) {
  TerminalHost host =
      Make(AutoAnswer::None, true, "\nsecret\n/roms/a.ips\n/a.smd\n/b.smd\n\n9\n2\n");
  EXPECT_EQ(host.AskText("Size?", "Get text", "16", false), "16");  // Enter keeps it
  EXPECT_EQ(host.AskText("Password", "Lock", "", true), "secret");
  EXPECT_EQ(host.ChooseOpenFile({"Open IPS file", {}, "", ""}), "/roms/a.ips");
  EXPECT_EQ(host.ChooseOpenFiles({"Join", {}, "", ""}),
            (std::vector<std::string>{"/a.smd", "/b.smd"}));
  EXPECT_EQ(host.ChooseFromList("Remove dynamic patches", {"lives", "time"}), "time");
  EXPECT_EQ(host.ChooseFolder("Temporary folder", ""), std::nullopt);
  EXPECT_THAT(m_err.str(), Not(HasSubstr("secret")));
}

TEST_F(TerminalHostTest, MessagesAndProgress) {
  TerminalHost quiet = Make(AutoAnswer::None, false);
  quiet.ShowMessage("Line one\r\nLine two", MessageIcon::Critical, "Error!");
  quiet.BeginProgress("Checking");
  EXPECT_TRUE(quiet.SetProgress(50));
  quiet.EndProgress();
  EXPECT_EQ(m_err.str(), "error: Error!: Line one\nLine two\n");

  m_err.str("");
  TerminalHostOptions options;
  options.showProgress = true;
  TerminalHost drawn(m_in, m_err, options);
  drawn.BeginProgress("");
  drawn.SetProgress(10);
  drawn.SetProgress(10);
  drawn.SetProgressCaption("Joining");
  drawn.EndProgress();
  EXPECT_EQ(m_err.str(), "\rProgress: 10%\x1b[K\rJoining: 10%\x1b[K\n");
}

}  // namespace
}  // namespace romsteward::cli
