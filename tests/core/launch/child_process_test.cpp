// The emulator's process: watched by its exit and its standard error together, ended with
// its whole process group, and never left behind by a test.
#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include <chrono>
#include <fstream>
#include <thread>

#include "core/launch/posix_process.h"
#include "support/temp_dir.h"

namespace romsteward {
namespace {

using namespace std::chrono_literals;

bool Gone(pid_t pid) {
  // A zombie waiting for init counts as gone: it runs no more.
  std::ifstream stat("/proc/" + std::to_string(pid) + "/stat");
  std::string pidText, name, state;
  return !(stat >> pidText >> name >> state) || state == "Z";
}

class ChildProcessTest : public test::TempDirTest {
protected:
  // Runs `script` under sh; the helper it starts writes its pid to "helper".
  Result<ChildProcess> Start(const std::string& script) {
    return runner.Start({"/bin/sh", {"-c", script}, Dir(), {}});
  }
  pid_t Helper() {
    pid_t pid = 0;
    for (int tries = 0; tries < 100 && pid == 0; ++tries) {
      std::ifstream in(PathOf("helper"));
      if (!(in >> pid)) std::this_thread::sleep_for(20ms);
    }
    return pid;
  }
  PosixProcessRunner runner;
};

TEST_F(ChildProcessTest, AHelperHoldingTheErrorPipeDoesNotHoldTheWait) {
  auto child = Start("echo said before >&2; (sleep 600 & echo $! > helper); exit 3");
  ASSERT_TRUE(child);
  const pid_t helper = Helper();
  const auto began = std::chrono::steady_clock::now();
  const ProcessOutcome outcome = child->Wait();
  EXPECT_LT(std::chrono::steady_clock::now() - began, 10s);
  EXPECT_EQ(outcome.exitStatus, 3);
  EXPECT_EQ(outcome.stderrTail, "said before");
  // It shares the emulator's group, so ending the group reaches it.
  ASSERT_GT(helper, 0);
  EXPECT_EQ(getpgid(helper), child->Pid());
  kill(-child->Pid(), SIGKILL);
  for (int tries = 0; tries < 100 && !Gone(helper); ++tries)
    std::this_thread::sleep_for(20ms);
  EXPECT_TRUE(Gone(helper));
}

TEST_F(ChildProcessTest, EndingTermsTheGroupAndKillsWhatIgnoresIt) {
  // Ends on SIGTERM: exit by the signal, nothing killed.
  auto polite = Start("sleep 600");
  ASSERT_TRUE(polite);
  EXPECT_EQ(polite->End(5s).signal, SIGTERM);

  // Ignores SIGTERM, as MAME does, and leaves a helper that ignores it too.
  auto stubborn = Start("trap '' TERM; (sleep 600 & echo $! > helper; wait); exit 0");
  ASSERT_TRUE(stubborn);
  const pid_t helper = Helper();
  ASSERT_GT(helper, 0);
  const auto began = std::chrono::steady_clock::now();
  const ProcessOutcome outcome = stubborn->End(300ms);
  EXPECT_EQ(outcome.signal, SIGKILL);
  EXPECT_LT(std::chrono::steady_clock::now() - began, 10s);
  for (int tries = 0; tries < 100 && !Gone(helper); ++tries)
    std::this_thread::sleep_for(20ms);
  EXPECT_TRUE(Gone(helper));
}

TEST_F(ChildProcessTest, AnInterruptWhileRunningEndsTheChildAndNotUs) {
  // Ctrl+C reaches the terminal tool alone now that the emulator has its own group: the tool
  // passes it on and stays to clean up.
  std::thread interrupt([] {
    std::this_thread::sleep_for(300ms);
    kill(getpid(), SIGINT);
  });
  const ProcessOutcome outcome = runner.Run({"/bin/sleep", {"600"}, {}, {}});
  interrupt.join();
  EXPECT_TRUE(outcome.started);
  EXPECT_EQ(outcome.signal, SIGTERM);
}

TEST_F(ChildProcessTest, AChildNeverWaitedForIsEndedWithItsObject) {
  pid_t pid = 0;
  {
    auto child = Start("exec sleep 600");
    ASSERT_TRUE(child);
    pid = child->Pid();
  }
  EXPECT_TRUE(Gone(pid));
}

}  // namespace
}  // namespace romsteward
