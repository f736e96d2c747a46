// romsteward-tool register-types: make the desktop open cartridge images with the program.
#include <CLI/CLI.hpp>
#include <filesystem>
#include <memory>
#include <ostream>
#include <vector>

#include "cli/tool.h"
#include "core/common/strings.h"
#include "core/settings/file_types.h"

namespace romsteward::cli {

namespace {

struct RegisterTypesOptions {
  bool remove = false;
  std::string program;
  std::vector<std::string> extensions;
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
  std::vector<FileTypeEntry> types;
  for (const std::string& extension : options.extensions) {
    // The option's check lets only the four extensions through.
    if (const FileTypeEntry* type = FindFileType(extension)) types.push_back(*type);
  }
  if (types.empty()) types.assign(FileTypes().begin(), FileTypes().end());
  auto report = options.remove ? RemoveFileTypes(*places) : RegisterFileTypes(*places, types);
  if (!report) {
    context.err << report.error().message << '\n';
    // Run from a build tree, the tool has no desktop program beside it.
    if (!options.remove && options.program.empty())
      context.err << "Name the desktop program with --program PATH.\n";
    context.status = kExitError;
    return;
  }
  for (const auto& note : report->notes)
    context.err << note << '\n';
  if (options.remove) {
    context.out << "The image types are no longer registered.\n";
  } else {
    // The layouts share the desktop's one Genesis type, whichever were chosen.
    context.out << "Genesis images (.bin, .smd, .1, .md) now open with " << PathToUtf8(program)
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
  command
      ->add_option("--type", options->extensions,
                   "Only these image types: bin, smd, 1 or md (default: all four)")
      ->check(CLI::IsMember({"bin", "smd", "1", "md"}));
  command->callback([options, &context] { RunRegisterTypes(*options, context); });
}

}  // namespace romsteward::cli
