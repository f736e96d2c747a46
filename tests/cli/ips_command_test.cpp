#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "cli/tool.h"
#include "core/demo/cartridge_builder.h"
#include "support/byte_files.h"
#include "support/reference_ips.h"

namespace romsteward::cli {
namespace {

class IpsCommand : public test::ByteFileTest {
protected:
  int Run(const std::vector<std::string>& args) {
    m_out.str({});
    m_err.str({});
    return RunTool(args, m_out, m_err);
  }
  std::string Path(std::string_view name) const { return PathOf(name).string(); }

  std::ostringstream m_out;
  std::ostringstream m_err;
};

TEST_F(IpsCommand, CreatedPatchAppliesByteExactlyElsewhereAndHere) {
  const std::string original = BuildCartridgeImage({});
  std::string hacked = original;
  hacked.replace(0x150, 16, "ROMSTEWARD HACK ");  // the overseas name
  hacked[0x18E] = '\x12';
  hacked.replace(0x20000, 3000, std::string(3000, '\x4E'));
  Put("game.bin", original);
  Put("game-hack.bin", hacked);

  ASSERT_EQ(Run({"ips", "create", Path("game.bin"), Path("game-hack.bin")}), kExitOk)
      << m_err.str();
  EXPECT_NE(m_out.str().find("IPS file generated."), std::string::npos);
  const std::string patch = test::ReadTestFile(PathOf("game-hack.ips"));
  EXPECT_EQ(test::ReferenceApplyIps(patch, original), hacked);

  ASSERT_EQ(Run({"ips", "apply", Path("game-hack.ips"), Path("game.bin")}), kExitOk) << m_err.str();
  EXPECT_NE(m_out.str().find("IPS file applyed."), std::string::npos);
  EXPECT_EQ(test::ReadTestFile(PathOf("game.bin")), hacked);
}

TEST_F(IpsCommand, BadInputIsReportedAndLeavesFilesAlone) {
  Put("a.bin", "0123456789");
  Put("b.bin", "012345678");
  EXPECT_EQ(Run({"ips", "create", Path("a.bin"), Path("b.bin"), "-o", Path("out.ips")}),
            kExitError);
  EXPECT_EQ(m_err.str(), "The size of the files don't match!\n");
  EXPECT_FALSE(std::filesystem::exists(PathOf("out.ips")));

  // A patch cut short inside its second record: the first is written, the failure told.
  Put("cut.ips", std::string("PATCH\0\0\1\0\1X\0\0\5\0\4ab", 18));
  EXPECT_EQ(Run({"ips", "apply", Path("cut.ips"), Path("a.bin")}), kExitError);
  EXPECT_NE(m_err.str().find("cut short"), std::string::npos) << m_err.str();
  EXPECT_EQ(test::ReadTestFile(PathOf("a.bin")), "0X23456789");

  EXPECT_EQ(Run({"ips", "apply", Path("cut.ips"), Path("none.bin")}), kExitError);
  EXPECT_NE(m_err.str().find("none.bin"), std::string::npos);
}

}  // namespace
}  // namespace romsteward::cli
