#include "core/tools/file_operations.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "core/tools/file_commands.h"
#include "core/tools/file_system_operations.h"
#include "support/file_size_limit.h"
#include "support/scripted_host.h"
#include "support/temp_dir.h"

namespace romsteward {
namespace {

using test::ReadTestFile;
using test::ScriptedHost;
using test::WriteTestFile;
using Texts = std::vector<std::string>;
namespace fs = std::filesystem;
using test::PromptKind;

// Records what it was asked to do and answers with a set result.
struct FakeOperations : FileOperations {
  FileOperationResult Run(const FileOperationRequest& request, Host&) override {
    requests.push_back(request);
    return result;
  }
  FileOperationResult result;
  std::vector<FileOperationRequest> requests;
};

TEST(CopyBoxCommDialog, KnowsFourVerbsInAnyCaseAndDeletesToTheTrashUnlessShiftIsHeld) {
  ScriptedHost host;
  FakeOperations fake;
  EXPECT_TRUE(CopyBoxCommDialog(host, fake, {"/r/a.bin"}, "/s/b.bin", "COPY"));
  EXPECT_TRUE(CopyBoxCommDialog(host, fake, {"/r/a.bin"}, "/s/a.bin", "Move"));
  EXPECT_TRUE(CopyBoxCommDialog(host, fake, {"/r/a.bin"}, "/r/c.bin", "ren"));
  EXPECT_TRUE(CopyBoxCommDialog(host, fake, {"/r/a.bin"}, "", "del"));
  host.SetShiftHeld(true);
  EXPECT_TRUE(CopyBoxCommDialog(host, fake, {"/r/a.bin"}, "", "del"));
  EXPECT_FALSE(CopyBoxCommDialog(host, fake, {"/r/a.bin"}, "/s/b.bin", "delete"));
  ASSERT_EQ(fake.requests.size(), 5u);
  EXPECT_EQ(fake.requests[0].description, "Copying /r/a.bin to /s/b.bin");
  EXPECT_EQ(fake.requests[2].description, "Renaming /r/a.bin to /r/c.bin");
  EXPECT_EQ(fake.requests[3].description, "Deleting /r/a.bin");
  EXPECT_TRUE(fake.requests[3].toTrash);
  EXPECT_FALSE(fake.requests[4].toTrash);
  EXPECT_TRUE(host.Events().empty());
}

class FileSystemOperationsTest : public test::TempDirTest {
protected:
  void SetUp() override {
    fs::create_directory(PathOf("roms"));
    fs::create_directory(PathOf("other"));
    WriteTestFile(m_game, "game");
  }
  bool Run(std::string_view verb, std::string_view destination, std::string source = {}) {
    return CopyBoxCommDialog(m_host, m_operations, {source.empty() ? m_game : source}, destination,
                             verb);
  }
  const std::string m_roms = PathOf("roms").string();
  const std::string m_game = PathOf("roms/GAME.smd").string();
  const std::string m_other = PathOf("other").string();
  ScriptedHost m_host;
  FileSystemOperations m_operations{1 << 20};
};

TEST_F(FileSystemOperationsTest, AMoveToItsOwnFolderOrOneAboveItDoesNothing) {
  FakeOperations fake;
  for (const fs::path& target : {fs::path(m_game), PathOf("roms"), PathOf("roms/NEW.bin"), Dir()})
    EXPECT_FALSE(CopyBoxCommDialog(m_host, fake, {m_game}, target.string(), "move")) << target;
  EXPECT_TRUE(fake.requests.empty());
  EXPECT_TRUE(m_host.Events().empty());
}

TEST_F(FileSystemOperationsTest, ReplacingOrDeletingAsksFirstAndRenameNeverReplaces) {
  const std::string target = PathOf("other/GAME.smd").string();
  WriteTestFile(target, "older");
  m_host.AnswerYesNo(Answer::No).AnswerYesNo(Answer::Yes);
  EXPECT_FALSE(Run("copy", target));
  EXPECT_EQ(ReadTestFile(target), "older");
  EXPECT_EQ(m_host.Texts().at(0),
            "The file '" + target + "' already exists. Do you want to replace it?");
  EXPECT_TRUE(Run("copy", target));
  EXPECT_EQ(ReadTestFile(target), "game");

  const std::string renamed = PathOf("other/NEW.bin").string();
  EXPECT_TRUE(Run("ren", renamed, target));
  EXPECT_FALSE(Run("ren", renamed));
  EXPECT_EQ(m_host.Texts().back(), "Error renaming GAME.smd!!!");
  m_host.AnswerYesNo(Answer::No).AnswerYesNo(Answer::Yes);
  EXPECT_FALSE(Run("del", ""));
  EXPECT_TRUE(Run("del", ""));
  EXPECT_FALSE(fs::exists(m_game));
}

TEST_F(FileSystemOperationsTest, ALongCopyShowsProgressAndACancelOrAFullDiskLeavesNoTarget) {
  const std::string big = PathOf("roms/BIG.bin").string();
  WriteTestFile(big, std::string(3 << 20, 'x'));
  m_host.CancelProgressAt(50);
  EXPECT_FALSE(Run("copy", m_other, big));
  EXPECT_EQ(m_host.ProgressCaptions(), Texts{"Copying " + big + " to " + m_other});
  EXPECT_EQ(m_host.Texts(), (Texts{"Operation Failure!", "Error copying BIG.bin!!!"}));
  EXPECT_EQ(m_host.Events().at(0).title, "Contact the author!");
  ScriptedHost full;
  {
    test::FileSizeLimit limit(1 << 20);
    EXPECT_FALSE(CopyBoxCommDialog(full, m_operations, {big}, m_other, "copy"));
  }
  EXPECT_EQ(full.Texts(), (Texts{"Error writing to disc!", "Error copying BIG.bin!!!"}));
  EXPECT_TRUE(fs::is_empty(m_other));
}

TEST_F(FileSystemOperationsTest, AFolderThatCannotBeWrittenIsPermissionDenied) {
  fs::permissions(Dir(), fs::perms::others_read | fs::perms::others_exec, fs::perm_options::add);
  fs::permissions(m_other, fs::perms::owner_write, fs::perm_options::remove);
  // Permissions do not bind the superuser the tests may run as: try as an ordinary user.
  const pid_t child = ::fork();
  if (child == 0) {
    if (::geteuid() == 0 && (::setgid(65534) != 0 || ::setuid(65534) != 0)) ::_exit(99);
    const FileOperationRequest request{FileVerb::Copy, {m_game}, m_other, false, {}};
    ::_exit(static_cast<int>(m_operations.Run(request, m_host).code));
  }
  int status = 0;
  ::waitpid(child, &status, 0);
  EXPECT_EQ(WEXITSTATUS(status), static_cast<int>(FileOpCode::AccessDenied));
  EXPECT_TRUE(fs::is_empty(m_other));
}

TEST_F(FileSystemOperationsTest, RenameRefusesTheFirstForbiddenCharacterOfItsListButNotTheColon) {
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

TEST_F(FileSystemOperationsTest, CopyOffersTheNameWithItsExtensionAndRefreshesOnlyForACopyBeside) {
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

TEST_F(FileSystemOperationsTest, MoveAndDeleteTellTheListWhatChanged) {
  m_host.AnswerFolder(m_roms).AnswerFolder(PathOf("other").string()).AnswerYesNo(Answer::Yes);
  EXPECT_FALSE(MoveRom(m_host, m_operations, m_roms, "GAME.smd").refresh);
  EXPECT_TRUE(MoveRom(m_host, m_operations, m_roms, "GAME.smd").refresh);
  EXPECT_EQ(m_host.EventsOf(PromptKind::Folder).at(0).title, "Choose the destination directory");
  const ListUpdate deleted = DeleteRom(m_host, m_operations, PathOf("other").string(), "GAME.smd");
  EXPECT_TRUE(deleted.removeSelected);
  EXPECT_TRUE(fs::is_empty(PathOf("other")));
  EXPECT_EQ(m_host.EventsOf(PromptKind::Message).size(), 0u);
}

TEST_F(FileSystemOperationsTest, ADropCopiesIntoTheRomFolderAndMovesWithShift) {
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
