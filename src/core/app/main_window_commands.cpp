// The main window's start-up and closing, the options menu, the option rules and the file
// menu: thin commands over the settings and tools subsystems.
#include "core/app/main_window_model.h"
#include "core/cart/checksum_commands.h"
#include "core/common/strings.h"
#include "core/host/app_title.h"
#include "core/host/host.h"
#include "core/launch/emulator_discovery.h"
#include "core/launch/emulator_profiles.h"
#include "core/launch/temp_folder.h"
#include "core/launch/zip_archive.h"
#include "core/patch/dynamic_patches.h"
#include "core/patch/patch_commands.h"
#include "core/settings/app_settings.h"
#include "core/settings/option_commands.h"
#include "core/settings/preview_settings.h"
#include "core/tools/file_commands.h"

namespace romsteward {

namespace {

// Copying out of an archive: the member is unpacked into the temporary folder, from where
// the copy command moves it to its destination.
class TempFolderExtractor : public ArchiveExtractor {
public:
  explicit TempFolderExtractor(const AppSettings& settings) : m_settings(settings) {}

  Result<std::filesystem::path> ExtractToTemporary(const std::filesystem::path& archive,
                                                   std::string_view member) override {
    const std::optional<std::filesystem::path> folder = UsableTemporaryFolder(m_settings);
    if (!folder) return Error{std::string(kTempFolderMissing)};
    return ExtractZipMember(archive, member, *folder);
  }

private:
  const AppSettings& m_settings;
};

}  // namespace

void MainWindowModel::Start() {
  Start(ArchiveLibraryVersion());
}

void MainWindowModel::Start(int archiveLibraryVersion) {
  CheckArchiveLibraryVersion(m_host, archiveLibraryVersion);
  LoadListChoices();
  const GeneralSettings general = LoadGeneralSettings(m_settings);
  m_controls["mnu_save"].checked = general.saveOnExit;
  m_controls["mnu_savcart"].checked = general.saveAllCartridges;
  m_controls["mnu_tray"].checked = general.minimizeInTray;
  m_controls["mnu_preview"].checked = LoadShowPreview(m_settings);
  // Before the general options are read: the first emulator found becomes their choice.
  WelcomeEmulators(m_host, m_settings, m_programFolders);
  LoadDefaultOptions(m_settings, m_controls["chkIPS"].enabled, m_options);
  m_controls["CmdCalib"].enabled = !m_options.disableJoypad;
  LoadDirHistory();
}

void MainWindowModel::Close(WindowPosition position) {
  ReportStatus(SaveOnClose(m_settings, General(), m_options, SelectedText(), position));
}

GeneralSettings MainWindowModel::General() const {
  GeneralSettings general;
  general.saveOnExit = m_controls["mnu_save"].checked;
  general.saveAllCartridges = m_controls["mnu_savcart"].checked;
  general.minimizeInTray = m_controls["mnu_tray"].checked;
  general.sortBy = static_cast<int>(Order());
  general.show = static_cast<int>(Filter());
  general.windowTitle = m_controls.CheckedIndex("mnuTitle", 2);
  return general;
}

void MainWindowModel::ReportStatus(const Status& status) {
  if (!status)
    m_host.ShowMessage("The settings could not be saved: " + status.error().message,
                       MessageIcon::Critical, kAppTitle);
}

void MainWindowModel::SaveThisCartridge() {
  ReportStatus(
      SaveOptions(m_settings, OptionSection::Cartridge, m_options, General(), SelectedText()));
}

void MainWindowModel::DeleteThisCartridgeSettings() {
  DeleteCartridgeSettings(m_host, m_settings, SelectedText());
}

void MainWindowModel::ToggleSaveAllCartridges() {
  m_controls["mnu_savcart"].checked = !m_controls["mnu_savcart"].checked;
}

void MainWindowModel::ToggleSaveOnExit() {
  ControlState& item = m_controls["mnu_save"];
  item.checked = !item.checked;
  ReportStatus(SaveSaveOnExit(m_settings, item.checked));
}

void MainWindowModel::ToggleMinimizeInTray() {
  m_controls["mnu_tray"].checked = !m_controls["mnu_tray"].checked;
}

void MainWindowModel::SaveGeneralSettingsNow() {
  ReportStatus(SaveOptions(m_settings, OptionSection::Settings, m_options, General(), {}));
}

void MainWindowModel::DeleteGeneralSettingsNow() {
  DeleteGeneralSettings(m_host, m_settings);
}

void MainWindowModel::SetEnableZ80(bool on) {
  m_options.enableZ80 = on;
  if (on) m_options.fakeZ80 = false;
}

void MainWindowModel::SetFakeZ80(bool on) {
  m_options.fakeZ80 = on;
  if (on) m_options.enableZ80 = false;
}

void MainWindowModel::SetDisableJoypad(bool on) {
  m_options.disableJoypad = on;
  m_controls["CmdCalib"].enabled = !on;
}

void MainWindowModel::ForceAnotherLanguage() {
  m_texts.cmbCartLang.assign(std::begin(kForcedCountries), std::end(kForcedCountries));
  m_controls["cmbCartLang"].enabled = true;
  m_countryIndex = 0;
}

void MainWindowModel::ChooseCountry(int index) {
  if (index >= 0 && static_cast<std::size_t>(index) < m_texts.cmbCartLang.size())
    m_countryIndex = index;
}

std::string MainWindowModel::CountryText() const {
  const auto index = static_cast<std::size_t>(m_countryIndex);
  return index < m_texts.cmbCartLang.size() ? m_texts.cmbCartLang[index] : std::string();
}

void MainWindowModel::OpenToolsMenu() {
  m_controls["mnu_getcrc"].enabled =
      m_selection.has_value() && IsRestoreCrcEnabled(m_settings, SelectedText());
}

void MainWindowModel::CheckSelectedCrc() {
  if (!m_selection || IsZipListing()) return;
  CheckCrc(m_host, m_settings, SelectedPath(), SelectedText());
}

void MainWindowModel::RestoreSelectedCrc() {
  if (!m_selection || IsZipListing()) return;
  RestoreCrc(m_host, m_settings, SelectedPath(), SelectedText());
}

void MainWindowModel::ConvertIpsToDynamicPatches() {
  if (!m_selection || IsZipListing()) return;
  ConvertIpsToDynamicPatchesCommand(m_host, m_settings.Store(), SelectedPath(), SelectedText(),
                                    m_diret);
  FollowPatches();
}

void MainWindowModel::RemoveDynamicPatches() {
  if (!m_selection || IsZipListing()) return;
  RemoveDynamicPatchesCommand(m_host, m_settings.Store(), SelectedText());
  FollowPatches();
}

void MainWindowModel::DynamicPatchesChanged() {
  if (m_selection) FollowPatches();
}

// "Activate dynamic patch" is offered while the cartridge has patches and can be written.
void MainWindowModel::FollowPatches() {
  const bool writable = m_texts.txtarquivo != kReadOnlyArchive;
  EnablePatchBox(writable && HasDynamicPatches(m_settings.Store(), SelectedText()));
}

void MainWindowModel::ApplyListUpdate(bool refresh, bool removeSelected) {
  if (removeSelected) {
    // The file is gone: forget it, so that the entry now in its place is shown afresh.
    m_selection.reset();
    m_currentFileName.clear();
  }
  if (refresh || removeSelected) RefreshRomList();
}

void MainWindowModel::CopySelected() {
  if (!m_selection) return;
  TempFolderExtractor extractor(m_settings);
  const ListUpdate update =
      CopyRom(m_host, m_operations, m_diret, SelectedText(), IsZipListing() ? &extractor : nullptr);
  ApplyListUpdate(update.refresh, update.removeSelected);
}

void MainWindowModel::MoveSelected() {
  if (!m_selection || IsZipListing()) return;
  const ListUpdate update = MoveRom(m_host, m_operations, m_diret, SelectedText());
  ApplyListUpdate(update.refresh, update.removeSelected);
}

void MainWindowModel::DeleteSelected() {
  if (!m_selection || IsZipListing()) return;
  const ListUpdate update = DeleteRom(m_host, m_operations, m_diret, SelectedText());
  ApplyListUpdate(update.refresh, update.removeSelected);
}

void MainWindowModel::RenameSelected() {
  if (!m_selection || IsZipListing()) return;
  const ListUpdate update = RenameRom(m_host, m_operations, m_diret, SelectedText());
  // The renamed entry stays the selection, wherever its new name sorts.
  if (!update.newPath.empty())
    RescanSelecting(PathToUtf8(Utf8ToPath(update.newPath).filename()), true);
}

void MainWindowModel::DropFiles(const std::optional<std::vector<std::string>>& dropped) {
  // Nothing can be dropped into an archive.
  if (m_diret.empty() || IsZipListing()) return;
  const ListUpdate update = DropOnRomList(m_host, m_operations, m_diret, dropped);
  ApplyListUpdate(update.refresh, update.removeSelected);
}

}  // namespace romsteward
