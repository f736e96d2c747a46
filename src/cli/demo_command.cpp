// romsteward-tool demo: the made-up collection that `make run` and the tests use.
#include <CLI/CLI.hpp>
#include <memory>
#include <ostream>

#include "cli/tool.h"
#include "core/common/strings.h"
#include "core/demo/demo_collection.h"

namespace romsteward::cli {

void AddDemoCommand(CLI::App& app, ToolContext& context) {
  auto dir = std::make_shared<std::string>();
  CLI::App* command = app.add_subcommand("demo", "Write the demo collection into a directory");
  command->add_option("dir", *dir, "Directory to write to (created when missing)")->required();
  command->callback([dir, &context] {
    if (Status written = WriteDemoCollection(Utf8ToPath(*dir)); !written) {
      context.err << written.error().message << '\n';
      context.status = kExitError;
      return;
    }
    context.out << "Wrote the demo collection to " << *dir << '\n';
  });
}

}  // namespace romsteward::cli
