#include "cli/tool.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <ostream>

namespace romsteward::cli {

int RunTool(const std::vector<std::string>& args, std::ostream& out, std::ostream& err) {
  ToolContext context{out, err};
  CLI::App app{"Genesis Romsteward: cartridge image header tool", "romsteward-tool"};
  app.require_subcommand(1);
  app.set_version_flag("--version", "romsteward-tool 0.1.0");

  AddInfoCommand(app, context);
  AddConvertCommand(app, context);
  AddDemoCommand(app, context);
  AddIpsCommand(app, context);

  std::vector<std::string> reversed(args.rbegin(), args.rend());  // CLI11 parses from the back
  try {
    app.parse(reversed);
  } catch (const CLI::ParseError& error) {
    return app.exit(error, out, err);
  }
  return context.status;
}

}  // namespace romsteward::cli
