#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <random>

#include "core/common/binary_file.h"
#include "core/patch/ips_apply.h"
#include "core/patch/ips_create.h"
#include "core/patch/ips_format.h"
#include "support/byte_files.h"
#include "support/reference_ips.h"
#include "support/scripted_host.h"

namespace romsteward {
namespace {

using test::Bytes;
using test::PromptKind;
using ::testing::HasSubstr;

std::string Diff(const std::string& unchanged, const std::string& changed) {
  auto patch = DiffToIps(unchanged, changed);
  EXPECT_TRUE(patch.ok()) << (patch.ok() ? "" : patch.error().message);
  return patch.ok() ? patch->bytes : std::string();
}

std::string ErrorOf(const std::string& unchanged, const std::string& changed) {
  auto patch = DiffToIps(unchanged, changed);
  return patch.ok() ? "<created>" : patch.error().message;
}

TEST(IpsCreate, OneRecordPerMaximalRunNeverMergedNorSplit) {
  EXPECT_EQ(Diff(std::string(100000, 'x'), std::string(100000, 'x')), "PATCHEOF");
  std::string unchanged(40000, '\0');
  std::string changed = unchanged;
  changed[10] = 'a';
  changed[12] = 'b';                                 // one equal byte between: two records
  changed.replace(16380, 10, std::string(10, 'c'));  // across a 16 KiB skip block
  changed.back() = 'z';
  EXPECT_EQ(Diff(unchanged, changed), "PATCH" + Bytes({0, 0, 10, 0, 1}) + "a" +
                                          Bytes({0, 0, 12, 0, 1}) + "b" +
                                          Bytes({0, 0x3F, 0xFC, 0, 10}) + "cccccccccc" +
                                          Bytes({0, 0x9C, 0x3F, 0, 1}) + "z" + "EOF");
}

TEST(IpsCreate, RefusesWhatTheFieldsCannotHoldNamingTheOffset) {
  EXPECT_EQ(ErrorOf("abc", "abcd"), "The size of the files don't match!");
  const std::string zeros(0x1000001, '\0');
  std::string changed = zeros;
  changed.replace(0x123, 0xFFFF, std::string(0xFFFF, '\1'));  // the longest run a record holds
  changed[0xFFFFFF] = '\1';                                   // the last offset there is
  EXPECT_EQ(ErrorOf(zeros, changed), "<created>");
  changed[0x123 + 0xFFFF] = '\1';
  EXPECT_NE(ErrorOf(zeros, changed).find("at offset 0x000123 is 65,536 bytes"), std::string::npos);
  changed[0x123] = '\0';
  changed[0xFFFFFF] = '\0';
  changed[0x1000000] = '\1';
  EXPECT_NE(ErrorOf(zeros, changed).find("at offset 0x1000000"), std::string::npos);
}

TEST(IpsCreate, RunAtAnOffsetSpellingEofStartsOneByteEarlier) {
  const std::string unchanged(0x700000, '\0');
  std::string changed = unchanged;
  changed[0x454F46] = 'A';  // "EOF"
  changed[0x656F66] = 'B';  // "eof", which our reader stops at too
  const std::string patch = Diff(unchanged, changed);
  EXPECT_EQ(patch, "PATCH" + Bytes({0x45, 0x4F, 0x45, 0, 2, 0, 'A'}) +
                       Bytes({0x65, 0x6F, 0x65, 0, 2, 0, 'B'}) + "EOF");
  EXPECT_EQ(test::ReferenceApplyIps(patch, unchanged), changed);
}

TEST(IpsCreate, RandomChangesRoundTripThroughOurReaderAndAnother) {
  std::mt19937 random(20240607);
  for (int round = 0; round < 60; ++round) {
    std::string unchanged(random() % 70000, '\0');
    for (char& byte : unchanged)
      byte = static_cast<char>(random() % 4);  // many equal bytes
    std::string changed = unchanged;
    for (int i = unchanged.empty() ? 0 : random() % 40; i > 0; --i) {
      const std::size_t at = random() % changed.size();
      const std::size_t length = 1 + random() % (round % 3 ? 9 : 3000);
      for (std::size_t k = at; k < std::min(at + length, changed.size()); ++k) {
        changed[k] = static_cast<char>(random() % 4);
      }
    }
    const std::string patch = Diff(unchanged, changed);
    ASSERT_EQ(test::ReferenceApplyIps(patch, unchanged), changed) << "round " << round;
    std::string ours = unchanged;
    for (const IpsRecord& record : ParseIps(patch).records) {
      ASSERT_TRUE(record.offset == 0 || ours[record.offset - 1] == changed[record.offset - 1]);
      ASSERT_NE(ours[record.offset], record.data[0]);  // runs start at a difference
      ours.replace(record.offset, record.data.size(), record.data);
    }
    ASSERT_EQ(ours, changed) << "round " << round;
  }
}

class IpsFiles : public test::ByteFileTest {};

TEST_F(IpsFiles, CreateWritesOverAnExistingFileKeepingItsTailButNeverOverAnInput) {
  const auto unchanged = Put("a.bin", "0123456789");
  const auto changed = Put("b.bin", "0123x56789");
  const auto output = Put("b.ips", std::string(30, '#'));
  ASSERT_TRUE(CreateIpsFile(unchanged, changed, output).ok());
  EXPECT_EQ(test::ReadTestFile(output),
            "PATCH" + Bytes({0, 0, 4, 0, 1}) + "xEOF" + std::string(16, '#'));
  EXPECT_FALSE(CreateIpsFile(unchanged, changed, changed).ok());
  EXPECT_EQ(test::ReadTestFile(changed), "0123x56789");
  EXPECT_EQ(DefaultIpsName("/roms.d/SONIC"), "/roms.d/SONIC.ips");
}

TEST_F(IpsFiles, LargeInputsAreComparedPastWhatIsHeld) {
  // Sparse 40 MiB files: only the first 16 MiB + 64 KiB are held, the rest is compared in
  // blocks, and a difference there is refused by its offset.
  const auto make = [this](const char* name, std::optional<std::uint64_t> at) {
    const auto path = Put(name, "");
    std::filesystem::resize_file(path, 40u << 20);
    auto file = BinaryFile::Open(path, BinaryFile::Mode::ReadWrite);
    EXPECT_TRUE(file.ok() && (!at || file->WriteAt(*at, "!").ok()));
    return path;
  };
  const auto base = make("base.bin", std::nullopt);
  auto patch = CreateIpsFile(base, make("last.bin", 0xFFFFFF), PathOf("last.ips"));
  ASSERT_TRUE(patch.ok()) << patch.error().message;
  EXPECT_EQ(patch->records, 1u);
  for (const std::uint64_t beyond : {0x1000000ull + 0x10000, 39ull << 20}) {
    auto refused = CreateIpsFile(base, make("far.bin", beyond), PathOf("far.ips"));
    EXPECT_THAT(refused.error().message, HasSubstr(fmt::format("differ at offset 0x{:X}", beyond)));
  }
  EXPECT_FALSE(std::filesystem::exists(PathOf("far.ips")));
}

class IpsApply : public test::ByteFileTest {
protected:
  // Applies `patch` to a file holding `image` and returns the file afterwards.
  std::string Apply(const std::string& patch, const std::string& image) {
    const auto imagePath = Put("image.bin", image);
    auto applied = ApplyIpsFile(Put("patch.ips", patch), imagePath);
    EXPECT_TRUE(applied.ok());
    if (applied.ok()) m_report = *applied;
    return test::ReadTestFile(imagePath);
  }
  IpsApplyReport m_report;
};

TEST_F(IpsApply, PatchesOfOtherToolsApplyAsThereAndOldQuirksStay) {
  // A record in place and one lengthening the image past a gap of two zero bytes.
  const std::string patch =
      "PATCH" + Bytes({0, 0, 1, 0, 2}) + "XY" + Bytes({0, 0, 12, 0, 3}) + "abc" + "EOF";
  const std::string expected = "0XY3456789" + Bytes({0, 0}) + "abc";
  EXPECT_EQ(Apply(patch, "0123456789"), expected);
  EXPECT_EQ(test::ReferenceApplyIps(patch, "0123456789"), expected);
  EXPECT_EQ(m_report.records, 2u);
  // The file is read as it always has been.
  const std::string record = Bytes({0, 0, 2, 0, 1}) + "#";
  EXPECT_EQ(Apply("HELLO" + record + "EOF", "abcdef"), "ab#def");  // magic not examined
  EXPECT_EQ(Apply("PATCHeof" + record, "abcdef"), "abcdef");       // "eof" ends it too
  EXPECT_EQ(m_report.end, IpsEnd::Marker);
  EXPECT_EQ(Apply("PATCH" + record, "abcdef"), "ab#def");  // no marker needed
  EXPECT_EQ(m_report.end, IpsEnd::EndOfFile);
  // A zero length writes nothing and the next bytes are an offset, not a run-length count.
  EXPECT_EQ(Apply("PATCH" + Bytes({0, 0, 1, 0, 0}) + record + "EOF", "abcdef"), "ab#def");
  EXPECT_EQ(m_report.records, 2u);
}

TEST_F(IpsApply, CutShortPatchKeepsItsCompleteRecordsAndSaysSo) {
  const std::string complete = "PATCH" + Bytes({0, 0, 0, 0, 1}) + "A";
  for (const std::string& cut : {Bytes({0, 0}), Bytes({0, 0, 3, 0}), Bytes({0, 0, 3, 0, 4, 'B'})}) {
    EXPECT_EQ(Apply(complete + cut, "abcdef"), "Abcdef");
    EXPECT_EQ(m_report.end, IpsEnd::Truncated);
    EXPECT_NE(m_report.damage.find("patch.ips is cut short"), std::string::npos);
    EXPECT_NE(m_report.damage.find("byte 11"), std::string::npos) << m_report.damage;
  }
  EXPECT_EQ(Apply("PAT", "abcdef"), "abcdef");
  EXPECT_EQ(m_report.end, IpsEnd::TooShort);
  EXPECT_FALSE(ApplyIpsFile(Put("p.ips", "PATCHEOF"), PathOf("missing.bin")).ok());
}

class IpsCommands : public test::ByteFileTest {
protected:
  std::string RomDir() const { return Dir().string(); }
  std::string LastMessage() const { return m_host.EventsOf(PromptKind::Message).back().text; }
  test::ScriptedHost m_host;
};

TEST_F(IpsCommands, CreateAsksForThreeFilesProposingTheChangedName) {
  const auto a = Put("sonic.bin", "0123456789").string();
  const auto b = Put("sonic2.smd", "01234567x9").string();
  m_host.AnswerOpenFile(a).AnswerOpenFile(b).AnswerSaveFile(PathOf("my.ips").string());
  CreateIpsCommand(m_host, RomDir());
  const auto opened = m_host.EventsOf(PromptKind::OpenFile);
  EXPECT_EQ(opened.at(0).dialog.title, "Open UNchanged file");
  EXPECT_EQ(opened.at(1).dialog.title, "Open changed file");
  EXPECT_EQ(opened.at(1).dialog.initialDir, RomDir());
  const auto saved = m_host.EventsOf(PromptKind::SaveFile).at(0).dialog;
  EXPECT_EQ(saved.title, "Name the IPS file");
  EXPECT_EQ(saved.initialName, PathOf("sonic2.ips").string());
  EXPECT_EQ(LastMessage(), "IPS file generated.");
  EXPECT_TRUE(std::filesystem::exists(PathOf("my.ips")));

  const auto shorter = Put("short.bin", "0").string();
  m_host.AnswerOpenFile(a).AnswerOpenFile(shorter).AnswerSaveFile(PathOf("s.ips").string());
  CreateIpsCommand(m_host, RomDir());
  EXPECT_EQ(LastMessage(), "The size of the files don't match!");
  EXPECT_EQ(m_host.Events().back().icon, MessageIcon::Critical);
  EXPECT_FALSE(std::filesystem::exists(PathOf("s.ips")));
}

TEST_F(IpsCommands, ApplyAsksForPatchThenImageAndCancelSaysNothing) {
  const auto image = Put("game.bin", "abcdef").string();
  const auto patch = Put("fix.ips", "PATCHeof").string();
  m_host.AnswerOpenFile(patch).AnswerOpenFile(std::nullopt);
  ApplyIpsCommand(m_host, RomDir());
  EXPECT_TRUE(m_host.EventsOf(PromptKind::Message).empty());
  m_host.AnswerOpenFile(patch).AnswerOpenFile(image);
  ApplyIpsCommand(m_host, RomDir());
  const auto opened = m_host.EventsOf(PromptKind::OpenFile);
  EXPECT_EQ(opened.at(0).dialog.title, "Open IPS file");
  EXPECT_EQ(opened.at(1).dialog.title, "Open ROM to be patched");
  EXPECT_EQ(LastMessage(), "IPS file applyed.");  // an empty patch is applied all the same
}

}  // namespace
}  // namespace romsteward
