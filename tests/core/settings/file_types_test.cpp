#include "core/settings/file_types.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include "core/common/strings.h"
#include "support/scoped_env.h"
#include "support/temp_dir.h"

extern char** environ;

namespace romsteward {
namespace {

using test::ReadTestFile;

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
  FileTypePlaces Places() const {
    return {PathOf("data"), PathOf("config"), "/opt/rom steward/bin/romsteward"};
  }
  std::filesystem::path DesktopFile() const {
    return PathOf("data") / "applications" / kDesktopFileName;
  }
  std::filesystem::path Package() const {
    return PathOf("data") / "mime" / "packages" / kMimePackageFileName;
  }
};

TEST(FileTypes, FourTypesWithTheirGlobsAndAQuotedCommand) {
  const std::string xml = MimePackageXml();
  for (const auto& type : FileTypes()) {
    EXPECT_NE(xml.find(fmt::format("<mime-type type=\"{}\">\n    <comment>{}</comment>\n"
                                   "    <glob pattern=\"*.{}\"/>",
                                   type.mimeType, type.description, type.extension)),
              std::string::npos)
        << type.extension;
  }
  // Only the first volume of a split set.
  EXPECT_EQ(xml.find("*.2"), std::string::npos);

  auto entry = DesktopEntry("/opt/a \"b\" $c\\d%e/romsteward");
  ASSERT_TRUE(entry.ok());
  EXPECT_NE(entry->find("Exec=\"/opt/a \\\\\"b\\\\\" \\\\$c\\\\\\\\d%%e/romsteward\" %f\n"),
            std::string::npos)
      << *entry;
  EXPECT_NE(entry->find("MimeType=application/x-romsteward-bin;application/x-romsteward-smd;"
                        "application/x-romsteward-split;application/x-romsteward-md;\n"),
            std::string::npos);
  EXPECT_FALSE(DesktopEntry("/a\nb/romsteward").ok());
  EXPECT_FALSE(DesktopEntry("romsteward").ok());
}

TEST_F(FileTypesTest, RegisterTwiceThenRemove) {
  // One type first: the files still declare all four, only the default differs.
  const FileTypeEntry* smd = FindFileType("smd");
  ASSERT_NE(smd, nullptr);
  EXPECT_EQ(FindFileType("2"), nullptr);
  auto first = RegisterFileTypes(Places(), std::span<const FileTypeEntry>(smd, 1));
  ASSERT_TRUE(first.ok()) << first.error().message;
  if (Installed("xdg-mime")) {
    const std::string defaults = ReadTestFile(PathOf("config") / "mimeapps.list");
    EXPECT_EQ(defaults.find("application/x-romsteward-bin"), std::string::npos) << defaults;
  }
  const std::string desktop = ReadTestFile(DesktopFile());
  const std::string package = ReadTestFile(Package());
  EXPECT_EQ(package, MimePackageXml());

  auto second = RegisterFileTypes(Places());
  ASSERT_TRUE(second.ok());
  EXPECT_EQ(ReadTestFile(DesktopFile()), desktop);
  EXPECT_EQ(ReadTestFile(Package()), package);

  // Someone else's default survives the removal.
  if (Installed("xdg-mime")) {
    EXPECT_TRUE(first->notes.empty()) << first->notes.front();
    const std::string defaults = ReadTestFile(PathOf("config") / "mimeapps.list");
    EXPECT_NE(defaults.find("application/x-romsteward-smd=romsteward.desktop"), std::string::npos)
        << defaults;
  }
  test::WriteTestFile(
      PathOf("config") / "mimeapps.list",
      ReadTestFile(PathOf("config") / "mimeapps.list") + "text/plain=editor.desktop\n");

  auto removed = RemoveFileTypes(Places());
  ASSERT_TRUE(removed.ok()) << removed.error().message;
  EXPECT_FALSE(std::filesystem::exists(DesktopFile()));
  EXPECT_FALSE(std::filesystem::exists(Package()));
  const std::string left = ReadTestFile(PathOf("config") / "mimeapps.list");
  EXPECT_EQ(left.find("romsteward"), std::string::npos) << left;
  EXPECT_NE(left.find("text/plain=editor.desktop"), std::string::npos);
  EXPECT_TRUE(RemoveFileTypes(Places()).ok());
}

TEST_F(FileTypesTest, TheDesktopKnowsARegisteredImage) {
  if (!Installed("xdg-mime") || !Installed("update-mime-database") || !Installed("mimetype")) {
    GTEST_SKIP() << "xdg-mime, update-mime-database or mimetype is not installed";
  }
  const auto image = test::TempDir();
  const auto rom = image.Write("Made Up Game.1", std::string(0x200, '\0') + "SEGA GENESIS");
  ASSERT_TRUE(RegisterFileTypes(Places()).ok());
  EXPECT_EQ(QueryFileType(PathOf("data"), rom, PathOf("out.txt")),
            "application/x-romsteward-split");

  ASSERT_TRUE(RemoveFileTypes(Places()).ok());
  EXPECT_NE(QueryFileType(PathOf("data"), rom, PathOf("out.txt")),
            "application/x-romsteward-split");
}

TEST_F(FileTypesTest, AnUnwritableDataHomeIsReported) {
  test::WriteTestFile(PathOf("data"), "a file where the folder belongs");
  auto result = RegisterFileTypes(Places());
  ASSERT_FALSE(result.ok());
  EXPECT_NE(result.error().message.find("Cannot create"), std::string::npos);
}

}  // namespace
}  // namespace romsteward
