#include <algorithm>

#include "core/app/main_window_model.h"
#include "core/common/strings.h"
#include "core/host/app_title.h"
#include "core/launch/emulator_profiles.h"
#include "core/settings/app_settings.h"
#include "core/settings/general_settings.h"

namespace romsteward {

LaunchRequest MainWindowModel::LaunchRequestForSelection() const {
  LaunchRequest request;
  request.diret = m_diret;
  request.zipListing = IsZipListing();
  request.entryText = SelectedText();
  request.options = m_options;
  request.country = Country();
  request.extraCommandLine = m_extraCommandLine;
  // The general checks are read as they stand now: another window may have changed them.
  request.general = LoadGeneralSettings(m_settings);
  return request;
}

LaunchRequest MainWindowModel::CalibrationRequest() const {
  LaunchRequest request = LaunchRequestForSelection();
  request.calibrate = true;
  return request;
}

void MainWindowModel::LaunchFinished(const LaunchCommand& launch) {
  if (launch.Succeeded() && m_selection) FillSavedGames();
}

std::string MainWindowModel::Country() const {
  const auto& choices = m_texts.cmbCartLang;
  if (std::find(choices.begin(), choices.end(), m_country) != choices.end()) return m_country;
  return choices.empty() ? std::string() : choices.front();
}

void MainWindowModel::SetCountry(std::string_view country) {
  m_country = country;
}

void MainWindowModel::ForceAnotherLanguage() {
  m_texts.cmbCartLang = romsteward::ForceAnotherLanguage();
  m_controls["cmbCartLang"].enabled = true;
  m_country = m_texts.cmbCartLang.front();
}

void MainWindowModel::SetEnableZ80(bool checked) {
  m_options.enableZ80 = checked;
  if (checked) m_options.fakeZ80 = false;
}

void MainWindowModel::SetFakeZ80(bool checked) {
  m_options.fakeZ80 = checked;
  if (checked) m_options.enableZ80 = false;
}

void MainWindowModel::SetDisableJoypad(bool checked) {
  m_options.disableJoypad = checked;
  m_controls["CmdCalib"].enabled = !checked;
}

void MainWindowModel::ExecuteExtraCommandLine(DetachedStarter& starter) {
  const std::vector<std::string> words = SplitAtBlanks(m_extraCommandLine);
  m_extraCommandLine.clear();
  if (words.empty()) return;
  const ProcessSpec spec{words.front(), {words.begin() + 1, words.end()}, {}, {}};
  if (Status started = starter.StartDetached(spec); !started)
    m_host.ShowMessage(started.error().message, MessageIcon::Critical, kAppTitle);
}

}  // namespace romsteward
