#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "cli/tool_runner.h"
#include "support/scoped_env.h"

namespace romsteward {
namespace {

using test::ReadTestFile;
using test::RunToolWith;
using test::WriteTestFile;
using ::testing::HasSubstr;

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

TEST_F(SettingsCommandTest, BadSectionsOptionsAndStoresAreRefused) {
  const test::ToolRun run = Run({"settings", "set", "Setings", "Joy", "0"});
  EXPECT_EQ(run.status, cli::kExitError);
  EXPECT_THAT(run.err, HasSubstr("Settings, Cartridge, FAVORITE, PATCH, CRCs"));
  EXPECT_FALSE(std::filesystem::exists(StoreFile()));
  EXPECT_NE(Run({"--yes", "--no", "settings", "list"}).status, 0);  // they exclude each other

  // An unreadable store is named and left alone.
  WriteTestFile(StoreFile(), "these are my notes, not settings");
  const test::ToolRun unreadable = Run({"settings", "set", "Settings", "Joy", "0"});
  EXPECT_EQ(unreadable.status, cli::kExitError);
  EXPECT_THAT(unreadable.err, HasSubstr(StoreFile()));
  EXPECT_THAT(unreadable.err, HasSubstr("not a database"));
  EXPECT_EQ(ReadTestFile(StoreFile()), "these are my notes, not settings");
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

}  // namespace
}  // namespace romsteward
