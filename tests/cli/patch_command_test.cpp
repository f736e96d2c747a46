#include <gtest/gtest.h>

#include <sstream>

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
  std::ostringstream m_out;
  std::ostringstream m_err;
};

TEST_F(PatchCommand, PatchesAreAddedListedAndRemovedByTheImagesFileName) {
  const auto sonic = Put("SONIC.BIN", "0123456789").string();
  const auto sequel = Put("SONIC.BIN2", "0123456789").string();
  const auto ips = Put("h.ips", "PATCH" + Bytes({0, 0, 7, 0, 1}) + "CEOF").string();
  ASSERT_EQ(Run({"patch", "add", sonic, "lives", "1", "ABC"}), kExitOk) << m_err.str();
  ASSERT_EQ(Run({"patch", "from-ips", sequel, ips, " hack "}), kExitOk) << m_err.str();
  EXPECT_EQ(Run({"patch", "add", sonic, "p", "A", "00"}), kExitError);  // past the end

  ASSERT_EQ(Run({"patch", "list", sonic}), kExitOk);
  EXPECT_EQ(m_out.str(),
            "SONIC.BIN:\n"
            "  lives: at 1, 2 bytes, new 0ABC, old 3132\n"
            "Also applied at launch:\n"
            "  SONIC.BIN2|hack0: at 7, 1 byte, new 43, old 37\n");
  ASSERT_EQ(Run({"patch", "remove", sonic, "LIVES"}), kExitOk);  // no terminal: answered no
  EXPECT_EQ(m_out.str(), "Nothing removed\n");
  ASSERT_EQ(Run({"patch", "remove", "--yes", sonic, "LIVES"}), kExitOk);
  EXPECT_EQ(Run({"patch", "remove", "--yes", sonic, "lives"}), kExitError);
}

}  // namespace
}  // namespace romsteward::cli
