#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "cli/tool.h"
#include "support/byte_files.h"

namespace romsteward::cli {
namespace {

using test::Bytes;

class PatchCommand : public test::ByteFileTest {
protected:
  int Run(std::vector<std::string> args) {
    args.insert(args.begin(), {"--settings", PathOf("settings.sqlite3").string()});
    m_out.str({});
    m_err.str({});
    return RunTool(args, m_out, m_err);
  }
  std::string Path(std::string_view name) const { return PathOf(name).string(); }

  std::ostringstream m_out;
  std::ostringstream m_err;
};

TEST_F(PatchCommand, AddListRemoveKeyedByTheImagesFileName) {
  Put("SONIC.BIN", "0123456789");
  Put("SONIC.BIN2", "0123456789");
  ASSERT_EQ(Run({"patch", "add", Path("SONIC.BIN"), "lives", "1", "ABC"}), kExitOk) << m_err.str();
  ASSERT_EQ(Run({"patch", "add", Path("SONIC.BIN2"), "sequel", "0", "7c"}), kExitOk);

  ASSERT_EQ(Run({"patch", "list", Path("SONIC.BIN")}), kExitOk);
  EXPECT_EQ(m_out.str(),
            "SONIC.BIN:\n"
            "  lives: at 1, 2 bytes, new 0ABC, old 3132\n"
            "Also applied at launch:\n"
            "  SONIC.BIN2|sequel: at 0, 1 byte, new 7C, old 30\n");

  // Without --yes and without a terminal the confirmation is answered no.
  ASSERT_EQ(Run({"patch", "remove", Path("SONIC.BIN"), "LIVES"}), kExitOk);
  EXPECT_EQ(m_out.str(), "Nothing removed\n");
  ASSERT_EQ(Run({"patch", "remove", "--yes", Path("SONIC.BIN"), "LIVES"}), kExitOk);
  EXPECT_EQ(Run({"patch", "remove", "--yes", Path("SONIC.BIN"), "lives"}), kExitError);
  ASSERT_EQ(Run({"patch", "list", Path("SONIC.BIN2")}), kExitOk);
  EXPECT_NE(m_out.str().find("sequel"), std::string::npos);
  EXPECT_EQ(test::ReadTestFile(PathOf("SONIC.BIN")), "0123456789");
}

TEST_F(PatchCommand, BadPositionOrValueIsRefusedWithTheWindowsMessage) {
  Put("GAME.BIN", std::string(0x200, 'x'));
  EXPECT_EQ(Run({"patch", "add", Path("GAME.BIN"), "p", "200", "00"}), kExitError);
  EXPECT_NE(m_err.str().find("This value must be between 0 and 1FF."), std::string::npos)
      << m_err.str();
  EXPECT_EQ(Run({"patch", "add", Path("GAME.BIN"), "p", "10", "hello"}), kExitError);
  EXPECT_NE(m_err.str().find("isn't in HEX format"), std::string::npos);
  EXPECT_EQ(Run({"patch", "add", Path("NONE.BIN"), "p", "0", "00"}), kExitError);
  ASSERT_EQ(Run({"patch", "list", Path("GAME.BIN")}), kExitOk);
  EXPECT_EQ(m_out.str(), "No dynamic patches found\n");
}

TEST_F(PatchCommand, FromIpsStoresOnePatchPerRecord) {
  Put("GAME.BIN", "0123456789");
  Put("hack.ips", "PATCH" + Bytes({0, 0, 1, 0, 2}) + "AB" + Bytes({0, 0, 7, 0, 1}) + "C" + "EOF");
  ASSERT_EQ(Run({"patch", "from-ips", Path("GAME.BIN"), Path("hack.ips"), " hack "}), kExitOk)
      << m_err.str();
  EXPECT_NE(m_err.str().find("Romsteward generated 2 dynamic patches from the IPS!"),
            std::string::npos);
  ASSERT_EQ(Run({"patch", "list", Path("GAME.BIN")}), kExitOk);
  EXPECT_EQ(m_out.str(),
            "GAME.BIN:\n"
            "  hack0: at 1, 2 bytes, new 4142, old 3132\n"
            "  hack1: at 7, 1 byte, new 43, old 37\n");
  EXPECT_EQ(Run({"patch", "from-ips", Path("GAME.BIN"), Path("none.ips"), "x"}), kExitError);
}

}  // namespace
}  // namespace romsteward::cli
