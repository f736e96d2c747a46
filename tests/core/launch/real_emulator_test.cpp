// Smoke tests with the Debian emulators: each starts for real under a display of its own,
// keeps running, is ended, and the launch cleans up after it. Skipped when the emulator or
// Xvfb is not installed (`make test` installs them).
#include <gtest/gtest.h>

#include <chrono>
#include <fstream>
#include <iostream>
#include <thread>

#include "core/app/launch_command.h"
#include "core/launch/play_history.h"
#include "core/launch/posix_process.h"
#include "support/place_fixture.h"
#include "support/scoped_env.h"

namespace romsteward {
namespace {

using namespace std::chrono_literals;

constexpr const char* kXvfb = "/usr/bin/Xvfb";

bool Exists(const std::filesystem::path& path) {
  std::error_code error;
  return std::filesystem::exists(path, error);
}

// Polls `done` every 50 ms until it holds or `limit` has passed.
template <class Predicate>
bool WaitFor(Predicate done, std::chrono::milliseconds limit) {
  for (auto waited = 0ms; waited < limit; waited += 50ms) {
    if (done()) return true;
    std::this_thread::sleep_for(50ms);
  }
  return done();
}

std::string Comm(pid_t pid) {
  std::ifstream in("/proc/" + std::to_string(pid) + "/comm");
  std::string name;
  std::getline(in, name);
  return name;
}

class RealEmulatorTest : public test::PlaceTest {
protected:
  // A display no one else uses: the first free number from 90 on.
  bool StartDisplay() {
    for (int number = 90 + static_cast<int>(getpid() % 50); number < 400; ++number) {
      const std::string name = ":" + std::to_string(number);
      if (Exists("/tmp/.X11-unix/X" + std::to_string(number)) ||
          Exists("/tmp/.X" + std::to_string(number) + "-lock"))
        continue;
      auto server =
          m_runner.Start({kXvfb, {name, "-nolisten", "tcp", "-screen", "0", "800x600x24"}, {}, {}});
      if (!server) return false;
      const auto socket = "/tmp/.X11-unix/X" + std::to_string(number);
      if (WaitFor([&] { return Exists(socket) || !server->IsRunning(); }, 5s) &&
          server->IsRunning()) {
        m_display = name;
        m_server.emplace(std::move(*server));
        return true;
      }
      server->Terminate();  // lost a race for the number: try the next
    }
    return false;
  }

  void TearDown() override {
    if (m_server) {
      m_server->Terminate();
      m_server->Wait();
    }
  }

  // Starts `profile` on an archived cartridge, sees it run, ends it, checks the clean-up.
  void SmokeTest(std::string_view program, EmulatorTab tab) {
    const std::filesystem::path emulator = std::filesystem::path("/usr/games") / program;
    if (!Exists(emulator)) GTEST_SKIP() << emulator << " is not installed";
    if (!Exists(kXvfb)) GTEST_SKIP() << "Xvfb is not installed";
    ASSERT_TRUE(StartDisplay()) << "no display could be started";

    const std::string home = MakeDir("home");
    test::ScopedEnv display("DISPLAY", m_display);
    test::ScopedEnv homeEnv("HOME", home);
    test::ScopedEnv mednafenHome("MEDNAFEN_HOME", home + "/.mednafen");
    test::ScopedEnv config("XDG_CONFIG_HOME", home + "/.config");
    test::ScopedEnv data("XDG_DATA_HOME", home + "/.local/share");
    test::ScopedEnv audio("SDL_AUDIODRIVER", "dummy");
    test::ScopedEnv multi("MEDNAFEN_ALLOWMULTI", "1");

    CartridgeSpec spec;
    spec.backupRam = true;
    const std::string zip =
        Put(MakeDir("zips"), "demo.zip", Zip({{"Smoke Test (U).bin", BuildCartridgeImage(spec)}}));
    const std::string temp = MakeDir("temp");
    ASSERT_TRUE(settings.SaveSetting(kSectionSettings, "temp", temp));

    LaunchRequest request;
    request.diret = zip;
    request.zipListing = true;
    request.entryText = "Smoke Test (U).bin";
    request.country = "USA";
    request.options.preferredEmulator = static_cast<int>(tab);
    request.options.blastNoSound = request.options.mednafenNoSound = true;

    LaunchCommand launch(host, settings, m_runner);
    const auto command = launch.Begin(request);
    ASSERT_TRUE(command) << host.Transcript();
    EXPECT_EQ(command->process.program, emulator.string());
    auto child = m_runner.Start(command->process);
    ASSERT_TRUE(child) << child.error().message;
    // Running, as itself, and still running a moment later: the cartridge did not freeze it.
    EXPECT_TRUE(WaitFor([&] { return Comm(child->Pid()) == program; }, 2s));
    std::this_thread::sleep_for(700ms);
    EXPECT_TRUE(child->IsRunning());
    EXPECT_FALSE(std::filesystem::is_empty(Utf8ToPath(temp)));
    child->Terminate();
    const ProcessOutcome outcome = child->Wait();
    launch.Complete(outcome);

    // It ended by itself on SIGTERM. BlastEm has been seen to exit with 1 instead of 0 on a
    // heavily loaded machine, which the launch reports as a failure; the clean-up is the same.
    EXPECT_TRUE(outcome.started);
    EXPECT_EQ(outcome.signal, 0);
    if (!launch.Succeeded()) std::cerr << "note: " << host.Transcript() << '\n';
    EXPECT_TRUE(std::filesystem::is_empty(Utf8ToPath(temp)));
    EXPECT_TRUE(PlayHistory(settings, request.entryText));
  }

  PosixProcessRunner m_runner;
  std::optional<ChildProcess> m_server;
  std::string m_display;
};

TEST_F(RealEmulatorTest, BlastEmRunsTheCartridgeAndTheLaunchCleansUp) {
  SmokeTest("blastem", EmulatorTab::BlastEm);
}

TEST_F(RealEmulatorTest, MednafenRunsTheCartridgeAndTheLaunchCleansUp) {
  SmokeTest("mednafen", EmulatorTab::Mednafen);
}

}  // namespace
}  // namespace romsteward
