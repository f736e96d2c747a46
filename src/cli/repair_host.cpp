#include "cli/repair_host.h"

#include "core/cart/rom_size_check.h"

namespace romsteward::cli {

int RepairHost::ShowQuestionBox(const QuestionBox& box) {
  const bool offersTruncate = !box.no.hidden && box.no.caption == kTruncateCaption;
  if (offersTruncate && m_truncate) {
    m_terminal.ShowMessage(box.text + " -> Truncate (--truncate)", MessageIcon::Question,
                           box.title);
    return kEscolhaNo;
  }
  if (offersTruncate && m_answerNo) {
    QuestionBox withoutTruncate = box;
    withoutTruncate.no.hidden = true;
    return m_terminal.ShowQuestionBox(withoutTruncate);
  }
  return m_terminal.ShowQuestionBox(box);
}

void RepairHost::ShowMessage(std::string_view text, MessageIcon icon, std::string_view title) {
  m_terminal.ShowMessage(text, icon, title);
}
Answer RepairHost::AskYesNo(std::string_view text, MessageIcon icon, std::string_view title) {
  return m_terminal.AskYesNo(text, icon, title);
}
Answer RepairHost::AskYesNoCancel(std::string_view text, MessageIcon icon, std::string_view title) {
  return m_terminal.AskYesNoCancel(text, icon, title);
}
std::optional<std::string> RepairHost::AskText(std::string_view prompt, std::string_view title,
                                               std::string_view initial, bool masked) {
  return m_terminal.AskText(prompt, title, initial, masked);
}
std::optional<std::string> RepairHost::ChooseOpenFile(const FileDialog& dialog) {
  return m_terminal.ChooseOpenFile(dialog);
}
std::vector<std::string> RepairHost::ChooseOpenFiles(const FileDialog& dialog) {
  return m_terminal.ChooseOpenFiles(dialog);
}
std::optional<std::string> RepairHost::ChooseSaveFile(const FileDialog& dialog) {
  return m_terminal.ChooseSaveFile(dialog);
}
std::optional<std::string> RepairHost::ChooseFolder(std::string_view title,
                                                    std::string_view initialDir) {
  return m_terminal.ChooseFolder(title, initialDir);
}
std::optional<std::string> RepairHost::ChooseFromList(std::string_view title,
                                                      const std::vector<std::string>& items) {
  return m_terminal.ChooseFromList(title, items);
}
void RepairHost::BeginProgress(std::string_view caption) {
  m_terminal.BeginProgress(caption);
}
void RepairHost::SetProgressCaption(std::string_view caption) {
  m_terminal.SetProgressCaption(caption);
}
bool RepairHost::SetProgress(int percent) {
  return m_terminal.SetProgress(percent);
}
void RepairHost::EndProgress() {
  m_terminal.EndProgress();
}
bool RepairHost::IsShiftHeld() {
  return m_terminal.IsShiftHeld();
}

}  // namespace romsteward::cli
