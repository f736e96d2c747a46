// Images changed in place, with the process killed at many points of the change: afterwards
// every byte is the old or the new one (the in-place writes go record by record, so a kill
// may leave some records written: the damage stays within the bytes being written), and
// running the command again finishes the job.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <functional>
#include <optional>
#include <thread>

#include "core/cart/convert.h"
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
      ASSERT_TRUE(StorePatch(**store, "GAME.BIN", "p" + std::to_string(n), value, image).ok());
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
