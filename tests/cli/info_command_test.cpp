#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <set>

#include "cli/tool_runner.h"
#include "core/demo/cartridge_builder.h"
#include "core/demo/demo_collection.h"
#include "support/temp_dir.h"

namespace romsteward::cli {
namespace {

using romsteward::test::ToolRun;
ToolRun Tool(const std::vector<std::string>& args) {
  return romsteward::test::RunToolWith(args);
}
std::string SmallImage() {
  CartridgeSpec spec;
  spec.size = 16 * 1024;
  return BuildCartridgeImage(spec);
}

TEST(InfoCommand, JsonOfTheDemoCollectionHasExactlyTheDocumentedKeys) {
  romsteward::test::TempDir dir;
  ASSERT_TRUE(WriteDemoCollection(dir.Path()).ok());
  std::vector<std::string> args{"info", "--json"};
  for (const auto& entry : std::filesystem::directory_iterator(dir.Path()))
    args.push_back(entry.path().string());
  const ToolRun run = Tool(args);
  ASSERT_EQ(run.status, 0) << run.err;

  const auto json = nlohmann::ordered_json::parse(run.out);
  ASSERT_EQ(json.size(), args.size() - 2);
  const std::vector<std::string> keys{
      "file",        "layout",  "layoutName", "makerDate", "domesticName", "overseasName",
      "productType", "serial",  "version",    "checksum",  "devices",      "romStart",
      "romEnd",      "romSize", "sramStart",  "sramEnd",   "countries",    "sizeMbit",
      "error"};
  std::set<std::string> layouts;
  for (const auto& object : json) {
    std::vector<std::string> names;
    for (const auto& item : object.items())
      names.push_back(item.key());
    EXPECT_EQ(names, keys);
    layouts.insert(object["layout"].get<std::string>());
    EXPECT_TRUE(object["checksum"].is_number());
  }
  EXPECT_THAT(layouts, ::testing::IsSupersetOf({"BIN", "SMD", "MD", "1", "1*", "NOROM"}));
}

TEST(InfoCommand, OddBytesGiveValidJsonAndUnreadableFilesAreNamed) {
  romsteward::test::TempDir dir;
  CartridgeSpec spec;
  spec.size = 16 * 1024;
  spec.domesticName = std::string("\xE9t\xE9\x01\"\\\xFF\0", 8);
  spec.makerDate = "(C)\x80\x81\x82 1993.JAN";
  const auto path = dir.Write("odd\xE9.bin", BuildCartridgeImage(spec));
  const ToolRun run = Tool({"info", "--json", path.string()});
  ASSERT_EQ(run.status, 0);
  const auto json = nlohmann::json::parse(run.out);  // throws on invalid UTF-8
  EXPECT_EQ(json[0]["domesticName"].get<std::string>(), "\xC3\xA9t\xC3\xA9\x01\"\\\xC3\xBF");

  // An unreadable file is named and the others are still reported.
  const auto good = dir.Write("good.bin", SmallImage());
  const auto missing = (dir / "missing.bin").string();
  const ToolRun mixed = Tool({"info", missing, good.string()});
  EXPECT_NE(mixed.status, 0);
  EXPECT_THAT(mixed.err, ::testing::HasSubstr("missing.bin"));
  EXPECT_THAT(mixed.out, ::testing::HasSubstr("DEMO CARTRIDGE"));
  EXPECT_THAT(mixed.out, ::testing::Not(::testing::HasSubstr("missing.bin")));
}

TEST(ConvertCommand, WritesBesideTheSourceAndRefusesToOverwrite) {
  romsteward::test::TempDir dir;
  const auto source = dir.Write("game.bin", SmallImage());
  EXPECT_EQ(Tool({"convert", "--to", "smd", source.string()}).status, 0);
  ASSERT_TRUE(std::filesystem::exists(dir / "game.smd"));

  const ToolRun again = Tool({"convert", "--to", "SMD", source.string()});
  EXPECT_EQ(again.status, kExitError);
  EXPECT_THAT(again.err, ::testing::HasSubstr("already exists"));
  EXPECT_EQ(Tool({"convert", "--to", "smd", "--force", source.string()}).status, 0);
  EXPECT_NE(Tool({"convert", "--to", "zip", source.string()}).status, 0);
}

}  // namespace
}  // namespace romsteward::cli
