#pragma once

#include <QTemporaryDir>
#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "core/host/host.h"
#include "core/settings/app_settings.h"
#include "core/settings/registry_store.h"
#include "ui/main_window.h"
#include "ui/trash_file_operations.h"

class QWidget;

namespace romsteward::ui::test {

/// A Host for window tests: records what was shown, answers yes/no and text prompts from
/// queues (No and cancel when empty), and never opens a dialog.
class RecordingHost : public Host {
public:
  std::vector<std::string> shown;
  std::deque<Answer> yesNo;
  std::deque<std::optional<std::string>> texts;
  bool shift = false;

  void ShowMessage(std::string_view text, MessageIcon, std::string_view) override;
  Answer AskYesNo(std::string_view text, MessageIcon, std::string_view) override;
  Answer AskYesNoCancel(std::string_view text, MessageIcon, std::string_view) override;
  int ShowQuestionBox(const QuestionBox& box) override;
  std::optional<std::string> AskText(std::string_view prompt, std::string_view, std::string_view,
                                     bool) override;
  std::optional<std::string> ChooseOpenFile(const FileDialog&) override { return {}; }
  std::vector<std::string> ChooseOpenFiles(const FileDialog&) override { return {}; }
  std::optional<std::string> ChooseSaveFile(const FileDialog&) override { return {}; }
  std::optional<std::string> ChooseFolder(std::string_view, std::string_view) override {
    return {};
  }
  std::optional<std::string> ChooseFromList(std::string_view,
                                            const std::vector<std::string>&) override {
    return {};
  }
  int ChooseSplitSize(SplitSizeChooser&) override { return 0; }
  void BeginProgress(std::string_view) override {}
  void SetProgressCaption(std::string_view) override {}
  bool SetProgress(int) override { return true; }
  void EndProgress() override {}
  bool IsShiftHeld() override { return shift; }
};

/// What a title bar needs beside a caption's text: its buttons' room on both sides, since
/// window managers centre the caption.
inline constexpr int kTitleBarRoom = 200;

/// A settings store and a demo collection in a temporary folder.
class Sandbox {
public:
  Sandbox();
  QString Path(const QString& name) const { return m_dir.filePath(name); }
  std::string Demo() const { return Path("demo").toStdString(); }
  AppSettings& Settings() { return *m_settings; }

private:
  QTemporaryDir m_dir;
  std::unique_ptr<RegistryStore> m_store;
  std::unique_ptr<AppSettings> m_settings;
};

/// Selects the listed entry `name` through the list, as a click does; false when it is not
/// listed.
bool SelectEntry(MainWindow& window, std::string_view name);

/// The main window over a sandbox's demo collection (not yet started), with `HostType`
/// answering its prompts.
template <class HostType = RecordingHost>
struct DemoWindow {
  Sandbox sandbox;
  HostType host;
  TrashFileOperations operations;
  MainWindow window{host, sandbox.Settings(), operations};
  bool Select(std::string_view name) { return SelectEntry(window, name); }
};

/// Runs `act` on the modal dialog as soon as one is open (the test then calls the code that
/// opens it and blocks until `act` answers it).
void WhenModal(std::function<void(QWidget*)> act);

}  // namespace romsteward::ui::test
