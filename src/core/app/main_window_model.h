#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/app/launch_command.h"
#include "core/app/launch_step.h"
#include "core/app/window_controls.h"
#include "core/cart/layout.h"
#include "core/launch/installed_programs.h"
#include "core/library/rom_scan.h"
#include "core/library/rom_sort.h"
#include "core/settings/emulator_options.h"
#include "core/settings/general_settings.h"

namespace romsteward {

class AppSettings;
class ChosenDat;
class FileOperations;
class Host;

enum class TextColour { Normal, Red, Blue };

/// The texts of the main window, named after the controls that show them.
struct WindowTexts {
  std::string caption;     ///< the window's own caption
  std::string txtFiles;    ///< "12 file(s)"
  std::string txtarquivo;  ///< "Normal Archive", "Read-only archive", "ZIP file"
  TextColour txtarquivoColour = TextColour::Normal;
  std::string txtTipo;                   ///< the layout's display name
  std::string txtbits;                   ///< "Size: 8 Mb"
  std::string txtRAM;                    ///< "RAM: 8192 bytes"
  std::vector<std::string> cmbSave;      ///< the saved games of the cartridge
  std::vector<std::string> cmbCartLang;  ///< the country choices of the cartridge
  /// Our own addition: the image's game name in the chosen DAT file, "unknown" when it
  /// does not know the image, empty without a DAT or for what is no image.
  std::string txtDatName;
};

inline constexpr std::string_view kNormalArchive = "Normal Archive";
inline constexpr std::string_view kZipFileMarker = "ZIP file";
inline constexpr std::string_view kSelectAFile = "Select a file!";
inline constexpr std::string_view kReadOnlyArchive = "Read-only archive";
inline constexpr std::string_view kNoValidRoms = "No valid roms selected";
inline constexpr std::string_view kSplittedVolume = "Splitted volume";
inline constexpr std::string_view kRenameFirstVolume =
    "Multi-part volumes should have their respective order number as the file extension. "
    "Romsteward can't work without this standard. Ok to rename current ROM?";
/// The picture shown for a cartridge that has none of its own, in the program's directory.
inline constexpr std::string_view kDefaultPicture = "romsteward.jpg";
inline constexpr std::string_view kInvalidPicture = "Preview picture is in a invalid file format!";

/// The main window without a screen: the place (`Diret`), its list and selection, the
/// texts and every menu item's caption, enabled and checked state, and the commands that
/// change them. The desktop program draws this state and forwards clicks and keys to the
/// commands; it decides nothing itself. Every question and message goes through the Host.
class MainWindowModel {
public:
  /// File work (the rename of a first volume, deleting a saved game) goes through
  /// `operations`; without it the model uses the core's file-system implementation.
  MainWindowModel(Host& host, AppSettings& settings, FileOperations* operations = nullptr);
  ~MainWindowModel();
  MainWindowModel(const MainWindowModel&) = delete;
  MainWindowModel& operator=(const MainWindowModel&) = delete;

  // Start-up.
  /// Checks the "Sort ROMs by", "Show" and "Window's title" entries kept in `ordem`, `show`
  /// and `title`.
  void LoadListChoices();
  /// Reads the history from `dir0` ... `dir4` and opens `dir0` when there is one.
  void LoadDirHistory();

  /// The whole start-up: the check of the linked archive library, the list choices and the
  /// options menu's checks, the installed emulators looked for while none is known
  /// (WelcomeEmulators, with its first-run notice when none is found), the general options,
  /// then the history, which opens `dir0`.
  void Start();
  /// The same, as if the archive library were of `archiveLibraryVersion`.
  void Start(int archiveLibraryVersion);
  /// Where Start looks for installed emulators and runners (ProgramSearchFolders).
  void SetProgramFolders(std::vector<std::filesystem::path> folders) {
    m_programFolders = std::move(folders);
  }
  /// Closing the window: the options when "Save Settings on E&xit" is checked, then the
  /// window's position, always. A store that cannot be written is reported.
  void Close(WindowPosition position);
  /// The general choices as the menus show them now.
  GeneralSettings General() const;
  /// The settings store the window's dialogs read and write.
  AppSettings& Settings() { return m_settings; }

  // The place.
  const std::string& Diret() const { return m_diret; }
  /// The validating setter: a directory or a ZIP archive becomes the place and is scanned;
  /// anything else shows "Directory no longer exists" and changes nothing. True on success.
  bool SetDiret(std::string_view path);
  /// Whether the list shows the members of an archive.
  bool IsZipListing() const;
  /// Whether the last scan could not read the place at all (the reason was shown).
  bool IsUnreadable() const { return m_unreadable; }
  /// Rescans the place (F5, the filter and sort menus), keeping the selection when it can.
  void RefreshRomList();
  /// Puts `path` on top of the Directory menu and saves the menu as `dir0` ... `dir4`.
  void AddDirHistory(std::string_view path);

  // Menu commands.
  void OpenRomDirectory();  ///< "Open ROM Directory..."
  void OpenZipDirectory();  ///< opening a ZIP archive as the place
  void ChooseDirHistory(int index);
  void ChooseFilter(ListFilter filter);
  void ChooseSort(SortOrder order);
  /// "Window's title": the radio change only; the caption follows at the next selection.
  void ChooseTitle(int index);
  void SetTemporaryDirectory();  ///< "Set temporary directory..."
  /// "&Activated" of the preview menu: switches the preview picture on or off.
  void TogglePreview();

  // The options menu.
  void SaveThisCartridge();            ///< "Save Settings for &This Cartridge"
  void DeleteThisCartridgeSettings();  ///< "&Delete Settings of This Cartridge"
  void ToggleSaveAllCartridges();      ///< "Save Settings for All &Cartridges": nothing written
  void ToggleSaveOnExit();             ///< "Save Settings on E&xit": `savex` written at once
  void ToggleMinimizeInTray();         ///< "Minimize in Tray": kept by the general save
  void SaveGeneralSettingsNow();       ///< "Save General Settings &Now"
  void DeleteGeneralSettingsNow();     ///< "Delete &General Settings"

  // The file menu and dropping; each refreshes the list when the place changed.
  void CopySelected();    ///< "Copy...", an archive member unpacked first
  void MoveSelected();    ///< "Move..."
  void DeleteSelected();  ///< "Delete...", to the trash unless Shift is held
  void RenameSelected();  ///< "&Rename..."
  /// Files dropped on the list (nullopt: what was dropped is no file list).
  void DropFiles(const std::optional<std::vector<std::string>>& dropped);

  // The tools menu.
  /// Opening "&Tools": "R&estore CRC" is enabled exactly when the selection has a kept
  /// checksum.
  void OpenToolsMenu();
  void CheckSelectedCrc();            ///< "Check CRC", with progress
  void RestoreSelectedCrc();          ///< "R&estore CRC"
  void ConvertIpsToDynamicPatches();  ///< "Convert IPS to Dynamic Patch..."
  void RemoveDynamicPatches();        ///< "Remove dynamic patches..."
  /// After the "Dynamic patching" window: "Activate dynamic patch" follows the store.
  void DynamicPatchesChanged();

  // The file tools: IPS, split, join and conversion. Each refreshes the list after changing
  // the place; a command that makes one new image selects it.
  void CreateIps();                     ///< "C&reate IPS..."
  void ApplyIps();                      ///< "&Apply IPS..."
  void JoinAnyFiles();                  ///< "Join Files..."
  void SplitSelected();                 ///< "&Split ROM..."
  void JoinSelected();                  ///< "&Join ROMs"
  void ConvertSelected(Layout layout);  ///< "&Convert" > BIN, SMD or MD

  ListFilter Filter() const;
  SortOrder Order() const;

  // The list.
  const std::vector<std::string>& Entries() const { return m_entries; }
  std::optional<std::size_t> Selection() const { return m_selection; }
  /// The selected entry's text, empty when nothing is selected.
  std::string SelectedText() const;
  /// A click, a key or a right click on the list: selects and brings the panel in line.
  void Select(std::optional<std::size_t> index);
  /// Shows the selected entry unless it is the one shown last.
  void SyncSelection();
  /// The tooltip for the row under the pointer: the entry's full name, empty one past the
  /// end and outside the list.
  std::string TooltipForRow(long row) const;
  /// The name the panel last showed; empty after a change of place.
  const std::string& CurrentFileName() const { return m_currentFileName; }

  // What the window shows.
  const WindowTexts& Texts() const { return m_texts; }
  const WindowControls& Controls() const { return m_controls; }
  /// The top menus and the items that need a selected file, all on or all off.
  void EnableFileMenus(bool enabled);
  /// The option controls: the selected cartridge's options, or the general ones.
  const EmulatorOptions& Options() const { return m_options; }
  EmulatorOptions& Options() { return m_options; }

  // Launching (the launch itself is a LaunchCommand: see docs/launching.md).
  /// What "Run this game!" (or a double click) launches: the place, the selection, the
  /// option controls, the country, the extra command line and the general settings.
  LaunchRequest LaunchRequestForSelection() const;
  /// "Calibrate Joystick": the same request, with " -calib" alone.
  LaunchRequest CalibrationRequest() const;
  /// After a launch's Complete: the saved-games list is built again when the emulator ran,
  /// however it ended.
  void LaunchFinished(const LaunchCommand& launch);
  /// ENTER in "Additional Comand-line:": its text starts as a program of its own, not waited
  /// for, and the field is emptied. A failure to start is shown.
  void ExecuteExtraCommandLine(DetachedStarter& starter);

  /// "Enable Z80" and "Fake Z80" are never on together: checking one clears the other.
  void SetEnableZ80(bool on);
  void SetFakeZ80(bool on);
  /// "Disable &Joypad"; "Calibrate Joystick" is enabled exactly while it is off.
  void SetDisableJoypad(bool on);

  /// "Force another language": "Country:" offers exactly USA, Europe and Japan.
  void ForceAnotherLanguage();
  /// The chosen entry of "Country:"; 0 after every selection.
  int CountryIndex() const { return m_countryIndex; }
  void ChooseCountry(int index);
  /// The chosen country's text, as the launch passes it on.
  std::string CountryText() const;
  /// "Additional Comand-line:".
  const std::string& ExtraCommandLine() const { return m_extraCommandLine; }
  void SetExtraCommandLine(std::string text) { m_extraCommandLine = std::move(text); }

  /// The delete button beside "Saved Games:": deletes the file of entry `index` of cmbSave
  /// through the file operations and rebuilds the list. A heading is refused with "You can't
  /// Delete a file type".
  void DeleteSavedGame(std::size_t index);
  /// The preview picture of the selection while "&Activated" is checked: the cartridge's own
  /// picture, else "romsteward.jpg" in `programDirectory`; nullopt when neither exists, when
  /// nothing is selected, the selection is no image on disk (an archive member, a file that
  /// is no image) or the preview is off.
  std::optional<std::string> PreviewPicture(std::string_view programDirectory) const;
  /// Choosing the selected cartridge's own picture: kept in its `Cartridge` setting
  /// "<entry>.pic". A file `decodable` refuses gives kInvalidPicture and keeps the old one.
  void ChoosePreviewPicture(const std::function<bool(const std::string&)>& decodable);
  /// Forgets the selected cartridge's own picture (the default one shows again).
  void ClearPreviewPicture();
  bool HasOwnPreviewPicture() const;
  /// The preview window's place (`prevX`, `prevY`), nullopt when none is stored.
  std::optional<WindowPosition> PreviewPosition() const;
  void SavePreviewPosition(WindowPosition position);

  // Favorites.
  /// Connects the launch command that favorites and RunImagePath use.
  void SetLaunchStep(LaunchStep step) { m_launchStep = std::move(step); }
  /// Rebuilds the favorites menu from section `FAVORITE`, in name order.
  void LoadFavoritesMenu();
  /// The titles the "Fa&vorites" menu lists below its own items (`mnu_fav`).
  const std::vector<std::string>& FavoriteMenu() const { return m_favoriteMenu; }
  /// Opening "Fa&vorites": "&Remove favorites..." only with favorites, "&Add to
  /// favorites..." off without a selection.
  void OpenFavoritesMenu();
  /// "&Add to favorites...": asks for a title (the selected name offered) and saves the
  /// selected entry's location under it.
  void AddFavorite();
  /// A click on the favorite `title`: runs its image, extracting an archived one into the
  /// temporary folder and deleting that copy afterwards; a dead one is offered for removal.
  /// `done` is called once when all of it is over.
  void RunFavorite(std::string_view title, std::function<void()> done = {});
  /// "&Remove favorites...": one title chosen from the list dialog, confirmed, deleted.
  void RemoveFavorites();
  /// Opens the image's directory, selects the image and launches it with its saved options
  /// (or the general ones): the favorites' road and the program's command-line start.
  /// Double quotes are dropped; a relative path is taken from the working directory.
  /// `done` is called once when all of it is over, whether anything ran or not.
  void RunImagePath(std::string_view path, std::function<void()> done = {});

private:
  void AskToRemoveDeadFavorite(const std::string& title);
  void ShowRomInfo();
  /// Nothing selected: an empty panel, and off whatever works on a selection.
  void ShowNoSelection();
  /// The selected entry's file went away behind our back: says so and reads the list again.
  bool ReportVanishedFile();
  /// "Activate dynamic patch" on or off; switched off, it is unticked too, so that a launch
  /// never patches an image whose box the user cannot see ticked.
  void EnablePatchBox(bool enabled);
  /// Rescans and selects `name`: by the halving search, or by the exact name when `exact`
  /// (a command that just made the file knows its name, whatever the sort order).
  void RescanSelecting(const std::string& name, bool exact = false);
  /// Where a file dialog of the place starts: the place, or the folder of an archive.
  std::string DialogFolder() const;
  bool RenameFirstVolume(const std::string& name);
  void ShowNonImage(bool zip);
  void ShowImage(const std::string& name, bool splitLater);
  void FillSavedGames();
  void ShowDatName();
  std::filesystem::path SelectedPath() const;
  void FillFromDirectory();
  void FillFromZip();
  void SaveDirHistory();
  void ApplyListUpdate(bool refresh, bool removeSelected);
  void ReportStatus(const Status& status);
  void FollowPatches();

  Host& m_host;
  AppSettings& m_settings;
  std::string m_diret;
  bool m_unreadable = false;  // the last scan could not read the place
  std::vector<std::string> m_entries;
  std::optional<std::size_t> m_selection;
  std::string m_currentFileName;
  // Whether the panel shows an entry: nothing selected then still has to clear it.
  bool m_panelShowsEntry = true;
  WindowTexts m_texts;
  WindowControls m_controls;
  EmulatorOptions m_options;
  int m_countryIndex = 0;
  // Only an image on disk has a picture: not an archive member, not a file that is no image.
  bool m_previewable = false;
  std::string m_extraCommandLine;
  std::vector<std::string> m_favoriteMenu;
  LaunchStep m_launchStep;
  std::vector<std::filesystem::path> m_programFolders = ProgramSearchFolders();
  std::unique_ptr<FileOperations> m_ownOperations;
  FileOperations& m_operations;
  // The chosen DAT, read again only when the setting names another file.
  std::string m_datFile;
  std::unique_ptr<ChosenDat> m_dat;
};

}  // namespace romsteward
