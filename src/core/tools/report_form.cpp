#include "core/tools/report_form.h"

#include <system_error>

#include "core/common/atomic_file.h"
#include "core/common/binary_file.h"
#include "core/common/strings.h"
#include "core/host/app_title.h"
#include "core/host/host.h"
#include "core/identify/chosen_dat.h"
#include "core/launch/temp_folder.h"
#include "core/launch/zip_archive.h"

namespace romsteward {

namespace {

constexpr std::string_view kScriptDialogTitle = "Save Romsteward's script";

FileDialog ScriptDialog() {
  FileDialog dialog;
  dialog.title = kScriptDialogTitle;
  dialog.filters = {{"Romsteward Scripts", "*.rsc"}};
  return dialog;
}

}  // namespace

const std::vector<InsertMenuItem>& ReportInsertMenu() {
  static const std::vector<InsertMenuItem> items = {
      {"ROM &filename", "%file%"},      {"ROM filet&ype", "%romtype%"},
      {"ROM &size", "%romsize%"},       {"&Domestic", "%namedomestic%"},
      {"&Overseas", "%nameoverseas%"},  {"Copy&right", "%copyright%"},
      {"Country &lock", "%countries%"}, {"&I/O Support", "%io%"},
      {"&Checksum", "%crc%"},           {"There is R&AM?", "%rampresent%"},
      {"&Number of ROMs", "%roms%"},    {"&Total size", "%size%"},
      {"&Begin of List", "-BOL-"},      {"&End of List", "-EOL-"},
  };
  return items;
}

Status WriteOverKeepingTail(const std::filesystem::path& target, std::string_view data) {
  std::string contents(data);
  std::error_code error;
  if (std::filesystem::exists(target, error)) {
    auto old = ReadWholeFile(target);
    if (!old) return old.error();
    if (old->size() > contents.size()) contents += std::string_view(*old).substr(contents.size());
  }
  return WriteFileAtomically(target, contents);
}

RomListForm::RomListForm() : m_text(kDefaultReportTemplate) {}

void RomListForm::ChooseRomName(Host& host, RomNameChoice choice) {
  host.ShowMessage(kRomNameWarning, MessageIcon::Exclamation, kAppTitle);
  m_romName = choice;
}

void RomListForm::SaveScript(Host& host) {
  FileDialog dialog = ScriptDialog();
  dialog.initialName = "*.rsc";
  const std::optional<std::string> path = host.ChooseSaveFile(dialog);
  if (!path || path->empty()) return;
  if (Status saved = WriteOverKeepingTail(Utf8ToPath(*path), m_text); !saved)
    host.ShowMessage(saved.error().message, MessageIcon::Critical, kAppTitle);
}

void RomListForm::OpenScript(Host& host) {
  const std::optional<std::string> path = host.ChooseOpenFile(ScriptDialog());
  if (!path || path->empty()) return;
  auto text = ReadWholeFile(Utf8ToPath(*path));
  if (!text) {
    host.ShowMessage(text.error().message, MessageIcon::Critical, kAppTitle);
    return;
  }
  m_text = std::move(*text);
}

void RomListForm::CreateList(Host& host, const AppSettings& settings, const RomListSource& source) {
  if (auto pieces = SplitTemplate(m_text); !pieces) {
    host.ShowMessage(pieces.error().message, MessageIcon::Critical, kAppTitle);
    return;
  }
  // Asked before the output file, so nobody picks a file for a list that cannot be made.
  std::filesystem::path tempFolder;
  if (source.zip) {
    const auto folder = UsableTemporaryFolder(settings);
    if (!folder) {
      host.ShowMessage(kTempFolderMissing, MessageIcon::Critical, kAppTitle);
      return;
    }
    tempFolder = *folder;
  }

  FileDialog dialog;
  dialog.title = "Select list file";
  dialog.filters = {{"Any text file", "*.txt;*.html"}};
  dialog.initialName = "romlist.txt";
  // Beside the collection it lists; an archive's list goes beside the archive.
  dialog.initialDir =
      source.zip ? PathToUtf8(Utf8ToPath(source.place).parent_path()) : source.place;
  const std::optional<std::string> output = host.ChooseSaveFile(dialog);
  if (!output || output->empty()) return;

  // The chosen DAT is read only for a template that names images from it.
  std::unique_ptr<ChosenDat> dat;
  if (m_text.find(PlaceholderText(Placeholder::DatName)) != std::string::npos) {
    auto loaded = LoadChosenDat(settings);
    if (!loaded) {
      host.ShowMessage(loaded.error().message, MessageIcon::Critical, kAppTitle);
      return;
    }
    dat = std::move(*loaded);
  }
  auto report = BuildRomListReport(m_text, source, m_romName, tempFolder, host, dat.get());
  if (!report) {
    host.ShowMessage(report.error().message, MessageIcon::Critical, kAppTitle);
    return;
  }
  if (Status written = WriteOverKeepingTail(Utf8ToPath(*output), *report); !written) {
    host.ShowMessage(written.error().message, MessageIcon::Critical, kAppTitle);
    return;
  }
  host.ShowMessage("Rom list created!", MessageIcon::Information, kAppTitle);
}

}  // namespace romsteward
