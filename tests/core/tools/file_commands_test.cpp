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
using Texts = std::vector<std::string>;
namespace fs = std::filesystem;

class FileCommandsTest : public test::TempDirTest {
protected:
  void SetUp() override {
    fs::create_directory(PathOf("roms"));
    fs::create_directory(PathOf("other"));
    m_roms = PathOf("roms").string();
    WriteTestFile(PathOf("roms/GAME.smd"), "game");
  }
  std::string m_roms;
  ScriptedHost m_host;
  FileSystemOperations m_operations;
};

TEST_F(FileCommandsTest, RenameRefusesTheFirstForbiddenCharacterOfItsListButNotTheColon) {
  EXPECT_EQ(ForbiddenNameCharacter("a|b*c\\d"), '\\');  // the list's order, not the name's
  EXPECT_EQ(ForbiddenNameCharacter("x>y<z"), '<');
  EXPECT_EQ(ForbiddenNameCharacter("say \"hi\"?"), '?');
  EXPECT_EQ(ForbiddenNameCharacter("a:b"), std::nullopt);

  m_host.AnswerText("new/name.smd").AnswerText("NEW:1.smd");
  EXPECT_FALSE(RenameRom(m_host, m_operations, m_roms, "GAME.smd").refresh);
  EXPECT_EQ(m_host.Texts().back(), "Valid Windows95 filenames can't contain the / character");
  const ListUpdate renamed = RenameRom(m_host, m_operations, m_roms, "GAME.smd");
  EXPECT_TRUE(renamed.refresh);
  EXPECT_EQ(renamed.newPath, PathOf("roms/NEW:1.smd").string());
  EXPECT_EQ(ReadTestFile(PathOf("roms/NEW:1.smd")), "game");
  const auto ask = m_host.EventsOf(PromptKind::Text).at(0);
  EXPECT_EQ(ask.title, "Rename");
  EXPECT_EQ(ask.text, "Type the new file name");
  EXPECT_EQ(ask.initial, "GAME.smd");
}

TEST_F(FileCommandsTest, CopyOffersTheNameWithAFilterOfItsExtension) {
  const std::string beside = PathOf("roms/COPY.smd").string();
  m_host.AnswerSaveFile(beside).AnswerSaveFile(PathOf("other/GAME.smd").string());
  const ListUpdate first = CopyRom(m_host, m_operations, m_roms, "GAME.smd");
  EXPECT_TRUE(first.refresh);
  EXPECT_EQ(first.newPath, beside);
  EXPECT_FALSE(CopyRom(m_host, m_operations, m_roms, "GAME.smd").refresh);
  EXPECT_EQ(ReadTestFile(PathOf("other/GAME.smd")), "game");
  const FileDialog dialog = m_host.EventsOf(PromptKind::SaveFile).at(0).dialog;
  EXPECT_EQ(dialog.title, "Choose the destination file");
  EXPECT_EQ(dialog.initialName, "GAME.smd");
  EXPECT_EQ(dialog.filters.at(0).description, "smd");
  EXPECT_EQ(dialog.filters.at(0).patterns, "*.smd");
}

TEST_F(FileCommandsTest, AnArchiveMemberIsUnpackedThenMovedToTheDestination) {
  struct Unpacker : ArchiveExtractor {
    Result<fs::path> ExtractToTemporary(const fs::path& archive, std::string_view member) override {
      const fs::path unpacked = archive.parent_path() / "unpacked.tmp";
      WriteTestFile(unpacked, std::string(member) + " from " + archive.filename().string());
      return unpacked;
    }
  } unpacker;
  WriteTestFile(PathOf("roms/pair.zip"), "zip");
  m_host.AnswerSaveFile(PathOf("other/IN.bin").string());
  CopyRom(m_host, m_operations, PathOf("roms/pair.zip").string(), "IN.bin", &unpacker);
  EXPECT_EQ(ReadTestFile(PathOf("other/IN.bin")), "IN.bin from pair.zip");
  EXPECT_FALSE(fs::exists(PathOf("roms/unpacked.tmp")));
}

TEST_F(FileCommandsTest, MoveToItsOwnFolderDoesNothingAndElsewhereRefreshesTheList) {
  m_host.AnswerFolder(m_roms).AnswerFolder(PathOf("other").string());
  EXPECT_FALSE(MoveRom(m_host, m_operations, m_roms, "GAME.smd").refresh);
  EXPECT_EQ(ReadTestFile(PathOf("roms/GAME.smd")), "game");
  EXPECT_TRUE(MoveRom(m_host, m_operations, m_roms, "GAME.smd").refresh);
  EXPECT_EQ(ReadTestFile(PathOf("other/GAME.smd")), "game");
  EXPECT_EQ(m_host.EventsOf(PromptKind::Folder).at(0).title, "Choose the destination directory");
  EXPECT_EQ(m_host.EventsOf(PromptKind::Message).size(), 0u);
}

TEST_F(FileCommandsTest, DeleteDropsTheEntryOnlyWhenTheFileIsGone) {
  m_host.AnswerYesNo(Answer::No).AnswerYesNo(Answer::Yes);
  const ListUpdate kept = DeleteRom(m_host, m_operations, m_roms, "GAME.smd");
  EXPECT_FALSE(kept.removeSelected);
  EXPECT_EQ(m_host.Texts().back(), "Error deleting GAME.smd!!!");
  const ListUpdate gone = DeleteRom(m_host, m_operations, m_roms, "GAME.smd");
  EXPECT_TRUE(gone.removeSelected);
  EXPECT_TRUE(gone.refresh);
}

TEST_F(FileCommandsTest, ADropCopiesIntoTheRomFolderAndMovesWithShift) {
  EXPECT_FALSE(DropOnRomList(m_host, m_operations, m_roms, std::nullopt).refresh);
  EXPECT_EQ(m_host.Texts(), Texts{"You can only drop files! Action cancelled."});

  WriteTestFile(PathOf("other/A.bin"), "a");
  WriteTestFile(PathOf("other/B.bin"), "b");
  const std::vector<std::string> dropped{" " + PathOf("other/A.bin").string() + " ",
                                         PathOf("other/B.bin").string()};
  EXPECT_TRUE(DropOnRomList(m_host, m_operations, m_roms, dropped).refresh);
  EXPECT_EQ(ReadTestFile(PathOf("roms/A.bin")), "a");
  EXPECT_TRUE(fs::exists(PathOf("other/A.bin")));

  fs::remove(PathOf("roms/B.bin"));
  m_host.SetShiftHeld(true);
  DropOnRomList(m_host, m_operations, m_roms, std::vector<std::string>{dropped[1]});
  EXPECT_EQ(ReadTestFile(PathOf("roms/B.bin")), "b");
  EXPECT_FALSE(fs::exists(PathOf("other/B.bin")));
  EXPECT_EQ(m_host.Texts().size(), 1u);
}

}  // namespace
}  // namespace romsteward
