// The main window's file tools: thin commands over the patch, split/join and conversion
// subsystems, which ask and report through the Host themselves.
#include "core/app/main_window_model.h"
#include "core/cart/convert_command.h"
#include "core/common/strings.h"
#include "core/patch/ips_apply.h"
#include "core/patch/ips_create.h"
#include "core/tools/split_join.h"

namespace romsteward {

void MainWindowModel::CreateIps() {
  CreateIpsCommand(m_host, DialogFolder());
  RefreshRomList();
}

void MainWindowModel::ApplyIps() {
  ApplyIpsCommand(m_host, DialogFolder());
  RefreshRomList();
}

void MainWindowModel::JoinAnyFiles() {
  if (JoinFiles(m_host, DialogFolder()) == CommandResult::Done) RefreshRomList();
}

void MainWindowModel::SplitSelected() {
  if (!m_selection || IsZipListing()) return;
  if (SplitRom(m_host, SelectedPath()) == CommandResult::Done) RefreshRomList();
}

void MainWindowModel::JoinSelected() {
  if (!m_selection || IsZipListing()) return;
  const std::filesystem::path joined = Utf8ToPath(SplitVolumeBase(SelectedPath()) + "smd");
  if (JoinRom(m_host, SelectedPath()) == CommandResult::Done)
    RescanSelecting(PathToUtf8(joined.filename()));
}

void MainWindowModel::ConvertSelected(Layout layout) {
  if (!m_selection || IsZipListing()) return;
  if (const auto written = ConvertCommand(m_host, SelectedPath(), layout))
    RescanSelecting(PathToUtf8(written->filename()));
}

}  // namespace romsteward
