#pragma once

#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/host/host.h"

namespace romsteward::cli {

/// The answer --yes or --no gives to every question.
enum class AutoAnswer { None, Yes, No };

struct TerminalHostOptions {
  AutoAnswer autoAnswer = AutoAnswer::None;
  /// Questions are asked on the error stream and answered on the input stream.
  bool interactive = false;
  /// A percentage line is redrawn on the error stream while long work runs.
  bool showProgress = false;
  /// Masked input switches the terminal's echo off (only for a real terminal).
  bool hideMaskedInput = false;
};

/// The Host of romsteward-tool. Every message goes to the error stream with its title.
/// --yes/--no answer every question without asking; otherwise a terminal is asked, and
/// without one the answer is the one that changes nothing: No, Cancel, the question box
/// closed (0), no text, no file, no folder, no choice.
class TerminalHost : public Host {
public:
  TerminalHost(std::istream& in, std::ostream& err, TerminalHostOptions options);

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
  /// A terminal cannot tell; deletes stay recoverable.
  bool IsShiftHeld() override { return false; }
  /// Asks for a number of megabits; without a terminal (or with --yes/--no) it is cancelled.
  int ChooseSplitSize(SplitSizeChooser& chooser) override;

private:
  // A line typed in answer; nullopt at the end of input.
  std::optional<std::string> ReadLine();
  // Asks until y or n (or c, when `keys` holds it) is typed; `onEnd` when input ends.
  Answer AskChoice(std::string_view question, std::string_view keys, Answer onEnd);
  std::optional<std::string> AskPath(std::string_view title, std::string_view detail);
  void Report(std::string_view question, std::string_view answer, std::string_view why);

  std::istream& m_in;
  std::ostream& m_err;
  TerminalHostOptions m_options;
  std::string m_progressCaption;
  int m_progressShown = -1;
};

/// What a message box looks like on one line: icon word, title and text.
std::string FormatMessageLine(std::string_view text, MessageIcon icon, std::string_view title);

}  // namespace romsteward::cli
