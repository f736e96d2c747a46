#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "cli/tool_runner.h"

namespace romsteward {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

class OptionsCommandTest : public test::ToolSettingsTest {};

TEST_F(OptionsCommandTest, ACartridgesOptionsSavedByOneProcessAreReadByAnother) {
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    _exit(
        Run({"options", "save", "--cartridge", "SONIC.BIN", "frm=4", "joy=0", "prefemu=2"}).status);
  }
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);

  const test::ToolRun shown = Run({"options", "show", "--cartridge", "SONIC.BIN"});
  EXPECT_EQ(shown.status, 0);
  EXPECT_EQ(shown.err, "");
  EXPECT_THAT(shown.out, HasSubstr("Joy=0\nsnd=0\nz80=1\n"));
  EXPECT_THAT(shown.out, HasSubstr("\nfrm=4\n"));
  EXPECT_THAT(shown.out, HasSubstr("\nprefemu=2\nativapatch=0\n"));
}

TEST_F(OptionsCommandTest, ACartridgeWithoutASetShowsTheGeneralOptions) {
  ASSERT_EQ(Run({"options", "save", "kfrm=5"}).status, 0);
  const test::ToolRun shown = Run({"options", "show", "--cartridge", "NEW.BIN"});
  EXPECT_THAT(shown.out, HasSubstr("\nkfrm=5\n"));
  EXPECT_THAT(shown.err, HasSubstr("NEW.BIN has no complete option set of its own"));
  // The general save keeps the menu choices.
  ASSERT_EQ(Run({"settings", "set", "Settings", "cart", "True"}).status, 0);
  ASSERT_EQ(Run({"options", "save", "cystsnd=1"}).status, 0);
  EXPECT_EQ(Run({"settings", "get", "Settings", "cart"}).out, "True\n");
  EXPECT_EQ(Run({"settings", "get", "Settings", "cystsnd"}).out, "1\n");
}

TEST_F(OptionsCommandTest, ABadChangeSavesNothing) {
  for (const char* change : {"frm=99", "nokey=1", "Joy"}) {
    const test::ToolRun run = Run({"options", "save", "--cartridge", "A.BIN", "snd=1", change});
    EXPECT_EQ(run.status, cli::kExitError) << change;
    EXPECT_THAT(run.err, HasSubstr("nothing was saved"));
  }
  EXPECT_EQ(Run({"settings", "list", "Cartridge"}).out, "");
}

TEST_F(OptionsCommandTest, DeletingWhatWasNeverSavedSaysSo) {
  const test::ToolRun run = Run({"options", "delete", "--cartridge", "A.BIN"});
  EXPECT_EQ(run.status, cli::kExitFailure);
  EXPECT_EQ(run.err,
            "error: There were errors deleting settings. Maybe some wasn't deleted at all.\n");

  ASSERT_EQ(Run({"options", "save", "--cartridge", "A.BIN"}).status, 0);
  const test::ToolRun clean = Run({"options", "delete", "--cartridge", "A.BIN"});
  EXPECT_EQ(clean.status, 0);
  EXPECT_THAT(clean.err, Not(HasSubstr("error")));
}

}  // namespace
}  // namespace romsteward
