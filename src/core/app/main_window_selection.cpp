// The selection panel: what the window shows of the entry that was selected.
#include <algorithm>
#include <string>

#include "core/app/main_window_model.h"
#include "core/cart/detect.h"
#include "core/cart/header.h"
#include "core/cart/header_repair.h"
#include "core/cart/layout.h"
#include "core/cart/rom_size_check.h"
#include "core/common/binary_file.h"
#include "core/common/strings.h"
#include "core/host/app_title.h"
#include "core/host/host.h"
#include "core/identify/chosen_dat.h"
#include "core/launch/saved_games.h"
#include "core/library/place.h"
#include "core/patch/dynamic_patches.h"
#include "core/settings/app_settings.h"
#include "core/tools/file_operations.h"

namespace romsteward {

namespace {

constexpr std::string_view kNotFound = "NOT FOUND";
constexpr std::string_view kUnknownSize = "Size: ??? MB";
constexpr std::string_view kUnknownRam = "RAM: ??? bytes";

std::string Caption(std::string_view tail) {
  return std::string(kAppTitle) + " - " + std::string(tail);
}

Layout DetectAt(const std::filesystem::path& path) {
  auto file = BinaryFile::Open(path);
  return file ? DetectRomFormat(*file) : Layout::NoRom;
}

std::vector<std::string> SplitCountries(const std::string& countries) {
  std::vector<std::string> items;
  std::size_t from = 0;
  while (from <= countries.size()) {
    const std::size_t comma = std::min(countries.find(',', from), countries.size());
    if (comma > from) items.emplace_back(countries.substr(from, comma - from));
    from = comma + 1;
  }
  if (items.empty()) items.emplace_back(kNotFound);
  return items;
}

// The battery RAM in bytes; a header without a range (blank or zero) has none.
std::uint64_t BatteryRamBytes(const AddressRange& range) {
  if ((range.start == 0 && range.end == 0) || range.end < range.start) return 0;
  return std::uint64_t{range.end} - range.start + 1;
}

}  // namespace

std::filesystem::path MainWindowModel::SelectedPath() const {
  return Utf8ToPath(JoinDirName(m_diret, SelectedText()));
}

void MainWindowModel::ShowRomInfo() {
  if (m_entries.empty() || !m_selection) {
    ShowNoSelection();
    return;
  }
  // An archive member is never opened here: it is only known by its name.
  const bool zip = IsZipListing();
  if (!zip && ReportVanishedFile()) return;
  m_panelShowsEntry = true;
  m_controls.SetEnabled({"CmdLaunch", "CmdForce"}, true);
  Layout layout = zip ? Layout::NoRom : DetectAt(SelectedPath());
  const auto describe = [&] {
    m_texts.txtTipo = FormatDescription(zip ? std::string_view("ZIP") : LayoutCode(layout));
  };
  describe();
  EnableFileMenus(true);
  const auto showSplitMenus = [&] {
    const bool first = layout == Layout::SplitFirst;
    m_controls["mnu_join"].enabled = first;
    m_controls["mnu_split"].enabled = !first;
    if (first) m_controls["mnu_conv"].enabled = false;
  };
  showSplitMenus();

  if (layout == Layout::SplitFirst && !EqualsIgnoreCase(FileExtension(SelectedText()), "1") &&
      m_host.AskYesNo(kRenameFirstVolume, MessageIcon::Critical, kAppTitle) == Answer::Yes) {
    if (!RenameFirstVolume(SelectedText())) return;
    layout = DetectAt(SelectedPath());
    describe();
    showSplitMenus();
  }

  const bool noImage = !zip && layout == Layout::NoRom;
  const bool splitLater = layout == Layout::SplitLater;
  m_previewable = !noImage && !zip;
  if (noImage || splitLater) {
    m_texts.caption = Caption(kNoValidRoms);
    EnablePatchBox(false);
    m_controls.SetEnabled({"mnu_conv", "mnu_savthiscart", "mnu_del", "mnu_tool", "btncrc",
                           "btnheader", "mnu_previmg", "BtnImagem", "mnu_addfav"},
                          false);
  } else {
    m_controls.SetEnabled(
        {"mnu_previmg", "BtnImagem", "mnu_crc", "btncrc", "mnu_header", "btnheader"}, true);
    m_controls["mnu_conv"].enabled = layout != Layout::SplitFirst;
  }
  // An entry inside an archive can only be launched or added to favourites.
  m_controls.SetEnabled({"mnu_move", "mnu_delete", "btnDeleta", "mnu_ren", "mnu_patch",
                         "mnu_ips2dyn", "mnu_tirapatch"},
                        !zip);
  if (zip) {
    m_controls.SetEnabled(
        {"mnu_conv", "mnu_crc", "btncrc", "mnu_header", "btnheader", "mnu_join", "mnu_split"},
        false);
  }

  const std::string name = SelectedText();
  bool readOnly = false;
  if (noImage || zip) {
    ShowNonImage(zip);
    // A member is patched in its unpacked copy at launch, so its patches still count.
    if (zip) EnablePatchBox(HasDynamicPatches(m_settings.Store(), name));
  } else {
    readOnly = !IsWritableByUser(SelectedPath());
    if (readOnly) {
      EnablePatchBox(false);
      m_controls.SetEnabled(
          {"mnu_header", "btnheader", "mnu_crc", "btncrc", "mnu_getcrc", "mnu_patch"}, false);
    } else {
      m_controls["mnu_getcrc"].enabled = true;
    }
    ShowImage(name, splitLater);
    if (!splitLater) EnablePatchBox(!readOnly && HasDynamicPatches(m_settings.Store(), name));
  }

  LoadOptionsForSelection(m_settings, name, m_controls["chkIPS"].enabled, m_options);
  // The box keeps the last image's tick while it is off: never launch with it.
  EnablePatchBox(m_controls["chkIPS"].enabled);
  m_controls["CmdCalib"].enabled = !m_options.disableJoypad;

  if (!zip) {
    m_texts.txtarquivo = readOnly ? kReadOnlyArchive : kNormalArchive;
    m_texts.txtarquivoColour = readOnly ? TextColour::Red : TextColour::Normal;
  }
}

void MainWindowModel::ShowNoSelection() {
  m_panelShowsEntry = false;
  m_previewable = false;
  m_texts.caption = kAppTitle;
  m_texts.txtTipo.clear();
  m_texts.txtbits.clear();
  m_texts.txtRAM.clear();
  m_texts.txtDatName.clear();
  m_texts.cmbSave.clear();
  m_texts.cmbCartLang.clear();
  m_countryIndex = 0;
  if (!IsZipListing()) {
    m_texts.txtarquivo = kNormalArchive;
    m_texts.txtarquivoColour = TextColour::Normal;
  }
  EnableFileMenus(false);
  EnablePatchBox(false);
  m_controls.SetEnabled({"CmdLaunch", "CmdForce", "cmbSave", "cmdDeletaSave", "cmbCartLang"},
                        false);
}

bool MainWindowModel::ReportVanishedFile() {
  std::error_code error;
  if (std::filesystem::exists(SelectedPath(), error) || error) return false;
  m_host.ShowMessage(SelectedText() + " is no longer in " + m_diret +
                         ": it was moved, renamed or deleted. The list is read again.",
                     MessageIcon::Exclamation, kAppTitle);
  m_selection.reset();
  m_currentFileName.clear();
  RefreshRomList();
  return true;
}

void MainWindowModel::EnablePatchBox(bool enabled) {
  m_controls["chkIPS"].enabled = enabled;
  if (!enabled) m_options.activateDynamicPatch = false;
}

bool MainWindowModel::RenameFirstVolume(const std::string& name) {
  const std::size_t dot = name.rfind('.');
  const std::string renamed = name.substr(0, dot + 1) + "1";
  if (!CopyBoxCommDialog(m_host, m_operations, {JoinDirName(m_diret, name)},
                         JoinDirName(m_diret, renamed), "ren"))
    return true;  // the failure was shown; the panel goes on with the file as it is
  // The shown name moves with the file, so the rescan does not show it a second time.
  m_currentFileName = renamed;
  RescanSelecting(renamed);
  return SelectedText() == renamed;
}

void MainWindowModel::ShowNonImage(bool zip) {
  m_texts.txtDatName.clear();
  m_texts.txtbits = kUnknownSize;
  m_texts.txtRAM = kUnknownRam;
  m_texts.cmbSave = {std::string(kNoSavedGames)};
  m_texts.cmbCartLang = {std::string(kNotFound)};
  m_controls.SetEnabled({"cmbSave", "cmdDeletaSave", "cmbCartLang", "mnu_split"}, false);
  // Two blanks before "ZIP": the title's separator and the text's own.
  if (zip) m_texts.caption = Caption(" ZIP directory");
}

void MainWindowModel::ShowImage(const std::string& name, bool splitLater) {
  FillSavedGames();
  CheckEmbeddedHeader(m_host, m_settings, SelectedPath(), name);
  ShowDatName();
  if (splitLater) {
    m_texts.caption = Caption(kSplittedVolume);
    m_texts.txtbits = kUnknownSize;
    m_texts.txtRAM = kUnknownRam;
    m_texts.cmbCartLang = {std::string(kNotFound)};
    m_controls["cmbCartLang"].enabled = false;
    return;
  }
  // Closed again before the check, which may rewrite the file.
  const CartridgeHeader header = [&] {
    auto named = BinaryFile::Open(SelectedPath());
    return named ? ReadCartridgeHeader(*named) : DecodeHeader(RawHeader(std::string()));
  }();
  const bool overseas = m_controls["mnuTitle(0)"].checked;
  m_texts.caption = Caption(overseas ? header.overseasName : header.domesticName);
  CheckRomSize(m_host, SelectedPath());

  // Size and RAM are read after the check, which may have fixed the header or the length.
  auto file = BinaryFile::Open(SelectedPath());
  if (!file) {
    m_texts.txtbits = kUnknownSize;
    m_texts.txtRAM = kUnknownRam;
  } else {
    const Layout layout = DetectRomFormat(*file);
    m_texts.txtRAM =
        "RAM: " + std::to_string(BatteryRamBytes(ReadCartridgeHeader(*file).sram)) + " bytes";
    m_texts.txtbits =
        "Size: " +
        std::to_string(RomSizeMbit(*file, JoinDirName(m_diret, SelectedText()), layout)) + " Mb";
  }
  m_texts.cmbCartLang = SplitCountries(header.countries);
  m_controls["cmbCartLang"].enabled = m_texts.cmbCartLang.front() != kNotFound;
}

void MainWindowModel::FillSavedGames() {
  m_texts.cmbSave = JogosSalvos(SelectedPath(), m_settings.GetSetting(kSectionSettings, "KGen"));
  const bool any = m_texts.cmbSave.size() != 1 || m_texts.cmbSave.front() != kNoSavedGames;
  m_controls.SetEnabled({"cmbSave", "cmdDeletaSave"}, any);
}

void MainWindowModel::DeleteSavedGame(std::size_t index) {
  if (!m_selection || IsZipListing()) return;
  const std::string kgen = m_settings.GetSetting(kSectionSettings, "KGen");
  auto file = SavedGameFile(m_texts.cmbSave, index, SelectedPath(), kgen);
  if (!file) {
    m_host.ShowMessage(file.error().message, MessageIcon::Exclamation, kAppTitle);
    return;
  }
  CopyBoxCommDialog(m_host, m_operations, {PathToUtf8(*file)}, {}, "del");
  FillSavedGames();
}

void MainWindowModel::ShowDatName() {
  m_texts.txtDatName.clear();
  const std::string file = ChosenDatFile(m_settings);
  if (file.empty()) return;
  if (file != m_datFile) {
    // Told once per file: a DAT that cannot be read leaves the name empty afterwards.
    m_datFile = file;
    m_dat.reset();
    auto loaded = LoadChosenDat(m_settings);
    if (!loaded) {
      m_host.ShowMessage(loaded.error().message, MessageIcon::Exclamation, kAppTitle);
      return;
    }
    m_dat = std::move(*loaded);
  }
  if (m_dat) m_texts.txtDatName = m_dat->NameOf(SelectedPath());
}

}  // namespace romsteward
