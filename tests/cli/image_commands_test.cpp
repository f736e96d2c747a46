// The commands that change images: checksum, repair, convert, split and join.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "cli/tool_runner.h"
#include "core/cart/convert.h"
#include "core/cart/interleave.h"
#include "support/cart_images.h"

namespace romsteward {
namespace {

using test::ReadTestFile;
using ::testing::HasSubstr;

// good.smd is sound; bad.bin stores a wrong checksum; copier.smd has a wrong block count in
// its copier header; long.bin is one block longer than its header says.
class ImageCommands : public test::ToolSettingsTest {
protected:
  void SetUp() override {
    test::WriteImage(PathOf("good.smd"), test::MakeCartridge(64 * 1024, 1), Layout::Smd);
    test::WriteTestFile(PathOf("bad.bin"),
                        test::MakeCartridge(64 * 1024, 2).replace(0x18E, 2, "\x12\x00", 2));
    test::WriteTestFile(
        PathOf("copier.smd"),
        EncodeImage(test::MakeCartridge(64 * 1024, 3), Layout::Smd).replace(0, 1, "\x09"));
    test::WriteTestFile(PathOf("long.bin"), Long());
  }
  static std::string Long() {
    return test::MakeCartridge(64 * 1024, 4) + std::string(kBlockSize, '\0');
  }
  // Runs the tool with the test's own settings; names with a dot are files of the test.
  int Status(std::vector<std::string> args) {
    for (std::string& arg : args)
      if (arg.find('.') != std::string::npos) arg = PathOf(arg).string();
    const test::ToolRun run = Run(std::move(args));
    out = run.out;
    err = run.err;
    return run.status;
  }
  bool Said(std::string_view text) const { return (out + err).find(text) != std::string::npos; }
  std::string Read(std::string_view name) const { return ReadTestFile(PathOf(name)); }
  char BlockCount() { return Read("copier.smd")[0]; }
  std::string out;
  std::string err;
};

TEST_F(ImageCommands, ChecksumStatusFixBackupRestoreAndReadOnly) {
  EXPECT_EQ(Status({"checksum", "good.smd"}), 0);
  EXPECT_EQ(Status({"checksum", "good.smd", "bad.bin"}), 1);
  EXPECT_TRUE(Said("bad.bin: wrong (stored 1200, computed ")) << out;
  EXPECT_EQ(Status({"checksum", "bad.bin", "missing.bin"}), 2);

  const std::string before = Read("bad.bin");
  EXPECT_EQ(Status({"checksum", "--fix", "--backup", "bad.bin"}), 0) << err;
  EXPECT_EQ(Status({"checksum", "bad.bin"}), 0);
  EXPECT_EQ(Status({"restore-checksum", "bad.bin"}), 0) << err;
  EXPECT_EQ(Read("bad.bin"), before);
  EXPECT_EQ(Status({"restore-checksum", "bad.bin"}), 1);  // forgotten once put back

  // Read-only: reported, not written, and no old value kept.
  test::MakeReadOnly(PathOf("bad.bin"));
  EXPECT_EQ(Status({"checksum", "--fix", "--backup", "bad.bin"}), 2);
  EXPECT_TRUE(Said("read-only: not fixed")) << out;
  EXPECT_EQ(Read("bad.bin"), before);
  EXPECT_EQ(Status({"restore-checksum", "bad.bin"}), 1);
}

TEST_F(ImageCommands, RepairChangesNothingUnlessTold) {
  // --no answers the size question's No button, which carries "Truncate": it must not cut.
  EXPECT_EQ(Status({"repair", "copier.smd", "long.bin"}), 1);
  EXPECT_EQ(Status({"repair", "--no", "copier.smd", "long.bin"}), 1);
  EXPECT_TRUE(Said("ROM size is wrong!")) << err;
  test::MakeReadOnly(PathOf("copier.smd"));
  test::MakeReadOnly(PathOf("long.bin"));
  EXPECT_EQ(Status({"repair", "--yes", "--truncate", "copier.smd", "long.bin"}), 1);
  EXPECT_EQ(BlockCount(), 9);
  EXPECT_EQ(Read("long.bin"), Long());
}

TEST_F(ImageCommands, RepairYesFixesHeadersAndTruncateCuts) {
  EXPECT_EQ(Status({"repair", "--yes", "copier.smd", "long.bin"}), 0) << err;
  EXPECT_EQ(BlockCount(), 4);
  EXPECT_EQ(Status({"repair", "long.bin"}), 0);  // the header now gives the file's size

  SetUp();
  EXPECT_EQ(Status({"repair", "--truncate", "copier.smd", "long.bin"}), 1);  // copier: --yes
  EXPECT_EQ(Read("long.bin"), test::MakeCartridge(64 * 1024, 4));
}

TEST_F(ImageCommands, ConvertWritesBesideTheSourceAndRefusesToOverwrite) {
  EXPECT_EQ(Status({"convert", "--to", "smd", "long.bin"}), 0) << err;
  ASSERT_TRUE(std::filesystem::exists(PathOf("long.smd")));
  EXPECT_EQ(Status({"convert", "--to", "SMD", "long.bin"}), cli::kExitError);
  EXPECT_TRUE(Said("already exists"));
  EXPECT_EQ(Status({"convert", "--to", "smd", "--force", "long.bin"}), 0);
  EXPECT_NE(Status({"convert", "--to", "zip", "long.bin"}), 0);
}

TEST_F(ImageCommands, ReplacedOutputsKeepTheirModeAndAreWrittenThroughLinks) {
  namespace fs = std::filesystem;
  test::WriteTestFile(PathOf("bad2.bin"), Read("bad.bin").replace(0x300, 1, "Z"));
  fs::create_directory(PathOf("real"));
  const std::string link = Path("link.out");
  const std::vector<std::vector<std::string>> writers = {
      {"convert", "--to", "smd", "--force", Path("long.bin"), "-o", link},
      {"ips", "create", Path("bad.bin"), Path("bad2.bin"), "-o", link},
      {"report", Path("real"), "-o", link},
  };
  for (const auto& args : writers) {
    const auto target = PathOf("real/out");
    test::WriteTestFile(target, "old");
    fs::permissions(target, fs::perms::owner_read | fs::perms::owner_write);
    fs::remove(PathOf("link.out"));
    fs::create_symlink("real/out", PathOf("link.out"));
    const test::ToolRun run = Run(args);
    EXPECT_EQ(run.status, 0) << args[0] << run.err;
    EXPECT_TRUE(fs::is_symlink(PathOf("link.out"))) << args[0];
    EXPECT_NE(Read("real/out"), "old") << args[0];
    EXPECT_EQ(fs::status(target).permissions(), fs::perms::owner_read | fs::perms::owner_write)
        << args[0];
  }
}

TEST_F(ImageCommands, ASplitSetIsDetectedAndJoinsBackByteForByte) {
  // 5 Mbit at 2: two whole volumes and a short one.
  const std::string image = EncodeImage(test::MakeCartridge(640 * 1024, 5), Layout::Smd);
  test::WriteTestFile(PathOf("GAME.smd"), image);
  ASSERT_EQ(Status({"split", "--size", "2", "GAME.smd"}), cli::kExitOk) << err;
  EXPECT_TRUE(Said("The ROM was splitted in 3 files"));
  ASSERT_EQ(Status({"info", "GAME.1", "GAME.3"}), cli::kExitOk);
  EXPECT_TRUE(Said("Layout         1 (Splitted")) << out;
  EXPECT_TRUE(Said("Layout         1* (Splitted")) << out;
  // Without a terminal a question gets the answer that changes nothing, unless --yes.
  EXPECT_EQ(Status({"join", "GAME.2"}), cli::kExitFailure);
  EXPECT_TRUE(Said("The file GAME.smd exists!"));
  ASSERT_EQ(Status({"--yes", "join", "GAME.2"}), cli::kExitOk) << err;
  EXPECT_EQ(Read("GAME.smd"), image);
  // A set with a volume missing in the middle is refused, and nothing is written.
  std::filesystem::rename(PathOf("GAME.2"), PathOf("away"));
  EXPECT_EQ(Status({"--yes", "join", "GAME.1"}), cli::kExitError);
  EXPECT_TRUE(Said("GAME.2")) << err;
  EXPECT_TRUE(Read("GAME.smd") == image);
  std::filesystem::rename(PathOf("away"), PathOf("GAME.2"));
  EXPECT_EQ(Status({"split", "--size", "2", "GAME.smd"}), cli::kExitFailure);
  EXPECT_TRUE(Said("GAME.1' exists! Overwrite?"));
}

TEST_F(ImageCommands, SplitRefusesBadSizesAndImagesThatAreNotWholeSmdAndJoinFilesAsksFirst) {
  EXPECT_EQ(Status({"split", "--size", "33", "good.smd"}), cli::kExitError);
  EXPECT_TRUE(Said("maximum ROM size for Genesis was 32 Megabits"));
  EXPECT_EQ(Status({"split", "--size", "1", "long.bin"}), cli::kExitError);
  EXPECT_TRUE(Said("only a whole SMD image"));
  EXPECT_FALSE(std::filesystem::exists(PathOf("long.1")));
  // join-files asks before replacing its destination.
  ASSERT_EQ(Status({"join-files", "j.out", "long.bin", "good.smd"}), cli::kExitOk);
  EXPECT_EQ(Status({"join-files", "j.out", "long.bin"}), cli::kExitError);  // not overwritten
  EXPECT_EQ(Read("j.out"), Read("long.bin") + Read("good.smd"));
}

}  // namespace
}  // namespace romsteward
