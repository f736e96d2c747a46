#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <set>

#include "cli/tool_runner.h"
#include "core/demo/cartridge_builder.h"

namespace romsteward::cli {
namespace {

using ::testing::HasSubstr;
using InfoCommand = test::ToolSettingsTest;

std::string SmallImage(CartridgeSpec spec = {}) {
  spec.size = 16 * 1024;
  return BuildCartridgeImage(spec);
}

TEST_F(InfoCommand, JsonOfTheDemoCollectionHasExactlyTheDocumentedKeys) {
  ASSERT_TRUE(WriteDemoCollection(PathOf("demo")).ok());
  std::vector<std::string> args{"info", "--json"};
  for (const auto& entry : std::filesystem::directory_iterator(PathOf("demo")))
    args.push_back(entry.path().string());
  const test::ToolRun run = Run(args);
  ASSERT_EQ(run.status, 0) << run.err;

  const auto json = nlohmann::ordered_json::parse(run.out);
  ASSERT_EQ(json.size(), args.size() - 2);
  const std::vector<std::string> keys{"file",         "layout",       "layoutName",  "makerDate",
                                      "domesticName", "overseasName", "productType", "serial",
                                      "version",      "checksum",     "devices",     "romStart",
                                      "romEnd",       "romSize",      "sramStart",   "sramEnd",
                                      "countries",    "sizeMbit",     "error"};
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

TEST_F(InfoCommand, OddBytesGiveValidJsonAndUnreadableFilesAreNamed) {
  CartridgeSpec spec;
  spec.domesticName = std::string("\xE9t\xE9\x01\"\\\xFF\0", 8);
  spec.makerDate = "(C)\x80\x81\x82 1993.JAN";
  const test::ToolRun run = Run({"info", "--json", Put("odd\xE9.bin", SmallImage(spec)).string()});
  ASSERT_EQ(run.status, 0);
  const auto json = nlohmann::json::parse(run.out);  // throws on invalid UTF-8
  EXPECT_EQ(json[0]["domesticName"].get<std::string>(), "\xC3\xA9t\xC3\xA9\x01\"\\\xC3\xBF");

  // An unreadable file is named and the others are still reported.
  const test::ToolRun mixed =
      Run({"info", PathOf("missing.bin").string(), Put("good.bin", SmallImage()).string()});
  EXPECT_NE(mixed.status, 0);
  EXPECT_THAT(mixed.err, HasSubstr("missing.bin"));
  EXPECT_THAT(mixed.out, HasSubstr("DEMO CARTRIDGE"));
  EXPECT_THAT(mixed.out, ::testing::Not(HasSubstr("missing.bin")));
}

TEST_F(InfoCommand, ConvertWritesBesideTheSourceAndRefusesToOverwrite) {
  const std::string source = Put("game.bin", SmallImage()).string();
  EXPECT_EQ(Run({"convert", "--to", "smd", source}).status, 0);
  ASSERT_TRUE(std::filesystem::exists(PathOf("game.smd")));

  const test::ToolRun again = Run({"convert", "--to", "SMD", source});
  EXPECT_EQ(again.status, kExitError);
  EXPECT_THAT(again.err, HasSubstr("already exists"));
  EXPECT_EQ(Run({"convert", "--to", "smd", "--force", source}).status, 0);
  EXPECT_NE(Run({"convert", "--to", "zip", source}).status, 0);
}

}  // namespace
}  // namespace romsteward::cli
