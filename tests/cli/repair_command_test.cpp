#include <gtest/gtest.h>

#include <sstream>

#include "cli/tool.h"
#include "core/cart/interleave.h"
#include "core/common/strings.h"
#include "support/cart_images.h"
#include "support/temp_dir.h"

namespace romsteward {
namespace {

// An SMD image with a wrong block count in its copier header, and a BIN image one block
// longer than its header says.
class RepairCommandTest : public test::TempDirTest {
protected:
  void SetUp() override {
    smd = PathOf("copier.smd");
    test::WriteImage(smd, test::MakeCartridge(64 * 1024, 1), Layout::Smd);
    std::string bytes = test::ReadTestFile(smd);
    bytes[0] = 9;
    test::WriteTestFile(smd, bytes);
    bin = PathOf("long.bin");
    test::WriteTestFile(bin, test::MakeCartridge(64 * 1024, 2) + std::string(kBlockSize, '\0'));
    m_smdBefore = test::ReadTestFile(smd);
    m_binBefore = test::ReadTestFile(bin);
  }

  int Run(std::vector<std::string> args) {
    args.insert(args.begin(), {"--settings", PathOf("settings.sqlite3").string()});
    args.push_back(smd.string());
    args.push_back(bin.string());
    out.str("");
    err.str("");
    return cli::RunTool(args, out, err);
  }
  bool Unchanged() {
    return test::ReadTestFile(smd) == m_smdBefore && test::ReadTestFile(bin) == m_binBefore;
  }

  std::filesystem::path smd;
  std::filesystem::path bin;
  std::ostringstream out;
  std::ostringstream err;

private:
  std::string m_smdBefore;
  std::string m_binBefore;
};

TEST_F(RepairCommandTest, WithoutATerminalOnlyReports) {
  // --no answers the size question's No button, which carries "Truncate": it must not cut.
  for (const char* flag : {"", "--no"}) {
    SCOPED_TRACE(flag);
    std::vector<std::string> args{"repair"};
    if (*flag) args.emplace_back(flag);
    EXPECT_EQ(Run(args), 1);
    EXPECT_TRUE(Unchanged());
    EXPECT_NE(err.str().find("The embedded SMD header is corrupt!"), std::string::npos);
    EXPECT_NE(err.str().find("ROM size is wrong!"), std::string::npos);
  }
}

TEST_F(RepairCommandTest, YesFixesHeadersAndTruncateCuts) {
  EXPECT_EQ(Run({"repair", "--yes"}), 0) << err.str();
  EXPECT_EQ(test::ReadTestFile(smd).substr(0, kCopierHeaderSize), BuildSmdHeader(4, false));
  EXPECT_EQ(std::filesystem::file_size(bin), 80 * 1024u);  // the header now says so
  EXPECT_EQ(Run({"repair"}), 0);

  SetUp();
  EXPECT_EQ(Run({"repair", "--truncate"}), 1);  // the copier header needs --yes
  EXPECT_EQ(std::filesystem::file_size(bin), 64 * 1024u);
  EXPECT_EQ(test::ReadTestFile(bin), test::MakeCartridge(64 * 1024, 2));
}

TEST_F(RepairCommandTest, ReadOnlyImagesStayAsTheyAre) {
  test::MakeReadOnly(smd);
  test::MakeReadOnly(bin);
  EXPECT_EQ(Run({"repair", "--yes", "--truncate"}), 1);
  EXPECT_TRUE(Unchanged());
  EXPECT_NE(err.str().find("read-only"), std::string::npos);
}

}  // namespace
}  // namespace romsteward
