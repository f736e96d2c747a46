#pragma once

#include <sstream>
#include <string>
#include <vector>

#include "cli/tool.h"

namespace romsteward::cli::test {

/// What one run of romsteward-tool gave back.
struct ToolRun {
  int status;
  std::string out;
  std::string err;
};

inline ToolRun RunToolCapturing(const std::vector<std::string>& args) {
  std::ostringstream out;
  std::ostringstream err;
  const int status = RunTool(args, out, err);
  return {status, out.str(), err.str()};
}

}  // namespace romsteward::cli::test
