#include <fmt/format.h>
#include <gtest/gtest.h>

#include <sstream>

#include "cli/tool.h"
#include "core/common/strings.h"
#include "support/cart_images.h"
#include "support/temp_dir.h"

namespace romsteward {
namespace {

class ChecksumCommandTest : public test::TempDirTest {
protected:
  void SetUp() override {
    good = PathOf("good.smd");
    test::WriteImage(good, test::MakeCartridge(64 * 1024, 1), Layout::Smd);
    std::string logical = test::MakeCartridge(64 * 1024, 2);
    logical[0x18F] = static_cast<char>(logical[0x18F] ^ 0x0F);  // stored low byte off
    wrongStored = logical.substr(0x18E, 2);
    bad = PathOf("Bad Game (E).bin");
    test::WriteImage(bad, logical, Layout::Bin);
  }

  int Run(std::vector<std::string> args) {
    args.insert(args.begin(), {"--settings", PathOf("settings.sqlite3").string()});
    out.str("");
    err.str("");
    return cli::RunTool(args, out, err);
  }

  std::filesystem::path good;
  std::filesystem::path bad;
  std::string wrongStored;
  std::ostringstream out;
  std::ostringstream err;
};

TEST_F(ChecksumCommandTest, ExitStatusTellsCorrectWrongAndUnreadable) {
  EXPECT_EQ(Run({"checksum", good.string()}), 0);
  EXPECT_NE(out.str().find(": correct (stored "), std::string::npos) << out.str();

  EXPECT_EQ(Run({"checksum", good.string(), bad.string()}), 1);
  const std::string stored = fmt::format("{:X}", BytesToNumber(wrongStored));
  EXPECT_NE(out.str().find("Bad Game (E).bin: wrong (stored " + stored + ", computed "),
            std::string::npos)
      << out.str();

  EXPECT_EQ(Run({"checksum", bad.string(), PathOf("missing.bin").string()}), 2);
  EXPECT_NE(err.str().find("missing.bin"), std::string::npos);
}

TEST_F(ChecksumCommandTest, FixWithBackupAndRestoreRoundTrip) {
  const std::string before = test::ReadTestFile(bad);
  EXPECT_EQ(Run({"checksum", "--fix", "--backup", bad.string()}), 0) << err.str();
  EXPECT_NE(out.str().find("fixed, old value kept"), std::string::npos) << out.str();
  EXPECT_EQ(Run({"checksum", bad.string()}), 0);

  EXPECT_EQ(Run({"restore-checksum", bad.string()}), 0) << err.str();
  EXPECT_EQ(test::ReadTestFile(bad), before);
  // The kept value is gone once it is back in the image.
  EXPECT_EQ(Run({"restore-checksum", bad.string()}), 1);

  EXPECT_EQ(Run({"checksum", "--fix", bad.string()}), 0);
  EXPECT_EQ(Run({"restore-checksum", bad.string()}), 1);
}

TEST_F(ChecksumCommandTest, AReadOnlyImageIsReportedAndKeptAsItIs) {
  const std::string before = test::ReadTestFile(bad);
  test::MakeReadOnly(bad);
  EXPECT_EQ(Run({"checksum", "--fix", "--backup", bad.string()}), 2);
  EXPECT_NE(out.str().find("read-only: not fixed"), std::string::npos) << out.str();
  EXPECT_EQ(test::ReadTestFile(bad), before);
  EXPECT_EQ(Run({"restore-checksum", bad.string()}), 1);
}

}  // namespace
}  // namespace romsteward
