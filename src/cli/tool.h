#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace romsteward::cli {

/// Exit statuses shared by every subcommand.
inline constexpr int kExitOk = 0;
inline constexpr int kExitFailure = 1;  ///< the command ran and found a problem
inline constexpr int kExitError = 2;    ///< bad input: an unreadable file, a refused write

/// What a subcommand needs of its surroundings; the tests give it string streams.
struct ToolContext {
  std::ostream& out;
  std::ostream& err;
  int status = kExitOk;
};

/// Runs romsteward-tool with `args` (without the program name) and returns its exit status.
int RunTool(const std::vector<std::string>& args, std::ostream& out, std::ostream& err);

// One registration function per subcommand; each parses its own options.
void AddInfoCommand(CLI::App& app, ToolContext& context);
void AddConvertCommand(CLI::App& app, ToolContext& context);
void AddDemoCommand(CLI::App& app, ToolContext& context);
void AddIpsCommand(CLI::App& app, ToolContext& context);

}  // namespace romsteward::cli
