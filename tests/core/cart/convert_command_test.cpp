#include "core/cart/convert_command.h"

#include <gtest/gtest.h>

#include "core/cart/convert.h"
#include "core/demo/cartridge_builder.h"
#include "support/scripted_host.h"
#include "support/temp_dir.h"

namespace romsteward {
namespace {

// Each case writes nothing: a No to replacing, an image already in the layout, an SMD image
// named .bin whose BIN output would be the source itself, and a file that is no image.
TEST(ConvertCommand, WritesNothingUnlessThereIsSomethingToDoAndLeaveToReplace) {
  test::TempDir dir;
  test::ScriptedHost host;
  CartridgeSpec spec;
  spec.size = 32 * 1024;
  const std::string logical = BuildCartridgeImage(spec);
  const auto source = dir.Write("game.bin", logical);
  dir.Write("game.smd", "keep me");

  host.AnswerYesNo(Answer::No);
  EXPECT_EQ(ConvertCommand(host, source, Layout::Smd), std::nullopt);
  EXPECT_EQ(host.Texts().back(), "The file game.smd exists! Do you want to replace it?");
  EXPECT_EQ(test::ReadTestFile(dir / "game.smd"), "keep me");

  EXPECT_EQ(ConvertCommand(host, source, Layout::Bin), std::nullopt);
  EXPECT_EQ(host.Events().back().icon, MessageIcon::Information);
  EXPECT_EQ(host.Texts().back(),
            source.string() + " is already in Super Magic Drive Binary (BIN) layout.");

  const std::string smd = EncodeImage(logical, Layout::Smd);
  const auto misnamed = dir.Write("other.bin", smd);
  EXPECT_EQ(ConvertCommand(host, misnamed, Layout::Bin), std::nullopt);
  EXPECT_EQ(host.Events().back().icon, MessageIcon::Critical);
  EXPECT_TRUE(test::ReadTestFile(misnamed) == smd);
  EXPECT_TRUE(test::ReadTestFile(source) == logical);

  // Not an image: refused before the replace question is asked.
  const auto notes = dir.Write("notes.txt", "text");
  dir.Write("notes.smd", "keep me too");
  EXPECT_EQ(ConvertCommand(host, notes, Layout::Smd), std::nullopt);
  EXPECT_EQ(host.Texts().back(),
            notes.string() +
                " is no BIN, SMD or MD image; only those can be converted (join a split "
                "set first).");
}

}  // namespace
}  // namespace romsteward
