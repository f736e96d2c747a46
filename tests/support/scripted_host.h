#pragma once

#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/host/host.h"

namespace romsteward::test {

enum class PromptKind {
  Message,
  YesNo,
  YesNoCancel,
  QuestionBox,
  Text,
  OpenFile,
  OpenFiles,
  SaveFile,
  Folder,
  List,
  SplitSize,
};

/// One thing the core showed or asked, as the user would have seen it. Only the fields of
/// its kind are filled.
struct HostEvent {
  PromptKind kind = PromptKind::Message;
  std::string title;
  std::string text;
  MessageIcon icon = MessageIcon::None;
  QuestionBox box;                 ///< QuestionBox
  FileDialog dialog;               ///< OpenFile, OpenFiles, SaveFile
  std::vector<std::string> items;  ///< List
  std::string initial;             ///< Text (the proposed answer), Folder (initial folder)
                                   ///< SplitSize: the chooser's caption is the title
  bool masked = false;             ///< Text
};

/// The Host of the tests: answers come from queues filled beforehand, one per kind of
/// prompt, and everything shown is recorded in order. A prompt without a queued answer, an
/// answer the prompt cannot give (a hidden button of the question box, Cancel to a yes/no
/// question) and answers left unused at the end each fail the running test.
class ScriptedHost : public Host {
public:
  ScriptedHost() = default;
  ~ScriptedHost() override;
  ScriptedHost(const ScriptedHost&) = delete;
  ScriptedHost& operator=(const ScriptedHost&) = delete;

  ScriptedHost& AnswerYesNo(Answer answer) { return Queue(m_yesNo, answer); }
  ScriptedHost& AnswerYesNoCancel(Answer answer) { return Queue(m_yesNoCancel, answer); }
  /// `escolha`: 6, 7, 2, or 0 to close the box without a button.
  ScriptedHost& AnswerQuestionBox(int escolha) { return Queue(m_questionBox, escolha); }
  /// nullopt presses Cancel.
  ScriptedHost& AnswerText(std::optional<std::string> text) { return Queue(m_text, text); }
  ScriptedHost& AnswerOpenFile(std::optional<std::string> path) { return Queue(m_openFile, path); }
  ScriptedHost& AnswerOpenFiles(std::vector<std::string> paths) {
    return Queue(m_openFiles, paths);
  }
  ScriptedHost& AnswerSaveFile(std::optional<std::string> path) { return Queue(m_saveFile, path); }
  ScriptedHost& AnswerFolder(std::optional<std::string> path) { return Queue(m_folder, path); }
  ScriptedHost& AnswerList(std::optional<std::string> choice) { return Queue(m_list, choice); }
  /// The split size chooser: 1..12 picks that option, any other number is typed into the
  /// custom field, and OK is pressed; nullopt presses Cancel. A refused OK is recorded as
  /// its message and the next queued answer is used, the chooser staying open.
  ScriptedHost& AnswerSplitSize(std::optional<int> megabits) {
    return Queue(m_splitSize, megabits);
  }

  void SetShiftHeld(bool held) { m_shiftHeld = held; }
  /// SetProgress answers "cancel" from the first report at or above `percent`.
  void CancelProgressAt(int percent) { m_cancelAt = percent; }

  const std::vector<HostEvent>& Events() const { return m_events; }
  std::vector<HostEvent> EventsOf(PromptKind kind) const;
  /// The text of every message and question, in order.
  std::vector<std::string> Texts() const;
  /// Every event as one line each, for failure output.
  std::string Transcript() const;

  const std::vector<std::string>& ProgressCaptions() const { return m_progressCaptions; }
  const std::vector<int>& ProgressReports() const { return m_progressReports; }

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
  void BeginProgress(std::string_view caption) override;
  void SetProgressCaption(std::string_view caption) override;
  bool SetProgress(int percent) override;
  void EndProgress() override;
  bool IsShiftHeld() override { return m_shiftHeld; }
  int ChooseSplitSize(SplitSizeChooser& chooser) override;

private:
  // Takes the next answer of a queue, or fails the test and gives `fallback`.
  template <class T>
  T Next(std::deque<T>& queue, const HostEvent& event, T fallback);
  HostEvent& Record(HostEvent event);
  template <class T>
  ScriptedHost& Queue(std::deque<T>& queue, T answer) {
    queue.push_back(std::move(answer));
    return *this;
  }

  std::vector<HostEvent> m_events;
  std::deque<Answer> m_yesNo;
  std::deque<Answer> m_yesNoCancel;
  std::deque<int> m_questionBox;
  std::deque<std::optional<std::string>> m_text;
  std::deque<std::optional<std::string>> m_openFile;
  std::deque<std::vector<std::string>> m_openFiles;
  std::deque<std::optional<std::string>> m_saveFile;
  std::deque<std::optional<std::string>> m_folder;
  std::deque<std::optional<std::string>> m_list;
  std::deque<std::optional<int>> m_splitSize;
  std::vector<std::string> m_progressCaptions;
  std::vector<int> m_progressReports;
  bool m_progressOpen = false;
  bool m_shiftHeld = false;
  int m_cancelAt = 101;
};

}  // namespace romsteward::test
