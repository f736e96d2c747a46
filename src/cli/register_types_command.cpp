// romsteward-tool register-types: make the desktop open cartridge images with the program.
#include <CLI/CLI.hpp>
#include <filesystem>
#include <memory>
#include <ostream>

#include "cli/tool.h"
#include "core/common/strings.h"
#include "core/settings/file_types.h"

namespace romsteward::cli {

namespace {

struct RegisterTypesOptions {
  bool remove = false;
  std::string program;
};

// The desktop program installed beside this tool, which is what opens the images.
std::filesystem::path DesktopProgramBesideTool() {
  std::error_code error;
  const auto self = std::filesystem::read_symlink("/proc/self/exe", error);
  return (error ? std::filesystem::current_path(error) : self.parent_path()) / "romsteward";
}

void RunRegisterTypes(const RegisterTypesOptions& options, ToolContext& context) {
  const auto program = options.program.empty()
                           ? DesktopProgramBesideTool()
                           : std::filesystem::absolute(Utf8ToPath(options.program));
  auto places = DefaultFileTypePlaces(program);
  if (!places) {
    context.err << places.error().message << '\n';
    context.status = kExitError;
    return;
  }
  auto report = options.remove ? RemoveFileTypes(*places) : RegisterFileTypes(*places);
  if (!report) {
    context.err << report.error().message << '\n';
    context.status = kExitError;
    return;
  }
  for (const auto& note : report->notes)
    context.err << note << '\n';
  if (options.remove) {
    context.out << "The image types are no longer registered.\n";
  } else {
    context.out << "Images ending in .bin, .smd, .1 and .md now open with " << PathToUtf8(program)
                << ".\n";
  }
}

}  // namespace

void AddRegisterTypesCommand(CLI::App& app, ToolContext& context) {
  auto options = std::make_shared<RegisterTypesOptions>();
  CLI::App* command = app.add_subcommand("register-types",
                                         "Make the desktop open cartridge images with the program");
  command->add_flag("--remove", options->remove, "Take the registration away again");
  command->add_option("--program", options->program,
                      "The program to open images with (default: romsteward beside this tool)");
  command->callback([options, &context] { RunRegisterTypes(*options, context); });
}

}  // namespace romsteward::cli
