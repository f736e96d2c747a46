#include "core/settings/file_types.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include "core/cart/convert.h"
#include "core/common/strings.h"
#include "core/demo/cartridge_builder.h"
#include "support/scoped_env.h"
#include "support/temp_dir.h"

extern char** environ;

namespace romsteward {
namespace {

using test::ReadTestFile;
using ::testing::HasSubstr;

bool Installed(const char* program) {
  const std::string path = std::string("/usr/bin/") + program;
  return access(path.c_str(), X_OK) == 0;
}

// What `xdg-mime query filetype` says about `file`, with `dataHome` as XDG_DATA_HOME.
std::string QueryFileType(const std::filesystem::path& dataHome, const std::filesystem::path& file,
                          const std::filesystem::path& output) {
  test::ScopedEnv data("XDG_DATA_HOME", PathToUtf8(dataHome));
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, 1, output.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
  std::string fileArg = PathToUtf8(file);
  char* argv[] = {const_cast<char*>("xdg-mime"), const_cast<char*>("query"),
                  const_cast<char*>("filetype"), fileArg.data(), nullptr};
  pid_t pid = 0;
  const int spawned = posix_spawnp(&pid, "xdg-mime", &actions, nullptr, argv, environ);
  posix_spawn_file_actions_destroy(&actions);
  if (spawned != 0) return "spawn failed";
  int status = 0;
  waitpid(pid, &status, 0);
  std::string text = ReadTestFile(output);
  while (!text.empty() && text.back() == '\n')
    text.pop_back();
  return text;
}

class FileTypesTest : public test::TempDirTest {
protected:
  FileTypesTest() {
    std::filesystem::create_directories(PathOf("rom steward"));
    test::WriteTestFile(PathOf("rom steward/romsteward"), "#!/bin/sh\n");
    std::filesystem::permissions(PathOf("rom steward/romsteward"),
                                 std::filesystem::perms::owner_all);
  }
  FileTypePlaces Places() const {
    return {PathOf("data"), PathOf("config"), PathOf("rom steward/romsteward")};
  }
  std::filesystem::path DesktopFile() const {
    return PathOf("data") / "applications" / kDesktopFileName;
  }
  std::filesystem::path Package() const {
    return PathOf("data") / "mime" / "packages" / kMimePackageFileName;
  }
};

TEST(FileTypes, OneSystemTypeKnownByItsHeadersAndAQuotedCommand) {
  for (const auto& type : FileTypes())
    EXPECT_EQ(type.mimeType, kGenesisRomType) << type.extension;
  // No file-name pattern at all: names decide nothing for other files.
  EXPECT_EQ(MimePackageXml().find("glob"), std::string::npos);

  auto entry = DesktopEntry("/opt/a \"b\" $c\\d%e/romsteward");
  ASSERT_TRUE(entry.ok());
  EXPECT_NE(entry->find("Exec=\"/opt/a \\\\\"b\\\\\" \\\\$c\\\\\\\\d%%e/romsteward\" %f\n"),
            std::string::npos)
      << *entry;
  EXPECT_NE(entry->find("MimeType=application/x-genesis-rom;\n"), std::string::npos);
  EXPECT_FALSE(DesktopEntry("/a\nb/romsteward").ok());
  EXPECT_FALSE(DesktopEntry("romsteward").ok());
}

TEST_F(FileTypesTest, RegisterTwiceThenRemoveOnlyWhatIsOurs) {
  // A program that is not there (the tool run from a build tree) is refused before anything.
  FileTypePlaces nowhere = Places();
  nowhere.program = PathOf("build/romsteward");
  EXPECT_THAT(RegisterFileTypes(nowhere).error().message, HasSubstr("there is no such program"));
  EXPECT_FALSE(std::filesystem::exists(PathOf("data")) ||
               std::filesystem::exists(PathOf("config")));

  const FileTypeEntry* smd = FindFileType("smd");
  ASSERT_NE(smd, nullptr);
  EXPECT_EQ(FindFileType("2"), nullptr);
  auto first = RegisterFileTypes(Places(), std::span<const FileTypeEntry>(smd, 1));
  ASSERT_TRUE(first.ok()) << first.error().message;
  const std::string desktop = ReadTestFile(DesktopFile());
  EXPECT_EQ(ReadTestFile(Package()), MimePackageXml());
  auto second = RegisterFileTypes(Places());
  ASSERT_TRUE(second.ok());
  EXPECT_EQ(ReadTestFile(DesktopFile()), desktop);
  EXPECT_EQ(ReadTestFile(Package()), MimePackageXml());
  if (Installed("xdg-mime")) {
    EXPECT_TRUE(first->notes.empty()) << first->notes.front();
    EXPECT_THAT(ReadTestFile(PathOf("config") / "mimeapps.list"),
                HasSubstr("application/x-genesis-rom=romsteward.desktop"));
  }

  // Another program for the same type, another type, and a line an older version left.
  test::WriteTestFile(PathOf("config") / "mimeapps.list",
                      "[Default Applications]\n"
                      "application/x-genesis-rom=romsteward.desktop;blastem.desktop;\n"
                      "application/x-romsteward-bin=romsteward.desktop\n"
                      "text/plain=editor.desktop\n");
  auto removed = RemoveFileTypes(Places());
  ASSERT_TRUE(removed.ok()) << removed.error().message;
  EXPECT_FALSE(std::filesystem::exists(DesktopFile()));
  EXPECT_FALSE(std::filesystem::exists(Package()));
  EXPECT_EQ(ReadTestFile(PathOf("config") / "mimeapps.list"),
            "[Default Applications]\n"
            "application/x-genesis-rom=blastem.desktop;\n"
            "text/plain=editor.desktop\n");
  EXPECT_TRUE(RemoveFileTypes(Places()).ok());
}

// The desktop's answer for each file before registering, after it, and after removal: the
// images are known by their headers whatever their names, and no other file changes type.
TEST_F(FileTypesTest, RegisteringChangesTheTypeOfImagesAndOfNothingElse) {
  if (!Installed("xdg-mime") || !Installed("update-mime-database") || !Installed("mimetype")) {
    GTEST_SKIP() << "xdg-mime, update-mime-database or mimetype is not installed";
  }
  const auto files = test::TempDir();
  const std::string logical = BuildCartridgeImage({});
  std::string split = EncodeImage(logical, Layout::Smd);
  split[2] = '\x40';
  const std::vector<std::filesystem::path> images{
      files.Write("Game.bin", EncodeImage(logical, Layout::Bin)),
      files.Write("Game.smd", EncodeImage(logical, Layout::Smd)),
      files.Write("Game.1", split),
      files.Write("Game.md", EncodeImage(logical, Layout::Md)),
  };
  const std::vector<std::filesystem::path> others{
      files.Write("firmware.bin", "x"),
      files.Write("tool.1", ".\\\" manual page\n.TH TOOL 1\n"),
      files.Write("notes.md", "<!-- badges -->\n# Notes\n"),
      files.Write("letter.smd", "Dear all,\n"),
  };
  const auto query = [this](const std::filesystem::path& file) {
    return QueryFileType(PathOf("data"), file, PathOf("out.txt"));
  };
  std::vector<std::string> before;
  for (const auto& file : others)
    before.push_back(query(file));
  EXPECT_EQ(before[0], "text/plain");

  ASSERT_TRUE(RegisterFileTypes(Places()).ok());
  for (const auto& image : images)
    EXPECT_EQ(query(image), kGenesisRomType) << image;
  for (std::size_t i = 0; i < others.size(); ++i)
    EXPECT_EQ(query(others[i]), before[i]) << others[i];

  ASSERT_TRUE(RemoveFileTypes(Places()).ok());
  EXPECT_NE(query(images[3]), kGenesisRomType);  // the game doctor's header is ours alone
}

TEST_F(FileTypesTest, AnUnwritableDataHomeIsReported) {
  test::WriteTestFile(PathOf("data"), "a file where the folder belongs");
  auto result = RegisterFileTypes(Places());
  ASSERT_FALSE(result.ok());
  EXPECT_NE(result.error().message.find("Cannot create"), std::string::npos);
}

}  // namespace
}  // namespace romsteward
