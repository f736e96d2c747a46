#pragma once

#include "core/host/host.h"

namespace romsteward {

/// A Host that hands every prompt to another one. Derive from it to change how one kind of
/// prompt is answered and keep the rest as they are.
class ForwardingHost : public Host {
public:
  explicit ForwardingHost(Host& inner) : m_inner(inner) {}

  void ShowMessage(std::string_view text, MessageIcon icon, std::string_view title) override {
    m_inner.ShowMessage(text, icon, title);
  }
  Answer AskYesNo(std::string_view text, MessageIcon icon, std::string_view title) override {
    return m_inner.AskYesNo(text, icon, title);
  }
  Answer AskYesNoCancel(std::string_view text, MessageIcon icon, std::string_view title) override {
    return m_inner.AskYesNoCancel(text, icon, title);
  }
  int ShowQuestionBox(const QuestionBox& box) override { return m_inner.ShowQuestionBox(box); }
  std::optional<std::string> AskText(std::string_view prompt, std::string_view title,
                                     std::string_view initial, bool masked) override {
    return m_inner.AskText(prompt, title, initial, masked);
  }
  std::optional<std::string> ChooseOpenFile(const FileDialog& dialog) override {
    return m_inner.ChooseOpenFile(dialog);
  }
  std::vector<std::string> ChooseOpenFiles(const FileDialog& dialog) override {
    return m_inner.ChooseOpenFiles(dialog);
  }
  std::optional<std::string> ChooseSaveFile(const FileDialog& dialog) override {
    return m_inner.ChooseSaveFile(dialog);
  }
  std::optional<std::string> ChooseFolder(std::string_view title,
                                          std::string_view initialDir) override {
    return m_inner.ChooseFolder(title, initialDir);
  }
  std::optional<std::string> ChooseFromList(std::string_view title,
                                            const std::vector<std::string>& items) override {
    return m_inner.ChooseFromList(title, items);
  }
  int ChooseSplitSize(SplitSizeChooser& chooser) override {
    return m_inner.ChooseSplitSize(chooser);
  }
  void BeginProgress(std::string_view caption) override { m_inner.BeginProgress(caption); }
  void SetProgressCaption(std::string_view caption) override {
    m_inner.SetProgressCaption(caption);
  }
  bool SetProgress(int percent) override { return m_inner.SetProgress(percent); }
  void EndProgress() override { m_inner.EndProgress(); }
  bool IsShiftHeld() override { return m_inner.IsShiftHeld(); }

protected:
  Host& Inner() { return m_inner; }

private:
  Host& m_inner;
};

}  // namespace romsteward
