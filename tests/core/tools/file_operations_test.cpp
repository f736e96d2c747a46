#include "core/tools/file_operations.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <functional>

#include "core/tools/file_system_operations.h"
#include "support/file_size_limit.h"
#include "support/scripted_host.h"
#include "support/temp_dir.h"

namespace romsteward {
namespace {

using test::PromptKind;
using test::ReadTestFile;
using test::ScriptedHost;
using test::WriteTestFile;
using Texts = std::vector<std::string>;

// Records what it was asked to do and answers with a set result.
class FakeOperations : public FileOperations {
public:
  FileOperationResult Run(const FileOperationRequest& request, Host&) override {
    requests.push_back(request);
    return result;
  }
  FileOperationResult result;
  std::vector<FileOperationRequest> requests;
};

FileOperationResult Failed(FileOpCode code, bool aborted = false) {
  FileOperationResult result;
  result.code = code;
  result.aborted = aborted;
  return result;
}

TEST(CopyBoxCommDialog, KnowsFourVerbsInAnyCaseAndIgnoresEveryOtherWord) {
  ScriptedHost host;
  FakeOperations operations;
  EXPECT_TRUE(CopyBoxCommDialog(host, operations, {"/r/a.bin"}, "/s/b.bin", "COPY"));
  EXPECT_TRUE(CopyBoxCommDialog(host, operations, {"/r/a.bin"}, "", "Del"));
  EXPECT_TRUE(CopyBoxCommDialog(host, operations, {"/r/a.bin"}, "/s/a.bin", "move"));
  EXPECT_TRUE(CopyBoxCommDialog(host, operations, {"/r/a.bin"}, "/r/c.bin", "ren"));
  EXPECT_FALSE(CopyBoxCommDialog(host, operations, {"/r/a.bin"}, "/s/b.bin", "delete"));
  ASSERT_EQ(operations.requests.size(), 4u);
  EXPECT_EQ(operations.requests[0].description, "Copying /r/a.bin to /s/b.bin");
  EXPECT_EQ(operations.requests[1].description, "Deleting /r/a.bin");
  EXPECT_EQ(operations.requests[2].description, "Moving /r/a.bin to /s/a.bin");
  EXPECT_EQ(operations.requests[3].verb, FileVerb::Rename);
  EXPECT_EQ(operations.requests[3].description, "Renaming /r/a.bin to /r/c.bin");
  EXPECT_TRUE(host.Events().empty());
}

TEST(CopyBoxCommDialog, DeleteGoesToTheTrashUnlessShiftIsHeld) {
  ScriptedHost host;
  FakeOperations operations;
  CopyBoxCommDialog(host, operations, {"/r/a.bin"}, "", "del");
  host.SetShiftHeld(true);
  CopyBoxCommDialog(host, operations, {"/r/a.bin"}, "", "del");
  EXPECT_TRUE(operations.requests[0].toTrash);
  EXPECT_FALSE(operations.requests[1].toTrash);
}

TEST(CopyBoxCommDialog, AFailureShowsItsMessagesInTurn) {
  struct Case {
    FileOperationResult result;
    std::string verb;
    Texts texts;
  };
  FileOperationResult stoppedAtSecond = Failed(FileOpCode::AccessDenied);
  stoppedAtSecond.failedSource = "/r/two.bin";
  const std::vector<Case> cases{
      {Failed(FileOpCode::WriteError),
       "copy",
       {"Error writing to disc!", "Error copying b.bin!!!"}},
      {Failed(FileOpCode::Cancelled, true),
       "move",
       {"Operation Failure!", "Error moving b.bin!!!"}},
      {Failed(FileOpCode::TargetExists), "ren", {"Error renaming b.bin!!!"}},
      {Failed(FileOpCode::NotFound), "del", {"Error deleting b.bin!!!"}},
      {stoppedAtSecond, "copy", {"Error copying two.bin!!!"}},
  };
  for (const Case& c : cases) {
    ScriptedHost host;
    FakeOperations operations;
    operations.result = c.result;
    EXPECT_FALSE(CopyBoxCommDialog(host, operations, {"/r/b.bin"}, "/s/x.bin", c.verb));
    EXPECT_EQ(host.Texts(), c.texts) << c.verb;
    for (const auto& event : host.Events())
      EXPECT_EQ(event.icon, MessageIcon::Critical);
    if (c.result.aborted) {
      EXPECT_EQ(host.Events()[0].title, "Contact the author!");
    }
  }
}

class FileSystemOperationsTest : public test::TempDirTest {
protected:
  void SetUp() override {
    std::filesystem::create_directory(PathOf("roms"));
    std::filesystem::create_directory(PathOf("other"));
    m_game = PathOf("roms/GAME.bin").string();
    WriteTestFile(m_game, "game");
  }
  std::string m_game;
  ScriptedHost m_host;
  FileSystemOperations m_operations{1 << 20};
};

TEST_F(FileSystemOperationsTest, AMoveToItsOwnFolderOrOneAboveItNeverReachesTheFileSystem) {
  FakeOperations fake;
  for (const std::string& target : {m_game, PathOf("roms").string(), PathOf("roms/").string(),
                                    Dir().string(), PathOf("roms/NEW.bin").string()})
    EXPECT_FALSE(CopyBoxCommDialog(m_host, fake, {m_game}, target, "move")) << target;
  EXPECT_TRUE(fake.requests.empty());
  EXPECT_TRUE(CopyBoxCommDialog(m_host, m_operations, {m_game}, PathOf("other").string(), "move"));
  EXPECT_EQ(ReadTestFile(PathOf("other/GAME.bin")), "game");
  EXPECT_FALSE(std::filesystem::exists(m_game));
}

TEST_F(FileSystemOperationsTest, ReplacingAFileIsAskedAboutAndNoKeepsIt) {
  const std::string target = PathOf("other/GAME.bin").string();
  WriteTestFile(target, "older");
  m_host.AnswerYesNo(Answer::No).AnswerYesNo(Answer::Yes);
  EXPECT_FALSE(CopyBoxCommDialog(m_host, m_operations, {m_game}, target, "copy"));
  EXPECT_EQ(ReadTestFile(target), "older");
  EXPECT_EQ(m_host.Texts(),
            (Texts{"The file '" + target + "' already exists. Do you want to replace it?",
                   "Operation Failure!", "Error copying GAME.bin!!!"}));
  EXPECT_TRUE(CopyBoxCommDialog(m_host, m_operations, {m_game}, target, "copy"));
  EXPECT_EQ(ReadTestFile(target), "game");
}

TEST_F(FileSystemOperationsTest, RenameNeverReplacesAndDeleteAsksFirst) {
  WriteTestFile(PathOf("roms/TAKEN.bin"), "taken");
  EXPECT_FALSE(
      CopyBoxCommDialog(m_host, m_operations, {m_game}, PathOf("roms/TAKEN.bin").string(), "ren"));
  EXPECT_EQ(m_host.Texts(), Texts{"Error renaming GAME.bin!!!"});
  EXPECT_EQ(ReadTestFile(PathOf("roms/TAKEN.bin")), "taken");

  m_host.AnswerYesNo(Answer::No).AnswerYesNo(Answer::Yes);
  EXPECT_FALSE(CopyBoxCommDialog(m_host, m_operations, {m_game}, "", "del"));
  EXPECT_TRUE(std::filesystem::exists(m_game));
  EXPECT_TRUE(CopyBoxCommDialog(m_host, m_operations, {m_game}, "", "del"));
  EXPECT_FALSE(std::filesystem::exists(m_game));
  EXPECT_FALSE(CopyBoxCommDialog(m_host, m_operations, {m_game}, "", "del"));
  EXPECT_EQ(m_host.Texts().back(), "Error deleting GAME.bin!!!");
}

TEST_F(FileSystemOperationsTest, ALongCopyShowsProgressAndACancelOrAFullDiskLeavesNoTarget) {
  const std::string big = PathOf("roms/BIG.bin").string();
  WriteTestFile(big, std::string(3 << 20, 'x'));
  m_host.CancelProgressAt(50);
  EXPECT_FALSE(CopyBoxCommDialog(m_host, m_operations, {big}, PathOf("other").string(), "copy"));
  EXPECT_EQ(m_host.ProgressCaptions(), Texts{"Copying " + big + " to " + PathOf("other").string()});
  EXPECT_EQ(m_host.Texts(), (Texts{"Operation Failure!", "Error copying BIG.bin!!!"}));
  EXPECT_TRUE(std::filesystem::is_empty(PathOf("other")));

  ScriptedHost full;
  {
    test::FileSizeLimit limit(1 << 20);
    EXPECT_FALSE(CopyBoxCommDialog(full, m_operations, {big}, PathOf("other").string(), "copy"));
  }
  EXPECT_EQ(full.Texts(), (Texts{"Error writing to disc!", "Error copying BIG.bin!!!"}));
  EXPECT_TRUE(std::filesystem::is_empty(PathOf("other")));
}

// Runs `body` in a child process as an ordinary user, since permissions do not bind the
// superuser the tests may run as; returns its exit status.
int ExitStatusUnprivileged(const std::function<int()>& body) {
  const pid_t child = ::fork();
  if (child == 0) {
    constexpr uid_t kNobody = 65534;
    if (::geteuid() == 0 && (::setgid(kNobody) != 0 || ::setuid(kNobody) != 0)) ::_exit(99);
    ::_exit(body());
  }
  int status = 0;
  ::waitpid(child, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST_F(FileSystemOperationsTest, AFolderThatCannotBeWrittenIsPermissionDenied) {
  namespace fs = std::filesystem;
  fs::permissions(Dir(), fs::perms::owner_all | fs::perms::group_read | fs::perms::group_exec |
                             fs::perms::others_read | fs::perms::others_exec);
  fs::permissions(PathOf("other"),
                  fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write,
                  fs::perm_options::remove);
  const int status = ExitStatusUnprivileged([this] {
    FileOperationRequest request;
    request.verb = FileVerb::Copy;
    request.sources = {m_game};
    request.destination = PathOf("other");
    return static_cast<int>(m_operations.Run(request, m_host).code);
  });
  EXPECT_EQ(status, static_cast<int>(FileOpCode::AccessDenied));
  EXPECT_TRUE(fs::is_empty(PathOf("other")));
}

}  // namespace
}  // namespace romsteward
