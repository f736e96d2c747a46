#include "core/tools/file_commands.h"

#include <gtest/gtest.h>

#include "core/tools/file_system_operations.h"
#include "support/scripted_host.h"
#include "support/temp_dir.h"

namespace romsteward {
namespace {

using test::PromptKind;
using test::ReadTestFile;
using test::ScriptedHost;
using test::WriteTestFile;
namespace fs = std::filesystem;

class FileCommandsTest : public test::TempDirTest {
protected:
  void SetUp() override {
    fs::create_directory(PathOf("roms"));
    fs::create_directory(PathOf("other"));
    WriteTestFile(PathOf("roms/GAME.smd"), "game");
  }
  const std::string m_roms = PathOf("roms").string();
  ScriptedHost m_host;
  FileSystemOperations m_operations;
};

TEST_F(FileCommandsTest, RenameRefusesTheFirstForbiddenCharacterOfItsListButNotTheColon) {
  EXPECT_EQ(ForbiddenNameCharacter("a|b*c\\d"), '\\');  // the list's order, not the name's
  EXPECT_EQ(ForbiddenNameCharacter("say \"hi\"?"), '?');
  m_host.AnswerText("x>y<z").AnswerText("NEW:1.smd");
  EXPECT_FALSE(RenameRom(m_host, m_operations, m_roms, "GAME.smd").refresh);
  EXPECT_EQ(m_host.Texts().back(), "Valid Windows95 filenames can't contain the < character");
  EXPECT_TRUE(RenameRom(m_host, m_operations, m_roms, "GAME.smd").refresh);
  EXPECT_EQ(ReadTestFile(PathOf("roms/NEW:1.smd")), "game");
  const auto ask = m_host.EventsOf(PromptKind::Text).at(0);
  EXPECT_EQ(ask.title, "Rename");
  EXPECT_EQ(ask.text, "Type the new file name");
}

TEST_F(FileCommandsTest, CopyOffersTheNameWithItsExtensionAndRefreshesOnlyForACopyBeside) {
  m_host.AnswerSaveFile(PathOf("roms/COPY.smd").string())
      .AnswerSaveFile(PathOf("other/GAME.smd").string());
  EXPECT_TRUE(CopyRom(m_host, m_operations, m_roms, "GAME.smd").refresh);
  EXPECT_FALSE(CopyRom(m_host, m_operations, m_roms, "GAME.smd").refresh);
  EXPECT_EQ(ReadTestFile(PathOf("other/GAME.smd")), "game");
  const FileDialog dialog = m_host.EventsOf(PromptKind::SaveFile).at(0).dialog;
  EXPECT_EQ(dialog.title, "Choose the destination file");
  EXPECT_EQ(dialog.initialName, "GAME.smd");
  EXPECT_EQ(dialog.filters.at(0).description + "|" + dialog.filters.at(0).patterns, "smd|*.smd");
}

TEST_F(FileCommandsTest, MoveAndDeleteTellTheListWhatChanged) {
  m_host.AnswerFolder(m_roms).AnswerFolder(PathOf("other").string()).AnswerYesNo(Answer::Yes);
  EXPECT_FALSE(MoveRom(m_host, m_operations, m_roms, "GAME.smd").refresh);
  EXPECT_TRUE(MoveRom(m_host, m_operations, m_roms, "GAME.smd").refresh);
  EXPECT_EQ(m_host.EventsOf(PromptKind::Folder).at(0).title, "Choose the destination directory");
  const ListUpdate deleted = DeleteRom(m_host, m_operations, PathOf("other").string(), "GAME.smd");
  EXPECT_TRUE(deleted.removeSelected);
  EXPECT_TRUE(fs::is_empty(PathOf("other")));
  EXPECT_EQ(m_host.EventsOf(PromptKind::Message).size(), 0u);
}

TEST_F(FileCommandsTest, ADropCopiesIntoTheRomFolderAndMovesWithShift) {
  DropOnRomList(m_host, m_operations, m_roms, std::nullopt);
  EXPECT_EQ(m_host.Texts().at(0), "You can only drop files! Action cancelled.");
  const std::string a = PathOf("other/A.bin").string();
  WriteTestFile(a, "a");
  EXPECT_TRUE(DropOnRomList(m_host, m_operations, m_roms, std::vector{" " + a + " "}).refresh);
  EXPECT_TRUE(fs::exists(a));
  fs::remove(PathOf("roms/A.bin"));
  m_host.SetShiftHeld(true);
  DropOnRomList(m_host, m_operations, m_roms, std::vector{a});
  EXPECT_EQ(ReadTestFile(PathOf("roms/A.bin")), "a");
  EXPECT_FALSE(fs::exists(a));
}

}  // namespace
}  // namespace romsteward
