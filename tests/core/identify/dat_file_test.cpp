#include "core/identify/dat_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/byte_files.h"

namespace romsteward {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;

constexpr std::string_view kGood = R"xml(<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE datafile PUBLIC "-//Logiqx//DTD ROM Management Datafile//EN" "http://www.logiqx.com/Dats/datafile.dtd">
<datafile>
  <header><name>Sega - Mega Drive</name><description>Set</description><version>2024</version></header>
  <game name="Alpha (USA)"><rom name="Alpha (USA).md" size="4" crc="CBF43926" sha1="A9993E364706816ABA3E25717850C26C9CD0D89D" md5="900150983cd24fb0d6963f7d28e17f72"/></game>
  <machine name="Beta &amp; Co (Japan)"><rom name="b.bin" crc="00000001"/></machine>
  <game name="No Roms"/>
</datafile>)xml";

TEST(DatFile, ReadsHeaderGamesAndHashesLowerCased) {
  auto dat = ParseDatFile(kGood, "set.dat");
  ASSERT_TRUE(dat.ok()) << dat.error().message;
  EXPECT_EQ(dat->name, "Sega - Mega Drive");
  EXPECT_EQ(dat->version, "2024");
  ASSERT_EQ(dat->games.size(), 2u);  // a game without roms identifies nothing
  const DatRom& alpha = dat->games[0].roms.at(0);
  EXPECT_EQ(alpha.size, 4u);
  EXPECT_EQ(alpha.crc32, 0xcbf43926u);
  EXPECT_EQ(alpha.sha1, "a9993e364706816aba3e25717850c26c9cd0d89d");
  EXPECT_EQ(dat->games[1].name, "Beta & Co (Japan)");
  EXPECT_FALSE(dat->games[1].roms[0].size);
  EXPECT_TRUE(dat->problems.empty());
}

TEST(DatFile, DamagedEntriesAreLeftOutWithTheirLineAndTheRestKept) {
  constexpr std::string_view xml = R"xml(<datafile>
<game name="Good"><rom name="g" crc="12345678"/></game>
<game name="Bad crc"><rom name="b" crc="12345"/></game>
<game name="Bad sha1"><rom name="s" sha1="xyz"/></game>
<game name="Bad size"><rom name="z" size="-3" crc="12345678"/></game>
<game name="No hash"><rom name="n" size="3"/></game>
<game><rom name="nameless" crc="12345678"/></game>
</datafile>)xml";
  auto dat = ParseDatFile(xml, "d");
  ASSERT_TRUE(dat.ok());
  ASSERT_EQ(dat->games.size(), 1u);
  EXPECT_EQ(dat->games[0].name, "Good");
  ASSERT_EQ(dat->problems.size(), 5u);
  EXPECT_THAT(dat->problems[0],
              HasSubstr("line 3: game \"Bad crc\": rom \"b\" has a malformed crc"));
  EXPECT_THAT(dat->problems[3], HasSubstr("neither a crc nor a sha1"));
  EXPECT_THAT(dat->problems[4], HasSubstr("line 7: a game without a name"));
}

TEST(DatFile, HostileOrBrokenXmlIsRefusedOrHarmless) {
  // Entities of a document type are never expanded: no billion laughs, no file read.
  constexpr std::string_view laughs = R"xml(<?xml version="1.0"?>
<!DOCTYPE datafile [<!ENTITY a "aaaaaaaaaa"><!ENTITY b "&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;">
<!ENTITY c "&b;&b;&b;&b;&b;&b;&b;&b;&b;&b;"><!ENTITY x SYSTEM "file:///etc/passwd">]>
<datafile><game name="&c;&x;"><rom name="r" crc="12345678"/></game></datafile>)xml";
  auto dat = ParseDatFile(laughs, "d");
  ASSERT_TRUE(dat.ok()) << dat.error().message;
  EXPECT_EQ(dat->games.at(0).name, "&c;&x;");

  const auto refused = [](std::string_view xml) {
    auto parsed = ParseDatFile(xml, "bad.dat");
    return parsed.ok() ? std::string("accepted") : parsed.error().message;
  };
  EXPECT_THAT(refused("<datafile>\n<game name=\"a\">\n</datafile>"),
              AllOf(HasSubstr("bad.dat is not a readable DAT file: "), HasSubstr("at line 3")));
  EXPECT_THAT(refused(""), HasSubstr("not a readable DAT file"));
  EXPECT_THAT(refused("<softwarelist/>"), HasSubstr("has no \"datafile\" element"));
  EXPECT_THAT(refused("<?xml version=\"1.0\" encoding=\"Shift_JIS\"?><datafile/>"),
              HasSubstr("encoding \"shift_jis\", which cannot be read"));
  EXPECT_THAT(refused("<datafile><game name=\"Pok\xe9mon\"><rom name=\"p\" crc=\"12345678\"/>"
                      "</game></datafile>"),
              HasSubstr("is not UTF-8 text as it declares (line 1)"));
}

TEST(DatFile, Latin1DeclaredNamesBecomeUtf8) {
  auto dat = ParseDatFile(
      "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?><datafile><game "
      "name=\"Pok\xe9mon\"><rom name=\"p\" crc=\"12345678\"/></game></datafile>",
      "d");
  ASSERT_TRUE(dat.ok()) << dat.error().message;
  EXPECT_EQ(dat->games.at(0).name, "Pok\xc3\xa9mon");
}

class DatFileOnDisk : public test::ByteFileTest {};

TEST_F(DatFileOnDisk, RefusesWhatIsNoDatFileBeforeReadingIt) {
  const auto message = [](const std::filesystem::path& path) {
    auto dat = ReadDatFile(path);
    return dat.ok() ? std::string("accepted") : dat.error().message;
  };
  EXPECT_THAT(message(PathOf("missing.dat")), HasSubstr("no such file"));
  EXPECT_THAT(message(Dir()), HasSubstr("not a regular file"));
  // Sparse, so the test costs no disk: it is refused by its size alone.
  const auto huge = Put("huge.dat", "<datafile/>");
  std::filesystem::resize_file(huge, kMaxDatFileSize + 1);
  EXPECT_THAT(message(huge), HasSubstr("is larger than 256 MiB"));
  EXPECT_TRUE(ReadDatFile(Put("empty-set.dat", "<datafile/>")).ok());
}

// Larger than any image, patch or template is read whole, and the lines of its problems
// are still counted right though the text was parsed in place.
TEST_F(DatFileOnDisk, ADatOfTensOfMegabytesIsReadWithItsLines) {
  constexpr std::size_t kBreaks = 70u << 20;
  std::string text = "<?xml version=\"1.0\"?>\n<datafile>\n";
  text.append(kBreaks, '\n');
  text +=
      "<game\nname=\"a\"><rom\nname=\"r\" crc=\"1234567\"/><rom name=\"s\" "
      "crc=\"89abcdef\"/></game>\n</datafile>\n";
  auto dat = ReadDatFile(Put("large.dat", text));
  text.clear();
  ASSERT_TRUE(dat.ok()) << dat.error().message;
  ASSERT_EQ(dat->games.size(), 1u);
  EXPECT_EQ(dat->games[0].roms.at(0).name, "s");
  ASSERT_EQ(dat->problems.size(), 1u);
  EXPECT_THAT(dat->problems[0], HasSubstr("line " + std::to_string(kBreaks + 4) + ": "));
}

}  // namespace
}  // namespace romsteward
