#pragma once

#include <sstream>
#include <string>
#include <vector>

#include "cli/tool.h"
#include "support/byte_files.h"

namespace romsteward::test {

/// What one run of romsteward-tool printed and returned.
struct ToolRun {
  int status = -1;
  std::string out;
  std::string err;
};

/// Runs the tool in this process with string streams and `input` as what is typed.
inline ToolRun RunToolWith(const std::vector<std::string>& args, const std::string& input = {},
                           Host* host = nullptr) {
  std::istringstream in(input);
  std::ostringstream out;
  std::ostringstream err;
  cli::ToolStreams streams{in, out, err};
  streams.host = host;
  ToolRun run;
  run.status = cli::RunTool(args, streams);
  run.out = out.str();
  run.err = err.str();
  return run;
}

/// Fixture for commands that use the settings store: every run gets --settings with a
/// store file of its own temporary directory.
class ToolSettingsTest : public ByteFileTest {
protected:
  std::string StoreFile() const { return PathOf("settings.sqlite3").string(); }
  ToolRun Run(std::vector<std::string> args, const std::string& input = {}) const {
    args.insert(args.begin(), {"--settings", StoreFile()});
    return RunToolWith(args, input);
  }
};

}  // namespace romsteward::test
