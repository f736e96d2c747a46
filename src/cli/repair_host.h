#pragma once

#include "core/app/host.h"

namespace romsteward::cli {

/// The terminal's Host for `repair`, except for the size question: cutting a file loses data,
/// so "&Truncate" is chosen only by --truncate or by a person at the terminal, never by --no
/// (whose answer, the box's No button, carries that caption). --yes picks "&Fix header"
/// through the terminal's Host.
class RepairHost : public Host {
public:
  RepairHost(Host& terminal, bool truncate, bool answerNo)
      : m_terminal(terminal), m_truncate(truncate), m_answerNo(answerNo) {}

  int ShowQuestionBox(const QuestionBox& box) override;

  void ShowMessage(std::string_view text, MessageIcon icon, std::string_view title) override;
  Answer AskYesNo(std::string_view text, MessageIcon icon, std::string_view title) override;
  Answer AskYesNoCancel(std::string_view text, MessageIcon icon, std::string_view title) override;
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
  bool IsShiftHeld() override;

private:
  Host& m_terminal;
  bool m_truncate;
  bool m_answerNo;
};

}  // namespace romsteward::cli
