// The favorites menu and the road from an image's full path to its launch.
#include <stdexcept>
#include <string>
#include <system_error>

#include "core/app/main_window_model.h"
#include "core/common/strings.h"
#include "core/host/app_title.h"
#include "core/host/host.h"
#include "core/launch/extracted_copies.h"
#include "core/library/favorites.h"
#include "core/settings/app_settings.h"
#include "core/settings/emulator_options.h"

namespace romsteward {

namespace {

void Finish(const std::function<void()>& done) {
  if (done) done();
}

// The directory and the name of an image path; a relative path counts from the working
// directory, as a path typed on a command line does.
std::pair<std::string, std::string> SplitImagePath(std::string_view path) {
  std::filesystem::path full = Utf8ToPath(path);
  std::error_code error;
  if (full.is_relative()) {
    if (auto absolute = std::filesystem::absolute(full, error); !error) full = std::move(absolute);
  }
  const std::string text = PathToUtf8(full);
  constexpr char kSeparator = static_cast<char>(std::filesystem::path::preferred_separator);
  const std::size_t last = text.rfind(kSeparator);
  if (last == std::string::npos) return {std::string(), text};
  return {last == 0 ? text.substr(0, 1) : text.substr(0, last), text.substr(last + 1)};
}

}  // namespace

void MainWindowModel::LoadFavoritesMenu() {
  m_favoriteMenu = FavoriteTitles(m_settings);
}

void MainWindowModel::OpenFavoritesMenu() {
  m_controls["mnu_orgfav"].enabled = !m_favoriteMenu.empty();
  if (!m_selection) m_controls["mnu_addfav"].enabled = false;
}

void MainWindowModel::AddFavorite() {
  if (!m_selection) return;
  const std::string entry = SelectedText();
  const std::optional<std::string> title =
      m_host.AskText(kNewFavoritePrompt, kNewFavoriteTitle, entry, false);
  // A title of blanks alone would be an invisible menu entry: it counts as no answer.
  if (!title || TrimBlanks(*title).empty()) return;
  if (Status saved =
          SaveFavorite(m_settings, *title, FavoriteLocation(m_diret, IsZipListing(), entry));
      !saved) {
    m_host.ShowMessage(saved.error().message, MessageIcon::Critical, kAppTitle);
    return;
  }
  LoadFavoritesMenu();
}

void MainWindowModel::RunFavorite(std::string_view titleText, std::function<void()> done) {
  const std::string title(titleText);
  FavoriteImage image =
      PrepareFavoriteImage(m_host, m_settings, FavoriteLocationOf(m_settings, title));
  if (image.state == FavoriteImage::State::Missing) {
    AskToRemoveDeadFavorite(title);
    Finish(done);
    return;
  }
  // Runs when the launch is over, or at once when nothing runs: an extracted copy never
  // outlives the run, and the list goes back to the place it showed before.
  auto cleanUp = [this, copy = std::move(image.copy), remembered = m_diret, entry = SelectedText(),
                  done = std::move(done)] {
    if (copy) {
      copy->Delete();
      if (remembered.empty()) {
        RefreshRomList();
      } else if (SetDiret(remembered)) {
        m_selection = ReselectByName(m_entries, entry);
        SyncSelection();
      }
    }
    Finish(done);
  };
  if (image.state == FavoriteImage::State::Refused) {
    cleanUp();
    return;
  }
  RunImagePath(image.path, std::move(cleanUp));
}

void MainWindowModel::AskToRemoveDeadFavorite(const std::string& title) {
  if (m_host.AskYesNo(kFavoriteNotFound, MessageIcon::Critical, kAppTitle) != Answer::Yes) return;
  if (Status deleted = DeleteFavorite(m_settings, title); !deleted)
    m_host.ShowMessage(deleted.error().message, MessageIcon::Critical, kAppTitle);
  LoadFavoritesMenu();
}

void MainWindowModel::RemoveFavorites() {
  const std::optional<std::string> chosen =
      m_host.ChooseFromList(kRemoveFavoritesTitle, m_favoriteMenu);
  if (!chosen || chosen->empty()) return;
  if (m_host.AskYesNo(RemoveFavoriteQuestion(*chosen), MessageIcon::Critical, kAppTitle) !=
      Answer::Yes)
    return;
  if (Status deleted = DeleteFavorite(m_settings, *chosen); !deleted)
    m_host.ShowMessage(deleted.error().message, MessageIcon::Critical, kAppTitle);
  LoadFavoritesMenu();
}

void MainWindowModel::RunImagePath(std::string_view path, std::function<void()> done) {
  std::string unquoted;
  for (char c : path) {
    if (c != '"') unquoted += c;
  }
  const auto [dir, name] = SplitImagePath(unquoted);
  // Nothing of the old place may be picked up by the rescan below.
  m_selection.reset();
  if (!SetDiret(dir)) {
    Finish(done);
    return;
  }
  m_selection = ReselectByName(m_entries, name);
  SyncSelection();
  if (!m_selection) {
    m_host.ShowMessage(kRomDoesNotExist, MessageIcon::Critical, kAppTitle);
    Finish(done);
    return;
  }
  LoadOptionsForSelection(m_settings, SelectedText(), m_controls["chkIPS"].enabled, m_options);
  EnablePatchBox(m_controls["chkIPS"].enabled);
  if (!m_launchStep) throw std::logic_error("MainWindowModel: no launch step is connected");
  if (!done) done = [] {};
  m_launchStep(*this, std::move(done));
}

}  // namespace romsteward
