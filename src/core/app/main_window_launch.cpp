#include "core/app/main_window_model.h"
#include "core/common/strings.h"
#include "core/host/app_title.h"
#include "core/launch/emulator_profiles.h"
#include "core/launch/shell_words.h"
#include "core/settings/app_settings.h"
#include "core/settings/general_settings.h"

namespace romsteward {

LaunchRequest MainWindowModel::LaunchRequestForSelection() const {
  LaunchRequest request;
  request.diret = m_diret;
  request.zipListing = IsZipListing();
  request.entryText = SelectedText();
  request.options = m_options;
  request.country = CountryText();
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
  if (launch.Ran() && m_selection) FillSavedGames();
}

void MainWindowModel::ExecuteExtraCommandLine(DetachedStarter& starter) {
  auto split = SplitShellWords(m_extraCommandLine);
  if (!split) {
    // The text stays in the field for the user to close the quote.
    m_host.ShowMessage(split.error().message, MessageIcon::Critical, kAppTitle);
    return;
  }
  const std::vector<std::string>& words = *split;
  m_extraCommandLine.clear();
  if (words.empty()) return;
  const ProcessSpec spec{words.front(), {words.begin() + 1, words.end()}, {}, {}};
  if (Status started = starter.StartDetached(spec); !started)
    m_host.ShowMessage(started.error().message, MessageIcon::Critical, kAppTitle);
}

}  // namespace romsteward
