// Images changed in place, with the process killed at many points of the change: afterwards
// every byte is the old or the new one (the in-place writes go record by record, so a kill
// may leave some records written: the damage stays within the bytes being written), and
// running the command again finishes the job.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <functional>
#include <optional>
#include <thread>

#include "core/cart/convert.h"
#include "core/cart/interleave.h"
#include "core/host/host.h"
#include "core/patch/dynamic_patches.h"
#include "core/patch/ips_create.h"
#include "core/patch/patch_run.h"
#include "core/settings/registry_store.h"
#include "support/cart_images.h"
#include "support/scripted_host.h"
#include "tool_runner.h"

namespace romsteward {
namespace {

constexpr int kKills = 24;
constexpr std::size_t kImageSize = 4 * 1024 * 1024;

class KillDuringWriteTest : public test::ByteFileTest {
protected:
  // Runs `work` in a child process, killed after `delay` if one is given; returns once it is
  // gone, with how long that took.
  static std::chrono::microseconds InChild(const std::function<void()>& work,
                                           std::optional<std::chrono::microseconds> delay = {}) {
    const auto start = std::chrono::steady_clock::now();
    const pid_t child = ::fork();
    if (child < 0) {
      ADD_FAILURE() << "fork failed";
      return {};
    }
    if (child == 0) {
      work();
      ::_exit(0);
    }
    if (delay) {
      std::this_thread::sleep_for(*delay);
      ::kill(child, SIGKILL);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::steady_clock::now() -
                                                                 start);
  }
  // Every byte of `now` is the old or the new one, and its length lies between theirs.
  static ::testing::AssertionResult OldOrNew(const std::string& now, const std::string& before,
                                             const std::string& after) {
    if (now.size() < std::min(before.size(), after.size()) ||
        now.size() > std::max(before.size(), after.size()))
      return ::testing::AssertionFailure() << "length " << now.size();
    for (std::size_t i = 0; i < now.size(); ++i) {
      const bool old = i < before.size() && now[i] == before[i];
      const bool fresh = i < after.size() && now[i] == after[i];
      if (!old && !fresh) return ::testing::AssertionFailure() << "byte 0x" << std::hex << i;
    }
    return ::testing::AssertionSuccess();
  }
  // Kills `args` at kKills points of its run on an image holding `before`, which it turns into
  // `after`; each time the image must hold old or new bytes only, and a second run completes.
  void KillAtManyPoints(const std::vector<std::string>& args, const std::filesystem::path& image,
                        const std::string& before, const std::string& after) {
    const auto work = [&] { test::RunToolWith(args); };
    Put(image.filename().string(), before);
    const auto duration = InChild(work);  // left alone, so the kills spread over all of it
    for (int kill = 0; kill < kKills; ++kill) {
      Put(image.filename().string(), before);
      InChild(work, duration * kill / kKills);
      EXPECT_TRUE(OldOrNew(test::ReadTestFile(image), before, after)) << "kill " << kill;
      test::RunToolWith(args);
      EXPECT_EQ(test::ReadTestFile(image), after) << "kill " << kill;
    }
  }
};

// The system calls that change a file or a folder's entries.
bool ChangesAFile(const __ptrace_syscall_info& call) {
  switch (call.entry.nr) {
    case SYS_write:
    case SYS_pwrite64:
    case SYS_writev:
    case SYS_pwritev:
    case SYS_pwritev2:
    case SYS_ftruncate:
    case SYS_truncate:
    case SYS_fallocate:
    case SYS_rename:
    case SYS_renameat:
    case SYS_renameat2:
    case SYS_unlink:
    case SYS_unlinkat:
    case SYS_link:
    case SYS_linkat:
    case SYS_fchmod:
    case SYS_fchmodat:
      return true;
    case SYS_openat:
      return (call.entry.args[2] & (O_CREAT | O_TRUNC)) != 0;
    default:
      return false;
  }
}

enum class Traced { Killed, Finished, NotAllowed };

// Runs `work` in a traced child and kills it as it enters its file change number `n` (from
// 0), before the system call does anything.
Traced KillBeforeChange(const std::function<void()>& work, int n) {
  const pid_t child = ::fork();
  if (child == 0) {
    if (::ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0) ::_exit(99);
    ::raise(SIGSTOP);
    work();
    ::_exit(0);
  }
  int status = 0;
  if (::waitpid(child, &status, 0) != child || !WIFSTOPPED(status)) return Traced::NotAllowed;
  ::ptrace(PTRACE_SETOPTIONS, child, nullptr, PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL);
  int signal = 0;
  int seen = 0;
  while (::ptrace(PTRACE_SYSCALL, child, nullptr, signal) == 0 &&
         ::waitpid(child, &status, 0) == child && WIFSTOPPED(status)) {
    signal = WSTOPSIG(status) == (SIGTRAP | 0x80) ? 0 : WSTOPSIG(status);
    __ptrace_syscall_info call{};
    if (signal != 0 || ::ptrace(PTRACE_GET_SYSCALL_INFO, child, sizeof call, &call) <= 0) continue;
    if (call.op == PTRACE_SYSCALL_INFO_ENTRY && ChangesAFile(call) && seen++ == n) {
      ::kill(child, SIGKILL);
      while (::waitpid(child, &status, 0) == child && WIFSTOPPED(status)) {
      }
      return Traced::Killed;
    }
  }
  return Traced::Finished;
}

// Kills `args` before each of its file changes in turn, on `image` holding `before`: each
// time the image holds `before`, `after` or one of `between`, and a second run gives `after`.
void KillBeforeEveryChange(const std::vector<std::string>& args, const std::filesystem::path& image,
                           const std::string& before, const std::string& after,
                           const std::vector<std::string>& between = {}) {
  const auto work = [&] { test::RunToolWith(args); };
  for (int n = 0;; ++n) {
    test::WriteTestFile(image, before);
    const Traced traced = KillBeforeChange(work, n);
    if (traced == Traced::NotAllowed) GTEST_SKIP() << "this system does not let a test trace";
    const std::string now = test::ReadTestFile(image);
    EXPECT_TRUE(now == before || now == after ||
                std::find(between.begin(), between.end(), now) != between.end())
        << args[0] << ": killed before change " << n << " left a torn image";
    if (traced == Traced::Finished) {
      EXPECT_GT(n, 0) << args[0] << " changed nothing";
      EXPECT_EQ(now, after) << args[0];
      return;
    }
    test::RunToolWith(args);
    EXPECT_EQ(test::ReadTestFile(image), after) << args[0] << ": after change " << n;
  }
}

TEST_F(KillDuringWriteTest, InterleavedHeaderFieldsAreWrittenWhole) {
  const std::string good = test::MakeCartridge(256 * 1024, 12);
  std::string wrong = good;
  wrong[0x18E] = static_cast<char>(wrong[0x18E] ^ 0x21);  // both checksum bytes differ
  wrong[0x18F] = static_cast<char>(wrong[0x18F] ^ 0x10);
  for (const Layout layout : {Layout::Smd, Layout::Md}) {
    const auto image = PathOf(layout == Layout::Smd ? "game.smd" : "game.md");
    KillBeforeEveryChange({"checksum", "--fix", image.string()}, image, EncodeImage(wrong, layout),
                          EncodeImage(good, layout));
  }
  // The first volume of a split set holds the header.
  test::WriteTestFile(PathOf("SET.smd"), EncodeImage(wrong + wrong, Layout::Smd));
  ASSERT_EQ(test::RunToolWith({"split", "--size", "2", PathOf("SET.smd").string()}).status, 0);
  const std::string volume = test::ReadTestFile(PathOf("SET.1"));
  ASSERT_EQ(test::RunToolWith({"checksum", "--fix", PathOf("SET.1").string()}).status, 0);
  KillBeforeEveryChange({"checksum", "--fix", PathOf("SET.1").string()}, PathOf("SET.1"), volume,
                        test::ReadTestFile(PathOf("SET.1")));

  // Cutting an SMD image: the one state between is the cut file with its old block count.
  const std::string smd = EncodeImage(good, Layout::Smd);
  const std::string longer = EncodeImage(good + std::string(kBlockSize, '\x11'), Layout::Smd);
  std::string cutOnly = smd;
  cutOnly.replace(0, 3, longer.substr(0, 3));
  KillBeforeEveryChange({"--settings", PathOf("s.sqlite3").string(), "--yes", "repair",
                         "--truncate", PathOf("long.smd").string()},
                        PathOf("long.smd"), longer, smd, {cutOnly});
}

TEST_F(KillDuringWriteTest, ChecksumFixAndHeaderRepair) {
  const std::string good = test::MakeCartridge(kImageSize, 9);
  std::string wrong = good;
  wrong[0x18F] = static_cast<char>(wrong[0x18F] ^ 0x10);
  KillAtManyPoints({"checksum", "--fix", PathOf("game.bin").string()}, PathOf("game.bin"), wrong,
                   good);

  // A copier header with a wrong block count is rewritten whole.
  const std::string smd = EncodeImage(good, Layout::Smd);
  std::string damaged = smd;
  damaged[0] = 3;
  KillAtManyPoints(
      {"--settings", PathOf("s.sqlite3").string(), "--yes", "repair", PathOf("game.smd").string()},
      PathOf("game.smd"), damaged, smd);
}

TEST_F(KillDuringWriteTest, IpsApplyWritesRecordByRecord) {
  const std::string before = test::MakeCartridge(kImageSize, 4);
  std::string after = before;
  for (std::size_t at = 0x200; at < after.size(); at += 97)
    after[at] = static_cast<char>(~after[at]);
  after += std::string(300, 'T');  // a record past the end lengthens the image
  auto patch = DiffToIps(before + std::string(300, '\0'), after);
  ASSERT_TRUE(patch.ok()) << patch.error().message;
  Put("change.ips", patch->bytes);
  KillAtManyPoints({"ips", "apply", PathOf("change.ips").string(), PathOf("game.bin").string()},
                   PathOf("game.bin"), before, after);
}

TEST_F(KillDuringWriteTest, DynamicPatchesAreTakenBackAfterAKill) {
  const std::string before = test::MakeCartridge(kImageSize, 6);
  const auto image = Put("game.bin", before);
  const auto storeFile = PathOf("store.sqlite3");
  {
    auto store = RegistryStore::Open(storeFile);
    ASSERT_TRUE(store.ok());
    for (std::uint64_t n = 0; n < 400; ++n) {
      const std::uint64_t at = 0x200 + n * 9973;
      const PatchValue value{at + 1, "\x4E\x71\x4E\x71", before.substr(at, 4)};
      ASSERT_TRUE(StorePatch(**store, "GAME.BIN", "p" + std::to_string(n), value).ok());
    }
  }
  // The launch's patching step, killed while the emulator would run (or before).
  const auto work = [&] {
    test::ScriptedHost host;
    auto store = RegistryStore::Open(storeFile);
    if (!store) return;
    auto run = DynamicPatchRun::Apply(host, **store, "GAME.BIN", image);
    ::pause();
  };
  const auto duration = std::chrono::microseconds(20000);
  for (int kill = 0; kill < kKills; ++kill) {
    InChild(work, duration * kill / kKills);
    test::ScriptedHost host;
    auto store = RegistryStore::Open(storeFile);
    ASSERT_TRUE(store.ok());
    RecoverInterruptedPatchRuns(host, **store);
    EXPECT_EQ(test::ReadTestFile(image), before) << "kill " << kill;
  }
}

}  // namespace
}  // namespace romsteward
