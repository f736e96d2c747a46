// romsteward-tool join-files: any files appended, in order, into a new one.
#include <CLI/CLI.hpp>
#include <filesystem>
#include <memory>
#include <system_error>

#include "cli/exit_status.h"
#include "cli/tool.h"
#include "core/common/strings.h"
#include "core/host/host.h"
#include "core/tools/split_join.h"

namespace romsteward::cli {

namespace {

struct JoinFilesOptions {
  std::string destination;
  std::vector<std::string> files;
};

int RunJoinFiles(const JoinFilesOptions& options, ToolContext& context) {
  const auto destination = Utf8ToPath(options.destination);
  std::error_code error;
  // The desktop's save dialog asks this itself; here the question is the tool's.
  if (std::filesystem::exists(destination, error) &&
      context.host().AskYesNo("The file '" + options.destination + "' exists! Overwrite?",
                              MessageIcon::Question, {}) != Answer::Yes)
    return kExitError;  // an output that would be overwritten, as everywhere
  return ExitStatusFor(JoinFilesInto(context.host(), destination, options.files));
}

}  // namespace

void AddJoinFilesCommand(CLI::App& app, ToolContext& context) {
  auto options = std::make_shared<JoinFilesOptions>();
  CLI::App* command = app.add_subcommand(
      "join-files", "Write the FILEs, whole and in the order given, one after another into DEST");
  command->add_option("dest", options->destination, "File to write")->required();
  command->add_option("files", options->files, "Files to append, in order")->required();
  command->callback([options, &context] { context.status = RunJoinFiles(*options, context); });
}

}  // namespace romsteward::cli
