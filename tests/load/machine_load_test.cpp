// The real emulators under a machine whose every core is kept busy: each smoke run must still
// pass, and none may hang. Runs alone (see tests/CMakeLists.txt).
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <iostream>
#include <thread>
#include <vector>

#include "support/real_emulator.h"
#include "support/temp_dir.h"

namespace romsteward {
namespace {

constexpr int kRunsEach = 10;

// One spinning process per core, each in a process group of its own, killed with the object.
class MachineLoad {
public:
  MachineLoad() {
    const unsigned cores = std::max(1u, std::thread::hardware_concurrency());
    for (unsigned i = 0; i < cores; ++i) {
      const pid_t pid = fork();
      if (pid == 0) {
        setpgid(0, 0);
        volatile unsigned long spin = 0;
        for (;;)
          spin = spin + 1;
      }
      if (pid > 0) {
        setpgid(pid, pid);  // before the child gets to it, too: no kill may miss it
        m_spinners.push_back(pid);
      }
    }
  }
  ~MachineLoad() {
    for (const pid_t pid : m_spinners) {
      kill(-pid, SIGKILL);
      waitpid(pid, nullptr, 0);
    }
  }
  MachineLoad(const MachineLoad&) = delete;
  MachineLoad& operator=(const MachineLoad&) = delete;
  std::size_t Count() const { return m_spinners.size(); }

private:
  std::vector<pid_t> m_spinners;
};

TEST(MachineLoadTest, RealEmulatorsPassEveryRunOnABusyMachine) {
  for (const char* program : {"blastem", "mednafen"})
    if (const std::string missing = test::MissingForRealEmulator(program); !missing.empty())
      GTEST_SKIP() << missing;
  test::TempDir dir;
  test::VirtualDisplay display;
  ASSERT_TRUE(display.Start());
  const MachineLoad load;
  ASSERT_GT(load.Count(), 0u);

  int failures = 0;
  double slowest = 0;
  for (int run = 0; run < kRunsEach; ++run) {
    for (const auto& [program, tab] : {std::pair{"blastem", EmulatorTab::BlastEm},
                                       std::pair{"mednafen", EmulatorTab::Mednafen}}) {
      const auto folder = dir / (std::string(program) + std::to_string(run));
      const auto began = std::chrono::steady_clock::now();
      const std::string failure = test::SmokeRun(program, tab, display.Name(), folder);
      const double seconds =
          std::chrono::duration<double>(std::chrono::steady_clock::now() - began).count();
      slowest = std::max(slowest, seconds);
      if (!failure.empty()) {
        ++failures;
        ADD_FAILURE() << program << " run " << run << ": " << failure;
      }
    }
  }
  std::cerr << 2 * kRunsEach << " runs under " << load.Count() << " spinning processes, "
            << failures << " failed, the slowest took " << slowest << " s\n";
  EXPECT_EQ(failures, 0);
}

}  // namespace
}  // namespace romsteward
