// romsteward-tool join: the volumes of a split set back into one SMD image.
#include <CLI/CLI.hpp>
#include <memory>

#include "cli/exit_status.h"
#include "cli/tool.h"
#include "core/common/strings.h"
#include "core/tools/split_join.h"

namespace romsteward::cli {

void AddJoinCommand(CLI::App& app, ToolContext& context) {
  auto file = std::make_shared<std::string>();
  CLI::App* command = app.add_subcommand(
      "join", "Join the split set FILE belongs to (any volume) into its-name.smd");
  command->add_option("file", *file, "Any volume of the split set")->required();
  command->callback([file, &context] {
    context.status = ExitStatusFor(JoinRom(context.host(), Utf8ToPath(*file)));
  });
}

}  // namespace romsteward::cli
