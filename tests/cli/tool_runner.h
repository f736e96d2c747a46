#pragma once

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "cli/tool.h"
#include "core/common/strings.h"
#include "core/demo/demo_collection.h"
#include "support/byte_files.h"

namespace romsteward::test {

/// What one run of romsteward-tool printed and returned.
struct ToolRun {
  int status = -1;
  std::string out;
  std::string err;
};

/// Runs the tool in this process with string streams and `input` as what is typed; `launch`,
/// when given, stands in for the emulator.
inline ToolRun RunToolWith(const std::vector<std::string>& args, const std::string& input = {},
                           Host* host = nullptr, LaunchStep launch = {}) {
  std::istringstream in(input);
  std::ostringstream out;
  std::ostringstream err;
  cli::ToolStreams streams{in, out, err};
  streams.host = host;
  streams.launch = std::move(launch);
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
  ToolRun Run(std::vector<std::string> args, const std::string& input = {},
              LaunchStep launch = {}) const {
    args.insert(args.begin(), {"--settings", StoreFile()});
    return RunToolWith(args, input, nullptr, std::move(launch));
  }
  std::string Path(std::string_view name) const { return PathToUtf8(PathOf(name)); }
};

/// The demo collection in "demo" of the test's directory.
class DemoToolTest : public ToolSettingsTest {
protected:
  DemoToolTest() { EXPECT_TRUE(WriteDemoCollection(PathOf("demo")).ok()); }
};

}  // namespace romsteward::test
