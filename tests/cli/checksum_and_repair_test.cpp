#include <gtest/gtest.h>

#include <sstream>

#include "cli/tool.h"
#include "core/cart/convert.h"
#include "core/cart/interleave.h"
#include "support/cart_images.h"
#include "support/temp_dir.h"

namespace romsteward {
namespace {

// good.smd is sound; bad.bin stores a wrong checksum; copier.smd has a wrong block count in
// its copier header; long.bin is one block longer than its header says.
class ChecksumAndRepairTest : public test::TempDirTest {
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
  int Run(std::vector<std::string> args) {
    for (std::string& arg : args) {
      if (arg.find('.') != std::string::npos) arg = PathOf(arg).string();
    }
    args.insert(args.begin(), {"--settings", PathOf("settings.sqlite3").string()});
    out.str("");
    err.str("");
    return cli::RunTool(args, out, err);
  }
  char BlockCount() { return test::ReadTestFile(PathOf("copier.smd"))[0]; }
  std::ostringstream out;
  std::ostringstream err;
};

TEST_F(ChecksumAndRepairTest, ChecksumStatusFixBackupRestoreAndReadOnly) {
  EXPECT_EQ(Run({"checksum", "good.smd"}), 0);
  EXPECT_EQ(Run({"checksum", "good.smd", "bad.bin"}), 1);
  EXPECT_NE(out.str().find("bad.bin: wrong (stored 1200, computed "), std::string::npos)
      << out.str();
  EXPECT_EQ(Run({"checksum", "bad.bin", "missing.bin"}), 2);

  const std::string before = test::ReadTestFile(PathOf("bad.bin"));
  EXPECT_EQ(Run({"checksum", "--fix", "--backup", "bad.bin"}), 0) << err.str();
  EXPECT_EQ(Run({"checksum", "bad.bin"}), 0);
  EXPECT_EQ(Run({"restore-checksum", "bad.bin"}), 0) << err.str();
  EXPECT_EQ(test::ReadTestFile(PathOf("bad.bin")), before);
  EXPECT_EQ(Run({"restore-checksum", "bad.bin"}), 1);  // forgotten once put back

  // Read-only: reported, not written, and no old value kept.
  test::MakeReadOnly(PathOf("bad.bin"));
  EXPECT_EQ(Run({"checksum", "--fix", "--backup", "bad.bin"}), 2);
  EXPECT_NE(out.str().find("read-only: not fixed"), std::string::npos) << out.str();
  EXPECT_EQ(test::ReadTestFile(PathOf("bad.bin")), before);
  EXPECT_EQ(Run({"restore-checksum", "bad.bin"}), 1);
}

TEST_F(ChecksumAndRepairTest, RepairChangesNothingUnlessTold) {
  // --no answers the size question's No button, which carries "Truncate": it must not cut.
  EXPECT_EQ(Run({"repair", "copier.smd", "long.bin"}), 1);
  EXPECT_EQ(Run({"repair", "--no", "copier.smd", "long.bin"}), 1);
  EXPECT_NE(err.str().find("ROM size is wrong!"), std::string::npos) << err.str();
  test::MakeReadOnly(PathOf("copier.smd"));
  test::MakeReadOnly(PathOf("long.bin"));
  EXPECT_EQ(Run({"repair", "--yes", "--truncate", "copier.smd", "long.bin"}), 1);
  EXPECT_EQ(BlockCount(), 9);
  EXPECT_EQ(test::ReadTestFile(PathOf("long.bin")), Long());
}

TEST_F(ChecksumAndRepairTest, RepairYesFixesHeadersAndTruncateCuts) {
  EXPECT_EQ(Run({"repair", "--yes", "copier.smd", "long.bin"}), 0) << err.str();
  EXPECT_EQ(BlockCount(), 4);
  EXPECT_EQ(Run({"repair", "long.bin"}), 0);  // the header now gives the file's size

  SetUp();
  EXPECT_EQ(Run({"repair", "--truncate", "copier.smd", "long.bin"}), 1);  // copier: --yes
  EXPECT_EQ(test::ReadTestFile(PathOf("long.bin")), test::MakeCartridge(64 * 1024, 4));
}

}  // namespace
}  // namespace romsteward
