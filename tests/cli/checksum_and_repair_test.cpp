#include <gtest/gtest.h>

#include "cli/tool_runner.h"
#include "core/cart/convert.h"
#include "core/cart/interleave.h"
#include "support/cart_images.h"

namespace romsteward {
namespace {

// good.smd is sound; bad.bin stores a wrong checksum; copier.smd has a wrong block count in
// its copier header; long.bin is one block longer than its header says.
class ChecksumAndRepairTest : public test::ToolSettingsTest {
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
  char BlockCount() { return test::ReadTestFile(PathOf("copier.smd"))[0]; }
  std::string out;
  std::string err;
};

TEST_F(ChecksumAndRepairTest, ChecksumStatusFixBackupRestoreAndReadOnly) {
  EXPECT_EQ(Status({"checksum", "good.smd"}), 0);
  EXPECT_EQ(Status({"checksum", "good.smd", "bad.bin"}), 1);
  EXPECT_NE(out.find("bad.bin: wrong (stored 1200, computed "), std::string::npos)
      << out;
  EXPECT_EQ(Status({"checksum", "bad.bin", "missing.bin"}), 2);

  const std::string before = test::ReadTestFile(PathOf("bad.bin"));
  EXPECT_EQ(Status({"checksum", "--fix", "--backup", "bad.bin"}), 0) << err;
  EXPECT_EQ(Status({"checksum", "bad.bin"}), 0);
  EXPECT_EQ(Status({"restore-checksum", "bad.bin"}), 0) << err;
  EXPECT_EQ(test::ReadTestFile(PathOf("bad.bin")), before);
  EXPECT_EQ(Status({"restore-checksum", "bad.bin"}), 1);  // forgotten once put back

  // Read-only: reported, not written, and no old value kept.
  test::MakeReadOnly(PathOf("bad.bin"));
  EXPECT_EQ(Status({"checksum", "--fix", "--backup", "bad.bin"}), 2);
  EXPECT_NE(out.find("read-only: not fixed"), std::string::npos) << out;
  EXPECT_EQ(test::ReadTestFile(PathOf("bad.bin")), before);
  EXPECT_EQ(Status({"restore-checksum", "bad.bin"}), 1);
}

TEST_F(ChecksumAndRepairTest, RepairChangesNothingUnlessTold) {
  // --no answers the size question's No button, which carries "Truncate": it must not cut.
  EXPECT_EQ(Status({"repair", "copier.smd", "long.bin"}), 1);
  EXPECT_EQ(Status({"repair", "--no", "copier.smd", "long.bin"}), 1);
  EXPECT_NE(err.find("ROM size is wrong!"), std::string::npos) << err;
  test::MakeReadOnly(PathOf("copier.smd"));
  test::MakeReadOnly(PathOf("long.bin"));
  EXPECT_EQ(Status({"repair", "--yes", "--truncate", "copier.smd", "long.bin"}), 1);
  EXPECT_EQ(BlockCount(), 9);
  EXPECT_EQ(test::ReadTestFile(PathOf("long.bin")), Long());
}

TEST_F(ChecksumAndRepairTest, RepairYesFixesHeadersAndTruncateCuts) {
  EXPECT_EQ(Status({"repair", "--yes", "copier.smd", "long.bin"}), 0) << err;
  EXPECT_EQ(BlockCount(), 4);
  EXPECT_EQ(Status({"repair", "long.bin"}), 0);  // the header now gives the file's size

  SetUp();
  EXPECT_EQ(Status({"repair", "--truncate", "copier.smd", "long.bin"}), 1);  // copier: --yes
  EXPECT_EQ(test::ReadTestFile(PathOf("long.bin")), test::MakeCartridge(64 * 1024, 4));
}

}  // namespace
}  // namespace romsteward
