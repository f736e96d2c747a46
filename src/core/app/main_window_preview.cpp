// The preview picture of the selection: which file to show, and the per-cartridge choice.
#include "core/app/main_window_model.h"
#include "core/common/strings.h"
#include "core/host/app_title.h"
#include "core/host/host.h"
#include "core/library/place.h"
#include "core/settings/app_settings.h"
#include "core/settings/preview_settings.h"

namespace romsteward {

void MainWindowModel::TogglePreview() {
  ControlState& item = m_controls["mnu_preview"];
  item.checked = !item.checked;
  ReportStatus(SaveShowPreview(m_settings, item.checked));
}

std::optional<std::string> MainWindowModel::PreviewPicture(
    std::string_view programDirectory) const {
  if (!m_controls["mnu_preview"].checked || !m_selection || !m_previewable) return std::nullopt;
  const std::string own = m_settings.GetSetting(kSectionCartridge, PictureKey(SelectedText()));
  if (!own.empty() && PathExists(own, PathKind::File)) return own;
  const std::string fallback = JoinDirName(programDirectory, kDefaultPicture);
  if (PathExists(fallback, PathKind::File)) return fallback;
  return std::nullopt;
}

void MainWindowModel::ChoosePreviewPicture(
    const std::function<bool(const std::string&)>& decodable) {
  if (!m_selection) return;
  const std::string key = PictureKey(SelectedText());
  const std::string current = m_settings.GetSetting(kSectionCartridge, key);
  FileDialog dialog;
  dialog.title = "Choose the preview picture of " + SelectedText();
  dialog.filters = {{"Pictures", "*.jpg;*.jpeg;*.png;*.bmp;*.gif"}, {"All files", "*"}};
  dialog.initialDir = current.empty() ? m_diret : PathToUtf8(Utf8ToPath(current).parent_path());
  const std::optional<std::string> path = m_host.ChooseOpenFile(dialog);
  if (!path || path->empty()) return;
  if (!decodable(*path)) {
    m_host.ShowMessage(kInvalidPicture, MessageIcon::Critical, kAppTitle);
    return;
  }
  ReportStatus(m_settings.SaveSetting(kSectionCartridge, key, *path));
}

void MainWindowModel::ClearPreviewPicture() {
  if (HasOwnPreviewPicture())
    ReportStatus(m_settings.DeleteSetting(kSectionCartridge, PictureKey(SelectedText())));
}

bool MainWindowModel::HasOwnPreviewPicture() const {
  return m_selection &&
         !m_settings.GetSetting(kSectionCartridge, PictureKey(SelectedText())).empty();
}

std::optional<WindowPosition> MainWindowModel::PreviewPosition() const {
  return LoadPreviewPosition(m_settings);
}

void MainWindowModel::SavePreviewPosition(WindowPosition position) {
  ReportStatus(romsteward::SavePreviewPosition(m_settings, position));
}

}  // namespace romsteward
