// romsteward-tool report: the text report of a directory or ZIP archive from a template.
#include <CLI/CLI.hpp>
#include <filesystem>
#include <memory>
#include <ostream>
#include <system_error>

#include "cli/interrupt_guard.h"
#include "cli/rom_place.h"
#include "cli/tool.h"
#include "core/common/atomic_file.h"
#include "core/common/binary_file.h"
#include "core/common/strings.h"
#include "core/host/app_title.h"
#include "core/host/host.h"
#include "core/identify/chosen_dat.h"
#include "core/launch/temp_folder.h"
#include "core/tools/report_generator.h"

namespace romsteward::cli {

namespace {

struct ReportOptions {
  std::string templateFile;
  std::string output;
  std::string place;
};

void Fail(ToolContext& context, std::string_view message) {
  context.host().ShowMessage(message, MessageIcon::Critical, kAppTitle);
  context.status = kExitError;
}

void RunReport(const ReportOptions& options, ToolContext& context) {
  std::string text(kDefaultReportTemplate);
  if (!options.templateFile.empty()) {
    auto read = ReadWholeFile(Utf8ToPath(options.templateFile));
    if (!read) return Fail(context, read.error().message);
    text = std::move(*read);
  }
  // The template is judged before anything is read or written.
  if (auto pieces = SplitTemplate(text); !pieces) {
    Fail(context, pieces.error().message);
    context.err << "The template " << EscapeForDisplay(options.templateFile)
                << " was not used; no report was written.\n";
    return;
  }

  const auto model = OpenPlace(context, options.place, ListFilter::RomFiles, SortOrder::Name);
  if (!model) return;
  const RomListSource source{model->Diret(), model->IsZipListing(), model->Entries()};

  // Archive members need a folder to be read from: the program's own when it is set, else
  // the system's, so that the tool works before the program was ever configured.
  std::filesystem::path temp;
  if (source.zip) {
    AppSettings* settings = context.SettingsOrReport();
    if (!settings) return;
    std::error_code error;
    const auto folder = UsableTemporaryFolder(*settings);
    temp = folder ? *folder : std::filesystem::temp_directory_path(error);
    if (error) return Fail(context, "No temporary folder to extract into: " + error.message());
  }

  std::unique_ptr<ChosenDat> dat;
  if (text.find(PlaceholderText(Placeholder::DatName)) != std::string::npos) {
    AppSettings* settings = context.SettingsOrReport();
    if (!settings) return;
    auto loaded = LoadChosenDat(*settings);
    if (!loaded) return Fail(context, loaded.error().message);
    dat = std::move(*loaded);
  }
  // A report of a big archive takes a while: an interrupt ends it with its private folder
  // removed, then ends the tool by the same signal.
  InterruptGuard interrupts(context.host());
  auto report =
      BuildRomListReport(text, source, RomNameChoice::Overseas, temp, interrupts.host(), dat.get());
  interrupts.End();
  if (!report) return Fail(context, report.error().message);
  if (options.output.empty() || options.output == "-") {
    context.out << *report;
    return;
  }
  if (Status written = WriteFileAtomically(Utf8ToPath(options.output), *report); !written)
    return Fail(context, written.error().message);
  context.host().ShowMessage("Rom list created!", MessageIcon::Information, kAppTitle);
}

}  // namespace

void AddReportCommand(CLI::App& app, ToolContext& context) {
  auto options = std::make_shared<ReportOptions>();
  CLI::App* command = app.add_subcommand(
      "report", "Write the text report of a directory's or ZIP archive's images");
  command->add_option("--template", options->templateFile,
                      "Template or script file (default: the built-in template)");
  command->add_option("-o,--output", options->output,
                      "Report file, replaced whole (default: standard output)");
  command->add_option("place", options->place, "A directory or a ZIP archive")->required();
  command->callback([options, &context] { RunReport(*options, context); });
}

}  // namespace romsteward::cli
