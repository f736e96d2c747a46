#include "core/app/main_window_model.h"

#include <algorithm>

#include "core/common/strings.h"
#include "core/host/app_title.h"
#include "core/host/host.h"
#include "core/identify/chosen_dat.h"
#include "core/launch/temp_folder.h"
#include "core/launch/zip_archive.h"
#include "core/library/dir_history.h"
#include "core/library/place.h"
#include "core/settings/app_settings.h"
#include "core/tools/file_system_operations.h"

namespace romsteward {

namespace {

constexpr std::string_view kDirs = "mnu_dirs";
constexpr std::string_view kShowSub = "mnu_showsub";
constexpr std::string_view kSortSub = "mnu_sortsub";
constexpr std::string_view kTitle = "mnuTitle";

std::string HistoryKey(std::size_t index) {
  return "dir" + std::to_string(index);
}

}  // namespace

MainWindowModel::MainWindowModel(Host& host, AppSettings& settings, FileOperations* operations)
    : m_host(host),
      m_settings(settings),
      m_ownOperations(operations ? nullptr : std::make_unique<FileSystemOperations>()),
      m_operations(operations ? *operations : *m_ownOperations) {
  m_texts.caption = kAppTitle;
  m_texts.txtarquivo = kNormalArchive;
  m_texts.txtFiles = "0 file(s)";
  ShowNoSelection();
}

MainWindowModel::~MainWindowModel() = default;

void MainWindowModel::LoadListChoices() {
  // A missing or unreadable choice keeps the menu's default, as a fresh install shows it.
  const auto load = [this](std::string_view key, std::string_view arrayName, int fallback) {
    const std::string text = m_settings.GetSetting(kSectionSettings, key);
    const std::int64_t value = IsNumeric(text) ? LeadingNumber(text) : fallback;
    m_controls.CheckOnly(arrayName, value == 0 || value == 1 ? static_cast<int>(value) : fallback,
                         2);
  };
  load("ordem", kSortSub, 0);
  load("show", kShowSub, 1);
  load("title", kTitle, 0);
}

void MainWindowModel::LoadDirHistory() {
  for (std::size_t i = 0; i < kDirHistorySize; ++i) {
    ControlState& entry = m_controls[ElementName(kDirs, static_cast<int>(i))];
    entry.caption = m_settings.GetSetting(kSectionSettings, HistoryKey(i));
    entry.visible = !entry.caption.empty();
  }
  const std::string first = m_controls[ElementName(kDirs, 0)].caption;
  if (!first.empty()) SetDiret(first);
}

bool MainWindowModel::SetDiret(std::string_view path) {
  const bool acceptable = PathExists(path, PathKind::Directory) ||
                          (PathExists(path, PathKind::File) && IsZipFile(Utf8ToPath(path)));
  if (!acceptable) {
    m_host.ShowMessage(kDirectoryGone, MessageIcon::Critical, kAppTitle);
    SyncSelection();
    return false;
  }
  m_diret = std::string(path);
  m_currentFileName.clear();
  m_texts.caption = kAppTitle;
  m_texts.txtarquivo = kNormalArchive;
  m_texts.txtarquivoColour = TextColour::Normal;
  RefreshRomList();
  if (m_entries.empty()) EnableFileMenus(false);
  return true;
}

bool MainWindowModel::IsZipListing() const {
  return m_texts.txtarquivo == kZipFileMarker;
}

void MainWindowModel::RefreshRomList() {
  RescanSelecting(SelectedText());
}

std::string MainWindowModel::DialogFolder() const {
  if (!IsZipListing()) return m_diret;
  return PathToUtf8(Utf8ToPath(m_diret).parent_path());
}

void MainWindowModel::RescanSelecting(const std::string& remembered, bool exact) {
  m_entries.clear();
  m_selection.reset();
  m_unreadable = false;
  if (!m_diret.empty()) {
    if (IsZipFile(Utf8ToPath(m_diret))) {
      FillFromZip();
    } else {
      FillFromDirectory();
    }
  }
  m_selection = ReselectByName(m_entries, remembered);
  if (exact && SelectedText() != remembered) {
    const auto found = std::find(m_entries.begin(), m_entries.end(), remembered);
    m_selection = found == m_entries.end() ? std::nullopt
                                           : std::optional<std::size_t>(found - m_entries.begin());
  }
  SyncSelection();
  m_texts.txtFiles = std::to_string(m_entries.size()) + " file(s)";
}

void MainWindowModel::FillFromDirectory() {
  auto names = ScanRomDirectory(Utf8ToPath(m_diret), Filter());
  if (!names) {
    m_host.ShowMessage(names.error().message, MessageIcon::Critical, kAppTitle);
    m_unreadable = true;
    return;
  }
  SortRomNames(*names, Order());
  m_entries = std::move(*names);
}

void MainWindowModel::FillFromZip() {
  m_texts.txtarquivo = kZipFileMarker;
  m_texts.txtarquivoColour = TextColour::Blue;
  auto listing = ListZipEntries(Utf8ToPath(m_diret), MasksOf(Filter()));
  if (!listing) {
    m_host.ShowMessage(listing.error().message, MessageIcon::Critical, kAppTitle);
    m_unreadable = true;
    return;
  }
  // Archive order, unsorted: the list is the archive's own table of contents.
  m_entries = std::move(listing->names);
  if (!listing->damage.empty())
    m_host.ShowMessage(std::string("The ") +
                           std::string(ArchiveFormatName(ArchiveFormatOf(Utf8ToPath(m_diret)))) +
                           " archive " + m_diret +
                           " is damaged; the list shows the members read before the damage (" +
                           listing->damage + ").",
                       MessageIcon::Exclamation, kAppTitle);
}

void MainWindowModel::AddDirHistory(std::string_view path) {
  DirHistory history;
  for (std::size_t i = 0; i < kDirHistorySize; ++i)
    history[i] = m_controls[ElementName(kDirs, static_cast<int>(i))].caption;
  const std::size_t touched = PushDirHistory(history, path);
  for (std::size_t i = 0; i < kDirHistorySize; ++i) {
    ControlState& entry = m_controls[ElementName(kDirs, static_cast<int>(i))];
    entry.caption = history[i];
    if (i < touched) entry.visible = true;
  }
  SaveDirHistory();
}

void MainWindowModel::SaveDirHistory() {
  for (std::size_t i = 0; i < kDirHistorySize; ++i) {
    const std::string& caption = m_controls[ElementName(kDirs, static_cast<int>(i))].caption;
    if (Status saved = m_settings.SaveSetting(kSectionSettings, HistoryKey(i), caption); !saved) {
      m_host.ShowMessage("The directory history could not be saved: " + saved.error().message,
                         MessageIcon::Exclamation, kAppTitle);
      return;
    }
  }
}

void MainWindowModel::OpenRomDirectory() {
  const std::optional<std::string> path = m_host.ChooseFolder("Choose a ROM directory", m_diret);
  if (!path || path->empty()) return;
  if (IsRemotePath(*path)) {
    m_host.ShowMessage(kUncRefused, MessageIcon::Critical, kAppTitle);
    return;
  }
  SetDiret(*path);
  AddDirHistory(*path);
}

void MainWindowModel::OpenZipDirectory() {
  FileDialog dialog;
  dialog.title = "Choose a ZIP directory";
  dialog.initialDir = DialogFolder();
  dialog.filters = {{"Zipped volumes", "*.zip"}, {"7z archives", "*.7z"}};
  const std::optional<std::string> path = m_host.ChooseOpenFile(dialog);
  if (!path || path->empty()) return;
  if (IsRemotePath(*path)) {
    m_host.ShowMessage(kUncRefused, MessageIcon::Critical, kAppTitle);
    return;
  }
  if (!HasZipSignature(Utf8ToPath(*path))) {
    m_host.ShowMessage("The selected file isn't a valid ZIP volume!", MessageIcon::Critical,
                       kAppTitle);
    return;
  }
  if (!UsableTemporaryFolder(m_settings)) {
    m_host.ShowMessage(kTempFolderMissing, MessageIcon::Critical, kAppTitle);
    return;
  }
  // Kept in the history like a directory, so that it is also the place opened next time.
  if (SetDiret(*path)) AddDirHistory(*path);
}

void MainWindowModel::ChooseDirHistory(int index) {
  const std::string caption = m_controls[ElementName(kDirs, index)].caption;
  m_currentFileName.clear();
  SetDiret(caption);
  if (m_diret == caption) AddDirHistory(caption);
}

void MainWindowModel::ChooseFilter(ListFilter filter) {
  m_controls.CheckOnly(kShowSub, static_cast<int>(filter), 2);
  RefreshRomList();
}

void MainWindowModel::ChooseSort(SortOrder order) {
  m_controls.CheckOnly(kSortSub, static_cast<int>(order), 2);
  RefreshRomList();
}

void MainWindowModel::ChooseTitle(int index) {
  m_controls.CheckOnly(kTitle, index, 2);
}

void MainWindowModel::SetTemporaryDirectory() {
  ChooseTemporaryDirectory(m_host, m_settings);
}

ListFilter MainWindowModel::Filter() const {
  return m_controls[ElementName(kShowSub, 0)].checked ? ListFilter::AllFiles : ListFilter::RomFiles;
}

SortOrder MainWindowModel::Order() const {
  return m_controls[ElementName(kSortSub, 0)].checked ? SortOrder::Name : SortOrder::Type;
}

std::string MainWindowModel::SelectedText() const {
  return m_selection && *m_selection < m_entries.size() ? m_entries[*m_selection] : std::string();
}

void MainWindowModel::Select(std::optional<std::size_t> index) {
  m_selection = index && *index < m_entries.size() ? index : std::nullopt;
  SyncSelection();
}

void MainWindowModel::SyncSelection() {
  const std::string selected = SelectedText();
  if (selected == m_currentFileName && (!selected.empty() || !m_panelShowsEntry)) return;
  m_currentFileName = selected;
  ShowRomInfo();
  m_countryIndex = 0;
  m_controls["CmdCalib"].enabled = !m_options.disableJoypad;
}

std::string MainWindowModel::TooltipForRow(long row) const {
  if (row < 0 || static_cast<std::size_t>(row) >= m_entries.size()) return {};
  return m_entries[static_cast<std::size_t>(row)];
}

void MainWindowModel::EnableFileMenus(bool enabled) {
  m_controls["mnu_file"].caption = enabled ? "&File" : kSelectAFile;
  m_controls["mnu_tool"].caption = enabled ? "&Tools" : kSelectAFile;
  m_controls["mnu_conv"].caption = enabled ? "&Convert" : kSelectAFile;
  m_controls.SetEnabled(
      {"mnu_file", "mnu_tool", "mnu_conv", "mnu_savthiscart", "mnu_addfav", "mnu_del", "btnProp",
       "btnDeleta", "btnheader", "btncrc", "Btnlista", "BtnImagem", "mnu_picprev"},
      enabled);
}

}  // namespace romsteward
