#pragma once

#include <QPointer>
#include <QString>

#include "core/host/host.h"

class QProgressDialog;
class QWidget;

namespace romsteward::ui {

/// The file dialog filter Qt understands: "Description (*.a *.b)" per filter, ";;" between.
QString QtFilter(const std::vector<FileFilter>& filters);

/// The desktop program's Host: every prompt of the core as a modal Qt dialog over `parent`.
/// Progress keeps the window painting and reports Cancel; Shift is read from the keyboard.
class QtHost : public Host {
public:
  explicit QtHost(QWidget* parent = nullptr) : m_parent(parent) {}
  ~QtHost() override;
  QtHost(const QtHost&) = delete;
  QtHost& operator=(const QtHost&) = delete;

  void SetParent(QWidget* parent) { m_parent = parent; }

  void ShowMessage(std::string_view text, MessageIcon icon, std::string_view title) override;
  Answer AskYesNo(std::string_view text, MessageIcon icon, std::string_view title) override;
  Answer AskYesNoCancel(std::string_view text, MessageIcon icon, std::string_view title) override;
  int ShowQuestionBox(const QuestionBox& box) override;
  std::optional<std::string> AskText(std::string_view prompt, std::string_view title,
                                     std::string_view initial, bool masked) override;
  std::optional<std::string> ChooseOpenFile(const FileDialog& dialog) override;
  std::vector<std::string> ChooseOpenFiles(const FileDialog& dialog) override;
  std::optional<std::string> ChooseSaveFile(const FileDialog& dialog) override;
  std::optional<std::string> ChooseFolder(std::string_view title,
                                          std::string_view initialDir) override;
  std::optional<std::string> ChooseFromList(std::string_view title,
                                            const std::vector<std::string>& items) override;
  int ChooseSplitSize(SplitSizeChooser& chooser) override;
  void BeginProgress(std::string_view caption) override;
  void SetProgressCaption(std::string_view caption) override;
  bool SetProgress(int percent) override;
  void EndProgress() override;
  bool IsShiftHeld() override;

private:
  QWidget* m_parent;
  QPointer<QProgressDialog> m_progress;
  int m_progressDepth = 0;
};

}  // namespace romsteward::ui
