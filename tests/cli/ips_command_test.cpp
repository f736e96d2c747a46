#include <gtest/gtest.h>

#include <sstream>

#include "cli/tool.h"
#include "core/demo/cartridge_builder.h"
#include "support/byte_files.h"
#include "support/reference_ips.h"

namespace romsteward::cli {
namespace {

class IpsCommand : public test::ByteFileTest {};

TEST_F(IpsCommand, CreatedPatchAppliesByteExactlyElsewhereAndHere) {
  const std::string original = BuildCartridgeImage({});
  std::string hacked = original;
  hacked.replace(0x150, 16, "ROMSTEWARD HACK ");
  hacked.replace(0x20000, 3000, std::string(3000, '\x4E'));
  const auto game = Put("game.bin", original).string();
  const auto hack = Put("game-hack.bin", hacked).string();
  std::ostringstream out, err;
  ASSERT_EQ(RunTool({"ips", "create", game, hack}, out, err), kExitOk) << err.str();
  EXPECT_EQ(test::ReferenceApplyIps(test::ReadTestFile(PathOf("game-hack.ips")), original), hacked);
  ASSERT_EQ(RunTool({"ips", "apply", PathOf("game-hack.ips").string(), game}, out, err), kExitOk);
  EXPECT_EQ(test::ReadTestFile(game), hacked);
  EXPECT_EQ(RunTool({"ips", "create", game, Put("short.bin", "x").string()}, out, err), kExitError);
  EXPECT_NE(err.str().find("The size of the files don't match!"), std::string::npos);
}

}  // namespace
}  // namespace romsteward::cli
