#include <gtest/gtest.h>

#include "core/patch/ips_apply.h"
#include "core/patch/ips_create.h"
#include "support/byte_files.h"
#include "support/scripted_host.h"

namespace romsteward {
namespace {

using test::Bytes;
using test::PromptKind;

class IpsCommands : public test::ByteFileTest {
protected:
  std::string RomDir() const { return Dir().string(); }
  test::ScriptedHost m_host;
};

TEST_F(IpsCommands, CreateAsksForThreeFilesAndProposesTheChangedName) {
  const auto unchanged = Put("sonic.bin", "0123456789");
  const auto changed = Put("sonic2.smd", "01234567x9");
  const auto output = PathOf("chosen.ips");
  m_host.AnswerOpenFile(unchanged.string())
      .AnswerOpenFile(changed.string())
      .AnswerSaveFile(output.string());
  CreateIpsCommand(m_host, RomDir());

  const auto opened = m_host.EventsOf(PromptKind::OpenFile);
  ASSERT_EQ(opened.size(), 2u);
  EXPECT_EQ(opened[0].dialog.title, "Open UNchanged file");
  EXPECT_EQ(opened[1].dialog.title, "Open changed file");
  ASSERT_EQ(opened[0].dialog.filters.size(), 2u);
  EXPECT_EQ(opened[0].dialog.filters[0].description, "ROM files");
  EXPECT_EQ(opened[0].dialog.filters[0].patterns, "*.md;*.smd;*.bin;*.mgd");
  EXPECT_EQ(opened[0].dialog.filters[1].patterns, "*.*");
  EXPECT_EQ(opened[0].dialog.initialDir, RomDir());
  const auto saved = m_host.EventsOf(PromptKind::SaveFile).at(0).dialog;
  EXPECT_EQ(saved.title, "Name the IPS file");
  EXPECT_EQ(saved.filters.at(0).patterns, "*.ips");
  EXPECT_EQ(saved.initialName, PathOf("sonic2.ips").string());

  EXPECT_EQ(m_host.Events().back().text, "IPS file generated.");
  EXPECT_EQ(m_host.Events().back().icon, MessageIcon::Information);
  EXPECT_EQ(test::ReadTestFile(output), "PATCH" + Bytes({0, 0, 8, 0, 1}) + "xEOF");
}

TEST_F(IpsCommands, CreateStopsOnCancelAndOnDifferentSizes) {
  const auto a = Put("a.bin", "0123");
  const auto b = Put("b.bin", "01234");
  m_host.AnswerOpenFile(a.string()).AnswerOpenFile(std::nullopt);
  CreateIpsCommand(m_host, RomDir());
  m_host.AnswerOpenFile(a.string()).AnswerOpenFile(b.string()).AnswerSaveFile(std::nullopt);
  CreateIpsCommand(m_host, RomDir());
  EXPECT_TRUE(m_host.EventsOf(PromptKind::Message).empty());

  m_host.AnswerOpenFile(a.string())
      .AnswerOpenFile(b.string())
      .AnswerSaveFile(PathOf("b.ips").string());
  CreateIpsCommand(m_host, RomDir());
  EXPECT_EQ(m_host.Events().back().text, "The size of the files don't match!");
  EXPECT_EQ(m_host.Events().back().icon, MessageIcon::Critical);
  EXPECT_FALSE(std::filesystem::exists(PathOf("b.ips")));
}

TEST_F(IpsCommands, ApplyAsksForPatchThenImageAndReportsTheOutcome) {
  const auto image = Put("game.bin", "abcdef");
  const auto patch = Put("fix.ips", "PATCH" + Bytes({0, 0, 1, 0, 2}) + "XYeof");
  m_host.AnswerOpenFile(patch.string()).AnswerOpenFile(image.string());
  ApplyIpsCommand(m_host, RomDir());
  const auto opened = m_host.EventsOf(PromptKind::OpenFile);
  EXPECT_EQ(opened[0].dialog.title, "Open IPS file");
  EXPECT_EQ(opened[0].dialog.filters.at(0).description, "IPS files");
  EXPECT_EQ(opened[1].dialog.title, "Open ROM to be patched");
  EXPECT_EQ(m_host.Events().back().text, "IPS file applyed.");
  EXPECT_EQ(test::ReadTestFile(image), "aXYdef");

  // The image dialog cancelled: nothing said, nothing written.
  m_host.AnswerOpenFile(patch.string()).AnswerOpenFile(std::nullopt);
  ApplyIpsCommand(m_host, RomDir());
  EXPECT_EQ(m_host.EventsOf(PromptKind::Message).size(), 1u);

  // A patch that is not there is told before the image is asked for.
  m_host.AnswerOpenFile(PathOf("gone.ips").string());
  ApplyIpsCommand(m_host, RomDir());
  EXPECT_NE(m_host.Events().back().text.find("gone.ips"), std::string::npos);
  EXPECT_EQ(m_host.Events().back().icon, MessageIcon::Critical);
}

}  // namespace
}  // namespace romsteward
