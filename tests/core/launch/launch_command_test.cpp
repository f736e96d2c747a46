#include "core/app/launch_command.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <sstream>

#include "core/launch/extracted_copies.h"
#include "core/launch/play_history.h"
#include "core/launch/posix_process.h"
#include "core/launch/run_owner.h"
#include "core/patch/dynamic_patches.h"
#include "core/patch/patch_run.h"
#include "support/cart_images.h"
#include "support/place_fixture.h"
#include "support/recording_starter.h"

namespace romsteward {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

class LaunchCommandTest : public test::PlaceTest {
protected:
  void SetUp() override {
    roms = MakeDir("roms");
    temp = MakeDir("temp");
    log = PathOf("log");
    std::filesystem::create_directories(log);
    // The fake emulator: records its arguments, working directory, the bytes of every file
    // it was given and what lay beside them, then speaks on stderr and exits as told.
    emulator = Put(MakeDir("emu"), "fake-emulator",
                   "#!/bin/sh\n"
                   "log='" +
                       PathToUtf8(log) +
                       "'\n"
                       "pwd > \"$log/cwd\"\n"
                       ": > \"$log/args\"\n"
                       "for a in \"$@\"; do printf '%s\\n' \"$a\" >> \"$log/args\";\n"
                       "  if [ -f \"$a\" ]; then cat \"$a\" > \"$log/image\"; "
                       "ls \"$(dirname \"$a\")\" > \"$log/beside\"; fi; done\n"
                       "echo 'first complaint' >&2\necho 'last complaint' >&2\n"
                       "exit $(cat \"$log/exit\" 2>/dev/null || echo 0)\n");
    std::filesystem::permissions(emulator, std::filesystem::perms::owner_all);
    for (std::string_view key : {"Genem", "KGen", "Genecyst"})
      EXPECT_TRUE(settings.SaveSetting(kSectionSettings, key, emulator));
  }

  LaunchRequest Request(std::string_view entry, EmulatorTab tab = EmulatorTab::GenEm) {
    LaunchRequest request;
    request.diret = roms;
    request.entryText = entry;
    request.options.preferredEmulator = static_cast<int>(tab);
    request.country = "USA";
    return request;
  }
  bool Run(const LaunchRequest& request) {
    LaunchCommand launch(host, settings, runner);
    return RunAndWait(launch, runner, request);
  }
  std::string Logged(std::string_view name) const {
    std::error_code error;
    return std::filesystem::exists(log / name, error) ? test::ReadTestFile(log / name) : "<none>";
  }
  void PatchImage(std::string_view entry) {
    ASSERT_TRUE(StorePatch(settings.Store(), entry, "infinite lives", {0x201, "XY", "\x60\xFE"},
                           Utf8ToPath(roms) / Utf8ToPath(entry)));
  }

  std::string roms;
  std::string temp;
  std::filesystem::path log;
  std::string emulator;
  PosixProcessRunner runner;
};

TEST_F(LaunchCommandTest, ThePatchIsOnDuringTheRunAndGoneAfterIt) {
  const std::string image = ImageBytes(Layout::Bin);
  const std::string path = Put(roms, "Game (W) [!].bin", image);
  PatchImage("Game (W) [!].bin");
  LaunchRequest request = Request("Game (W) [!].bin");
  request.options.activateDynamicPatch = true;
  request.extraCommandLine = R"(-extra  "two  words")";
  // Named from our folder, the image must reach the emulator, which runs in its own.
  request.diret = PathToUtf8(std::filesystem::relative(Utf8ToPath(roms)));

  ASSERT_TRUE(Run(request)) << host.Transcript();
  EXPECT_EQ(Logged("args"), path + "\n-nojoy\n-z80\n-extra\ntwo  words\n");
  EXPECT_EQ(Logged("cwd"), PathToUtf8(PathOf("emu")) + "\n");
  EXPECT_EQ(Logged("image").substr(0x200, 2), "XY");
  EXPECT_EQ(test::ReadTestFile(Utf8ToPath(path)), image);
  EXPECT_THAT(host.Texts(), IsEmpty());
  const auto played = PlayHistory(settings, "Game (W) [!].bin");
  ASSERT_TRUE(played);
  EXPECT_GT(played->lastRun, 0);
}

TEST_F(LaunchCommandTest, ArchiveMembersAreExtractedForTheRunAndDeletedAfterIt) {
  const std::string first = ImageBytes(Layout::SplitFirst);
  // No temporary folder set: one in the user's cache folder, made when first needed.
  temp = PathToUtf8(PathOf("cache/romsteward/temp"));
  // A 7z member runs exactly as a ZIP member does.
  for (const auto& [name, format] :
       {std::pair{"set.zip", ArchiveFormat::Zip}, std::pair{"set.7z", ArchiveFormat::SevenZip}}) {
    SCOPED_TRACE(name);
    const auto bytes =
        BuildZipArchive({{"Set.1", first}, {"Set.2", "second"}, {"Other.bin", "x"}}, format);
    ASSERT_TRUE(bytes);
    const std::string archive = Put(MakeDir("zips"), name, *bytes);
    LaunchRequest request = Request("Set.1", EmulatorTab::KGen);  // KGen runs split sets
    request.diret = archive;
    request.zipListing = true;

    ASSERT_TRUE(Run(request)) << host.Transcript();
    EXPECT_EQ(Logged("image"), first);
    EXPECT_EQ(Logged("beside"), "Set.1\nSet.2\n");
    EXPECT_THAT(Logged("args"), ::testing::StartsWith(JoinDirName(temp, "Set.1") + "\n"));
    EXPECT_TRUE(std::filesystem::is_empty(Utf8ToPath(temp)));
    EXPECT_THAT(settings.Store().EnumerateValues(SectionKeyPath(kSectionExtractRun)).value(),
                IsEmpty());
  }
}

// "Error running emulator!" is for a start that failed; an emulator that ran and ended badly
// gets our own note, and its run counts in the history all the same.
TEST_F(LaunchCommandTest, AFailedStartIsAnErrorAndABadEndIsOurOwnNote) {
  Put(roms, "a.bin", ImageBytes(Layout::Bin));
  test::WriteTestFile(log / "exit", "3");
  {
    LaunchCommand launch(host, settings, runner);
    EXPECT_FALSE(RunAndWait(launch, runner, Request("a.bin")));
    EXPECT_TRUE(launch.Ran());
  }
  ASSERT_EQ(host.Events().size(), 1u);
  const test::HostEvent& note = host.Events()[0];
  EXPECT_THAT(note.text, ::testing::StartsWith(kEndedBadlyPrefix));
  EXPECT_THAT(note.text, Not(HasSubstr("Error running emulator!")));
  EXPECT_THAT(note.text, HasSubstr("exit status 3"));
  EXPECT_THAT(note.text, HasSubstr("first complaint\nlast complaint"));
  EXPECT_EQ(note.icon, MessageIcon::Exclamation);
  EXPECT_TRUE(PlayHistory(settings, "a.bin"));

  // A program that cannot start at all.
  std::filesystem::permissions(emulator, std::filesystem::perms::owner_read);
  LaunchCommand launch(host, settings, runner);
  EXPECT_FALSE(RunAndWait(launch, runner, Request("a.bin")));
  EXPECT_FALSE(launch.Ran());
  EXPECT_THAT(host.Texts().back(), ::testing::StartsWith("Error running emulator!"));
  EXPECT_THAT(host.Texts().back(), HasSubstr("Permission denied"));
}

TEST_F(LaunchCommandTest, EachCheckStopsTheLaunchWithItsMessage) {
  Put(roms, "a.bin", ImageBytes(Layout::Bin));
  test::WriteSplitSet(Utf8ToPath(roms) / "s", BuildCartridgeImage({}), 128 * 1024);
  Put(roms, "q.md", ImageBytes(Layout::Md));
  LaunchRequest zip = Request("a.bin");
  zip.zipListing = true;
  // The message is for a temporary folder the user chose and that has gone since.
  ASSERT_TRUE(settings.SaveSetting(kSectionSettings, "temp", PathToUtf8(PathOf("gone"))));
  LaunchRequest badTab = Request("a.bin");
  badTab.options.preferredEmulator = 7;
  struct Case {
    LaunchRequest request;
    std::string message;
  };
  const std::vector<Case> cases = {
      {Request(""), "Please, select a ROM"},
      {zip, "You must set a temporary folder (in 'Options' menu) in order to use ZIP files!"},
      {Request("s.1", EmulatorTab::GenEm), "You can only run splitted ROMs with KGen or Genecyst"},
      {Request("s.1", EmulatorTab::BlastEm),
       "You can only run splitted ROMs with KGen or Genecyst"},
      {Request("q.md", EmulatorTab::KGen), "You can only run MDs with GenEm"},
      {Request("s.2", EmulatorTab::KGen), "You need to run a splitted rom by its first volume!"},
      {badTab,
       "I don't know how you made appear a thirth emulator tab, but you did! Contact "
       "the author!"},
  };
  for (const auto& [request, message] : cases) {
    test::ScriptedHost fresh;
    LaunchCommand launch(fresh, settings, runner);
    EXPECT_FALSE(launch.Begin(request)) << message;
    EXPECT_THAT(fresh.Texts(), ElementsAre(message));
  }
  // A quote left open in the extra command line stops the launch before the patch goes on.
  const std::string image = ImageBytes(Layout::Bin);
  PatchImage("a.bin");
  LaunchRequest open = Request("a.bin");
  open.options.activateDynamicPatch = true;
  open.extraCommandLine = R"(-cfg "my file.cfg)";
  {
    test::ScriptedHost fresh;
    LaunchCommand launch(fresh, settings, runner);
    EXPECT_FALSE(launch.Begin(open));
    EXPECT_THAT(fresh.Texts(), ElementsAre(HasSubstr("not closed")));
    EXPECT_EQ(test::ReadTestFile(Utf8ToPath(JoinDirName(roms, "a.bin"))), image);
  }
  ASSERT_TRUE(settings.SaveSetting(kSectionSettings, "KGen", PathToUtf8(PathOf("gone.exe"))));
  LaunchCommand launch(host, settings, runner);
  EXPECT_FALSE(launch.Begin(Request("a.bin", EmulatorTab::KGen)));
  EXPECT_THAT(host.Texts(), ElementsAre("The emulator couldn't be found. Click on 'Options' "
                                        "menu, 'Directory' submenu and 'Search KGen' item to "
                                        "find it."));
  EXPECT_EQ(Logged("args"), "<none>");
}

TEST_F(LaunchCommandTest, AFileThatIsNoImageGoesToTheDefaultProgram) {
  const std::string notes = Put(roms, "notes.txt", "text");
  test::RecordingStarter starter;
  LaunchCommand launch(host, settings, starter);
  EXPECT_FALSE(launch.Begin(Request("notes.txt")));
  ASSERT_EQ(starter.started.size(), 1u);
  EXPECT_EQ(starter.started[0].program, "xdg-open");
  EXPECT_THAT(starter.started[0].arguments, ElementsAre(notes));
}

TEST_F(LaunchCommandTest, GenecystRewritesGenIniAndKeepsItsOwnLines) {
  Put(roms, "a.bin", ImageBytes(Layout::Bin));
  test::WriteTestFile(PathOf("emu") / "gen.ini", "-res 320 240\r\n-nofm\r\n");
  LaunchRequest request = Request("a.bin", EmulatorTab::Genecyst);
  request.extraCommandLine = "-x";
  ASSERT_TRUE(Run(request)) << host.Transcript();
  EXPECT_EQ(Logged("args"), "-run\n" + JoinDirName(roms, "a.bin") + "\n-hidegui\n");
  EXPECT_THAT(test::ReadTestFile(PathOf("emu") / "gen.ini"),
              ::testing::EndsWith("\r\n-version USA\r\n-sndrate 44100\r\n -x\r\n-res 320 240"));
}

TEST_F(LaunchCommandTest, ARunningEmulatorIsAskedAboutAndANoUndoesThePreparation) {
  const std::string image = ImageBytes(Layout::Bin);
  const std::string path = Put(roms, "a.bin", image);
  PatchImage("a.bin");
  // A configured emulator path that is running: a copy of sleep stands in for GenEmnew.
  const auto sleeper = PathOf("emu") / "gennew.exe";
  std::filesystem::copy_file("/bin/sleep", sleeper);
  ASSERT_TRUE(settings.SaveSetting(kSectionSettings, "Genemnew", PathToUtf8(sleeper)));
  auto running = runner.Start({PathToUtf8(sleeper), {"10"}, {}, {}});
  ASSERT_TRUE(running);

  LaunchRequest request = Request("a.bin");
  request.options.activateDynamicPatch = true;
  host.AnswerYesNo(Answer::No);
  EXPECT_FALSE(Run(request));
  EXPECT_THAT(host.Texts(), ElementsAre("An emulator is already running! Are you sure you want "
                                        "to continue?\r\n(the system may get too slow)"));
  EXPECT_EQ(Logged("args"), "<none>");
  EXPECT_EQ(test::ReadTestFile(Utf8ToPath(path)), image);
  running->Terminate();
  running->Wait();
}

TEST_F(LaunchCommandTest, AKilledLauncherLeavesNothingAfterTheNextStart) {
  const std::string image = ImageBytes(Layout::Bin);
  const std::string path = Put(roms, "a.bin", image);
  PatchImage("a.bin");
  const std::string zip = Put(MakeDir("zips"), "z.zip", Zip({{"b.bin", image}}));
  ASSERT_TRUE(settings.SaveSetting(kSectionSettings, "temp", temp));

  // A child prepares two launches and dies before either completes.
  const pid_t child = fork();
  ASSERT_NE(child, -1);
  if (child == 0) {
    auto store = RegistryStore::Open(PathOf("settings.sqlite3"));
    AppSettings own(**store);
    test::ScriptedHost quiet;
    LaunchRequest patched = Request("a.bin");
    patched.options.activateDynamicPatch = true;
    LaunchRequest archived = Request("b.bin");
    archived.diret = zip;
    archived.zipListing = true;
    LaunchCommand first(quiet, own, runner);
    LaunchCommand second(quiet, own, runner);
    const bool begun = first.Begin(patched) && second.Begin(archived);
    _exit(begun ? 0 : 1);
  }
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  ASSERT_EQ(WEXITSTATUS(status), 0);
  ASSERT_NE(test::ReadTestFile(Utf8ToPath(path)), image);
  ASSERT_FALSE(std::filesystem::is_empty(Utf8ToPath(temp)));

  RecoverInterruptedLaunches(host, settings.Store());
  EXPECT_EQ(test::ReadTestFile(Utf8ToPath(path)), image);
  EXPECT_TRUE(std::filesystem::is_empty(Utf8ToPath(temp)));
  ASSERT_EQ(host.Texts().size(), 1u);
  EXPECT_THAT(host.Texts()[0], HasSubstr("Its original bytes have been put back"));
  RecoverInterruptedLaunches(host, settings.Store());  // nothing left to do
  EXPECT_EQ(host.Texts().size(), 1u);
}

}  // namespace
}  // namespace romsteward

namespace romsteward {
namespace {

// An emulator that starts a long-lived helper holding its standard error and exits: the
// launch is over when the emulator is, with its clean-up done.
TEST_F(LaunchCommandTest, AHelperOutlivingTheEmulatorDoesNotHoldTheCleanUp) {
  const std::string image = ImageBytes(Layout::Bin);
  const std::string path = Put(roms, "a.bin", image);
  PatchImage("a.bin");
  PatchImage("b.bin");
  const std::string zip = Put(MakeDir("zips"), "z.zip", Zip({{"b.bin", image}}));
  ASSERT_TRUE(settings.SaveSetting(kSectionSettings, "temp", temp));
  const std::string forking =
      Put(PathToUtf8(PathOf("emu")), "forking-emulator",
          "#!/bin/sh\necho $$ >> '" + PathToUtf8(log / "pids") + "'\n(sleep 600 &) ; exit 0\n");
  std::filesystem::permissions(forking, std::filesystem::perms::owner_all);
  ASSERT_TRUE(settings.SaveSetting(kSectionSettings, "Genem", forking));

  LaunchRequest patched = Request("a.bin");
  LaunchRequest archived = Request("b.bin");
  archived.diret = zip;
  archived.zipListing = true;
  for (LaunchRequest* request : {&patched, &archived}) {
    request->options.activateDynamicPatch = true;
    const auto began = std::chrono::steady_clock::now();
    EXPECT_TRUE(Run(*request)) << host.Transcript();
    EXPECT_LT(std::chrono::steady_clock::now() - began, std::chrono::seconds(10));
  }
  EXPECT_EQ(test::ReadTestFile(Utf8ToPath(path)), image);
  EXPECT_TRUE(std::filesystem::is_empty(Utf8ToPath(temp)));
  std::istringstream pids(Logged("pids"));
  for (pid_t pid = 0; pids >> pid;)
    kill(-pid, SIGKILL);  // the helpers, in the emulators' groups
}

// Another command opening the store while a run goes on leaves the run alone; a run whose
// program and emulator are gone is recovered.
TEST_F(LaunchCommandTest, OnlyRunsWhoseProcessesAreGoneAreRecovered) {
  const std::string image = ImageBytes(Layout::Bin);
  const std::string path = Put(roms, "a.bin", image);
  PatchImage("a.bin");
  const auto secondCommandStarts = [&] {
    auto store = RegistryStore::Open(PathOf("settings.sqlite3"));
    ASSERT_TRUE(store);
    RecoverInterruptedLaunches(host, **store);
  };
  {
    // Ours, alive: untouched by the other command.
    auto run = DynamicPatchRun::Apply(host, settings.Store(), "a.bin", Utf8ToPath(path));
    secondCommandStarts();
    EXPECT_NE(test::ReadTestFile(Utf8ToPath(path)), image);
    EXPECT_THAT(host.Texts(), IsEmpty());
  }
  EXPECT_EQ(test::ReadTestFile(Utf8ToPath(path)), image);

  // A program that died while its emulator (a sleep here) runs on: left alone until the
  // emulator is gone too.
  auto emulatorLeft = runner.Start({"/bin/sleep", {"600"}, {}, {}});
  ASSERT_TRUE(emulatorLeft);
  const pid_t child = fork();
  ASSERT_NE(child, -1);
  if (child == 0) {
    auto store = RegistryStore::Open(PathOf("settings.sqlite3"));
    test::ScriptedHost quiet;
    auto run = DynamicPatchRun::Apply(quiet, **store, "a.bin", Utf8ToPath(path));
    run.AddOwner(emulatorLeft->Pid());
    _exit(0);  // no restore: the program died
  }
  ASSERT_EQ(waitpid(child, nullptr, 0), child);
  secondCommandStarts();
  EXPECT_NE(test::ReadTestFile(Utf8ToPath(path)), image);
  emulatorLeft->End();
  secondCommandStarts();
  EXPECT_EQ(test::ReadTestFile(Utf8ToPath(path)), image);
  EXPECT_THAT(host.Texts(), ElementsAre(HasSubstr("Its original bytes have been put back")));
}

TEST(ProcessIdentityTest, APidCountsOnlyWithItsStartTime) {
  const auto self = IdentifyProcess(getpid());
  ASSERT_TRUE(self);
  EXPECT_TRUE(IsProcessAlive(*self));
  // The same pid with another start time: a later process that was handed the number.
  EXPECT_FALSE(IsProcessAlive({self->pid, self->startTicks + 1}));
  const pid_t child = fork();
  if (child == 0) _exit(0);
  const auto early = IdentifyProcess(child);
  waitpid(child, nullptr, 0);
  EXPECT_FALSE(IdentifyProcess(child));
  if (early) {
    EXPECT_FALSE(IsProcessAlive(*early));
  }
}

}  // namespace
}  // namespace romsteward
