// Smoke tests with the Debian emulators: each starts for real under a display of its own,
// keeps running with no dialog of its own, is ended, and the launch cleans up after it.
// Skipped when the emulator, Xvfb or xwininfo is not installed (`make test` installs them).
#include "support/real_emulator.h"

#include <gtest/gtest.h>

#include "support/temp_dir.h"

namespace romsteward {
namespace {

class RealEmulatorTest : public test::TempDirTest {
protected:
  void Smoke(std::string_view program, EmulatorTab tab, const std::string& emulatorPath = {}) {
    if (const std::string missing = test::MissingForRealEmulator(program); !missing.empty())
      GTEST_SKIP() << missing;
    ASSERT_TRUE(display.Start()) << "no display could be started";
    failure = test::SmokeRun(program, tab, display.Name(), Dir(), emulatorPath);
  }

  test::VirtualDisplay display;
  std::string failure;
};

TEST_F(RealEmulatorTest, BlastEmRunsTheCartridgeAndTheLaunchCleansUp) {
  Smoke("blastem", EmulatorTab::BlastEm);
  EXPECT_EQ(failure, "");
}

TEST_F(RealEmulatorTest, MednafenRunsTheCartridgeAndTheLaunchCleansUp) {
  Smoke("mednafen", EmulatorTab::Mednafen);
  EXPECT_EQ(failure, "");
}

// An emulator stopped at a message box of its own is a failure naming the box, found at
// once rather than after a timeout. xmessage stands in for the box.
TEST_F(RealEmulatorTest, AnEmulatorsDialogIsReportedWithItsText) {
  const auto fake = Dir() / "blastem-with-a-box";
  test::WriteTestFile(fake,
                      "#!/bin/sh\necho 'Failed to set vsync to off' >&2\n"
                      "exec xmessage -title 'Fatal Error' 'Failed to set vsync to off'\n");
  std::filesystem::permissions(fake, std::filesystem::perms::owner_all);
  if (!std::filesystem::exists("/usr/bin/xmessage")) GTEST_SKIP() << "xmessage is not installed";
  Smoke("blastem", EmulatorTab::BlastEm, fake.string());
  EXPECT_NE(failure.find("dialog \"Fatal Error\""), std::string::npos) << failure;
  EXPECT_NE(failure.find("Failed to set vsync to off"), std::string::npos) << failure;
}

}  // namespace
}  // namespace romsteward
