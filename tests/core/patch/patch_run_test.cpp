#include "core/patch/patch_run.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "core/patch/patch_store_fixture.h"
#include "core/settings/app_settings.h"

namespace romsteward {
namespace {

using test::Bytes;

class PatchRun : public test::PatchStoreTest {
protected:
  bool RecordLeft() const {
    const auto records = m_store->EnumerateValueNames(SectionKeyPath(kSectionPatchRun));
    return records.ok() && !records->empty();
  }
};

TEST_F(PatchRun, PatchesHoldForTheRunAndComeOffAfterIt) {
  const auto image = Put("A.BIN", "0123456789");
  StoreRaw("A.BIN|wide", "3|ABCD|2345");  // offsets 2..5
  StoreRaw("A.BIN2|sequel", "5|xy|45");   // A.BIN2's patch comes along: same prefix
  StoreRaw("a.bin|other case", "1|Q|0");  // not this image's for the launch
  StoreRaw("B.BIN|elsewhere", "1|Q|0");
  {
    DynamicPatchRun run = DynamicPatchRun::Apply(m_host, *m_store, "A.BIN", image);
    EXPECT_TRUE(run.Applied());
    EXPECT_EQ(run.PatchCount(), 2u);
    // Overlapping bytes: the later patch in enumeration order wins for the run.
    EXPECT_EQ(test::ReadTestFile(image), "01ABxy6789");
    EXPECT_TRUE(RecordLeft());
    run.Restore();
    EXPECT_EQ(test::ReadTestFile(image), "0123456789");
    EXPECT_FALSE(RecordLeft());
  }  // leaving the scope restores nothing a second time
  EXPECT_EQ(test::ReadTestFile(image), "0123456789");
  EXPECT_TRUE(m_host.Events().empty());
}

TEST_F(PatchRun, RestoreWritesTheSavedOldBytesAndCutsWhatThePatchAdded) {
  const auto image = Put("A.BIN", "012345");
  StoreRaw("A.BIN|tail", "5|" + Bytes({'|', 0, '|', 'Z'}) + "|45");  // runs past the end
  StoreRaw("A.BIN|stale", "1|X|S");  // saved when the first byte was "S"
  StoreRaw("A.BIN|broken", "7|no second field");
  DynamicPatchRun run = DynamicPatchRun::Apply(m_host, *m_store, "A.BIN", image);
  EXPECT_EQ(m_host.Texts(),
            std::vector<std::string>{"Error in dynamic patch. Please, create it again"});
  EXPECT_EQ(test::ReadTestFile(image), "X123" + Bytes({'|', 0, '|', 'Z'}));
  run.Restore();
  EXPECT_EQ(test::ReadTestFile(image), "S12345");
}

TEST_F(PatchRun, RunCutShortByACrashIsTakenBackAtTheNextStart) {
  const auto image = Put("A.BIN", "0123456789");
  StoreRaw("A.BIN|lives", "2|" + Bytes({0, '|'}) + "|12");
  const auto storeFile = PathOf("settings.sqlite3");
  m_store.reset();

  // The child patches for a run and dies before it could restore.
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    auto store = RegistryStore::Open(storeFile);
    test::ScriptedHost host;
    if (store.ok())
      (void)new DynamicPatchRun(DynamicPatchRun::Apply(host, **store, "A.BIN", image));
    _exit(store.ok() ? 0 : 1);
  }
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
  ASSERT_EQ(test::ReadTestFile(image), "0" + Bytes({0, '|'}) + "3456789");

  auto store = RegistryStore::Open(storeFile);
  ASSERT_TRUE(store.ok());
  m_store = std::move(store).value();
  EXPECT_EQ(RecoverInterruptedPatchRuns(m_host, *m_store), 1u);
  EXPECT_EQ(test::ReadTestFile(image), "0123456789");
  ASSERT_EQ(m_host.Texts().size(), 1u);
  EXPECT_NE(m_host.Texts()[0].find("A.BIN"), std::string::npos);
  EXPECT_FALSE(RecordLeft());
  EXPECT_EQ(RecoverInterruptedPatchRuns(m_host, *m_store), 0u);
}

TEST_F(PatchRun, RecordOfAVanishedFileIsReportedAndDropped) {
  const auto image = Put("COPY.BIN", "0123456789");
  StoreRaw("COPY.BIN|p", "1|Z|0");
  auto run = DynamicPatchRun::Apply(m_host, *m_store, "COPY.BIN", image);
  std::filesystem::remove(image);  // the extracted copy is gone before the restore
  run.Restore();
  ASSERT_EQ(m_host.Texts().size(), 1u);
  EXPECT_NE(m_host.Texts()[0].find("next start"), std::string::npos);
  EXPECT_TRUE(RecordLeft());

  EXPECT_EQ(RecoverInterruptedPatchRuns(m_host, *m_store), 0u);
  EXPECT_NE(m_host.Texts().back().find("no longer exists"), std::string::npos);
  EXPECT_FALSE(RecordLeft());
}

}  // namespace
}  // namespace romsteward
