#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>

#include "cli/tool_runner.h"
#include "support/scoped_env.h"

namespace romsteward {
namespace {

using test::RunToolWith;
using ::testing::HasSubstr;
using ::testing::Not;

class SettingsCommandTest : public test::ToolSettingsTest {};

TEST_F(SettingsCommandTest, SetGetListAndDelete) {
  ASSERT_EQ(Run({"settings", "set", "Settings", "Joy", "0"}).status, 0);
  ASSERT_EQ(Run({"settings", "set", "cartridge", "SONIC.BIN.Joy", "1"}).status, 0);
  EXPECT_EQ(Run({"settings", "get", "SETTINGS", "joy"}).out, "0\n");
  EXPECT_EQ(Run({"settings", "list"}).out, "[Settings]\nJoy=0\n\n[Cartridge]\nSONIC.BIN.Joy=1\n");
  EXPECT_EQ(Run({"settings", "list", "Cartridge"}).out, "SONIC.BIN.Joy=1\n");
  EXPECT_EQ(Run({"settings", "list", "PATCH"}).out, "");

  EXPECT_EQ(Run({"settings", "delete", "Settings", "JOY"}).status, 0);
  const test::ToolRun missing = Run({"settings", "get", "Settings", "Joy"});
  EXPECT_EQ(missing.status, cli::kExitFailure);
  EXPECT_EQ(missing.err, "Settings holds no value \"Joy\"\n");
  EXPECT_EQ(Run({"settings", "delete", "Settings", "Joy"}).status, cli::kExitFailure);
}

TEST_F(SettingsCommandTest, BytesThatAreNotTextTravelEscaped) {
  ASSERT_EQ(Run({"settings", "set", "--escaped", "CRCs", "A.BIN", "\\x12\\x00"}).status, 0);
  EXPECT_EQ(Run({"settings", "get", "CRCs", "A.BIN"}).out, "\\x12\\x00\n");
  EXPECT_EQ(Run({"settings", "get", "--raw", "CRCs", "A.BIN"}).out, std::string("\x12\0", 2));
  EXPECT_EQ(Run({"settings", "list", "CRCs"}).out, "A.BIN=\\x12\\x00\n");

  const test::ToolRun bad = Run({"settings", "set", "--escaped", "CRCs", "B.BIN", "\\q"});
  EXPECT_EQ(bad.status, cli::kExitError);
  EXPECT_THAT(bad.err, HasSubstr("\\xNN"));
  EXPECT_EQ(Run({"settings", "get", "CRCs", "B.BIN"}).status, cli::kExitFailure);
}

TEST_F(SettingsCommandTest, BadSectionsAndOptionsAreRefused) {
  const test::ToolRun run = Run({"settings", "set", "Setings", "Joy", "0"});
  EXPECT_EQ(run.status, cli::kExitError);
  EXPECT_THAT(run.err, HasSubstr("Settings, Cartridge, FAVORITE, PATCH, CRCs"));
  EXPECT_FALSE(std::filesystem::exists(StoreFile()));
  EXPECT_NE(Run({"--yes", "--no", "settings", "list"}).status, 0);  // they exclude each other
  // A value that starts with a dash reads as options: the error says how to give it.
  const test::ToolRun dash = Run({"settings", "set", "Settings", "k", "-bar"});
  EXPECT_EQ(dash.status, cli::kExitError);
  EXPECT_THAT(dash.err, HasSubstr("\"-bar\" was read as options; for a value of that text "
                                  "write -- before it"));
  ASSERT_EQ(Run({"settings", "set", "Settings", "k", "--", "-bar"}).status, 0);
  EXPECT_EQ(Run({"settings", "get", "Settings", "k"}).out, "-bar\n");
}

TEST_F(SettingsCommandTest, TheStoreIsChosenByOptionThenEnvironment) {
  test::ScopedEnv chosen("ROMSTEWARD_SETTINGS", PathOf("env.sqlite3").string());
  EXPECT_EQ(RunToolWith({"settings", "set", "Settings", "temp", "env"}).status, 0);
  // Global options may also follow the subcommand.
  EXPECT_EQ(
      RunToolWith({"settings", "set", "Settings", "temp", "opt", "--settings", StoreFile()}).status,
      0);
  EXPECT_EQ(RunToolWith({"settings", "get", "Settings", "temp"}).out, "env\n");
  EXPECT_EQ(Run({"settings", "get", "Settings", "temp"}).out, "opt\n");
}

// The cartridge options are kept in the same store.
TEST_F(SettingsCommandTest, ACartridgesOptionsSavedByOneProcessAreReadByAnother) {
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

TEST_F(SettingsCommandTest, ACartridgeWithoutASetShowsTheGeneralOptions) {
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

TEST_F(SettingsCommandTest, ABadChangeSavesNothing) {
  for (const char* change : {"frm=99", "nokey=1", "Joy"}) {
    const test::ToolRun run = Run({"options", "save", "--cartridge", "A.BIN", "snd=1", change});
    EXPECT_EQ(run.status, cli::kExitError) << change;
    EXPECT_THAT(run.err, HasSubstr("nothing was saved"));
  }
  EXPECT_EQ(Run({"settings", "list", "Cartridge"}).out, "");
}

TEST_F(SettingsCommandTest, DeletingWhatWasNeverSavedSaysSo) {
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
