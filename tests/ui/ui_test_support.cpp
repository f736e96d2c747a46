#include "ui_test_support.h"

#include <QApplication>
#include <QTimer>
#include <QWidget>
#include <algorithm>

#include "core/common/strings.h"
#include "core/demo/demo_collection.h"
#include "ui/rom_list_view.h"

namespace romsteward::ui::test {

void RecordingHost::ShowMessage(std::string_view text, MessageIcon, std::string_view) {
  shown.emplace_back(text);
}

Answer RecordingHost::AskYesNo(std::string_view text, MessageIcon, std::string_view) {
  shown.emplace_back(text);
  if (yesNo.empty()) return Answer::No;
  const Answer answer = yesNo.front();
  yesNo.pop_front();
  return answer;
}

Answer RecordingHost::AskYesNoCancel(std::string_view text, MessageIcon icon,
                                     std::string_view title) {
  return AskYesNo(text, icon, title);
}

int RecordingHost::ShowQuestionBox(const QuestionBox& box) {
  shown.push_back(box.text);
  return kEscolhaClosed;
}

std::optional<std::string> RecordingHost::AskText(std::string_view prompt, std::string_view,
                                                  std::string_view, bool) {
  shown.emplace_back(prompt);
  if (texts.empty()) return std::nullopt;
  std::optional<std::string> text = texts.front();
  texts.pop_front();
  return text;
}

Sandbox::Sandbox() {
  // The user's cache folder (the default temporary folder) is the sandbox's own.
  qputenv("XDG_CACHE_HOME", Path("cache").toUtf8());
  m_store =
      std::move(RegistryStore::Open(Utf8ToPath(Path("settings.sqlite3").toStdString())).value());
  m_settings = std::make_unique<AppSettings>(*m_store);
  (void)WriteDemoCollection(Utf8ToPath(Demo()));
  // A known emulator: no first-run notice in the way.
  (void)m_settings->SaveSetting(kSectionSettings, "Genem", "/games/genem.exe");
  (void)m_settings->SaveSetting(kSectionSettings, "dir0", Demo());
}

bool SelectEntry(MainWindow& window, std::string_view name) {
  window.Render();  // the list shows the model's entries, also after a direct model call
  const auto& entries = window.Model().Entries();
  const auto at = std::find(entries.begin(), entries.end(), name);
  if (at == entries.end()) return false;
  RomListView* list = window.List();
  list->setCurrentIndex(list->model()->index(static_cast<int>(at - entries.begin()), 0));
  return window.Model().SelectedText() == name;
}

void WhenModal(std::function<void(QWidget*)> act) {
  auto* timer = new QTimer;
  timer->setInterval(10);
  QObject::connect(timer, &QTimer::timeout, [timer, act] {
    QWidget* modal = QApplication::activeModalWidget();
    if (!modal) return;
    timer->stop();
    timer->deleteLater();
    act(modal);
  });
  timer->start();
}

}  // namespace romsteward::ui::test
