#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace romsteward {

class SplitSizeChooser;

/// Icons of a message box; the words of the old message-box styles.
enum class MessageIcon { None, Information, Exclamation, Critical, Question };

/// Answers, numbered as the old message-box answers so stored and compared values agree.
enum class Answer : int { None = 0, Ok = 1, Cancel = 2, Yes = 6, No = 7 };

/// One button of the three-button question box.
struct QuestionButton {
  std::string caption;
  std::string tooltip;
  bool hidden = false;  ///< a hidden button cannot be chosen
};

/// The configurable question box (`frmmessage`). Its answer `Escolha` is 6 (`CmdYes`),
/// 7 (`CmdNo`), 2 (`CmdCancel`), or 0 when it was closed without a button.
struct QuestionBox {
  std::string title;
  std::string text;
  QuestionButton yes{"&Yes", {}, false};
  QuestionButton no{"&No", {}, false};
  QuestionButton cancel{"&Cancel", {}, false};
};

inline constexpr int kEscolhaYes = 6;
inline constexpr int kEscolhaNo = 7;
inline constexpr int kEscolhaCancel = 2;
inline constexpr int kEscolhaClosed = 0;

/// The button whose click gives `escolha` (6, 7 or 2); nullptr for any other value.
const QuestionButton* ButtonFor(const QuestionBox& box, int escolha);
/// Whether the box can give `escolha`: 0 (closed without a button) or the value of a button
/// that is shown. Every Host keeps to this; a hidden button cannot be chosen.
bool CanAnswer(const QuestionBox& box, int escolha);
/// `caption` without its access-key marks: "&Fix 'n Save" reads "Fix 'n Save", "&&" is "&".
std::string CaptionText(std::string_view caption);

/// A file dialog's filter: its description and its patterns ("*.ips", "*.smd;*.bin").
struct FileFilter {
  std::string description;
  std::string patterns;
};

struct FileDialog {
  std::string title;
  std::vector<FileFilter> filters;
  std::string initialDir;
  std::string initialName;
};

/// Everything the core asks of the person in front of it. The desktop program answers with
/// dialogs, the terminal tool with prompts or its --yes/--no defaults, the tests with a
/// script. Injected, never global; commands take a Host& and decide nothing on its behalf.
class Host {
public:
  virtual ~Host() = default;

  virtual void ShowMessage(std::string_view text, MessageIcon icon, std::string_view title) = 0;
  /// Answer::Yes or Answer::No.
  virtual Answer AskYesNo(std::string_view text, MessageIcon icon, std::string_view title) = 0;
  /// Answer::Yes, Answer::No or Answer::Cancel.
  virtual Answer AskYesNoCancel(std::string_view text, MessageIcon icon,
                                std::string_view title) = 0;
  /// The question box; returns `Escolha` (6, 7, 2, or 0 when closed without a button).
  virtual int ShowQuestionBox(const QuestionBox& box) = 0;

  /// A line of text; nullopt when cancelled. `masked` hides what is typed.
  virtual std::optional<std::string> AskText(std::string_view prompt, std::string_view title,
                                             std::string_view initial, bool masked) = 0;

  /// File dialogs; nullopt or empty when cancelled.
  virtual std::optional<std::string> ChooseOpenFile(const FileDialog& dialog) = 0;
  virtual std::vector<std::string> ChooseOpenFiles(const FileDialog& dialog) = 0;
  virtual std::optional<std::string> ChooseSaveFile(const FileDialog& dialog) = 0;
  virtual std::optional<std::string> ChooseFolder(std::string_view title,
                                                  std::string_view initialDir) = 0;

  /// The list dialog (`frmListagem`): the chosen entry's text, or nullopt for "done".
  virtual std::optional<std::string> ChooseFromList(std::string_view title,
                                                    const std::vector<std::string>& items) = 0;

  /// The split size chooser (`frmsplittam`), modal: the size in megabits accepted with OK
  /// (`chooser.Accept()`; a refusal is shown critical and the chooser stays open), 0 on
  /// Cancel.
  virtual int ChooseSplitSize(SplitSizeChooser& chooser) = 0;

  /// Progress of long work (`frmPorcento`, titled "Progress" unless the caption changes).
  virtual void BeginProgress(std::string_view caption) = 0;
  virtual void SetProgressCaption(std::string_view caption) = 0;
  /// 0-100; returns false when the user asked to cancel.
  virtual bool SetProgress(int percent) = 0;
  virtual void EndProgress() = 0;

  /// Whether Shift is held right now (a delete becomes permanent, a drop becomes a move).
  virtual bool IsShiftHeld() = 0;
};

/// Shows progress for the lifetime of a scope, so early returns close it.
class ScopedProgress {
public:
  ScopedProgress(Host& host, std::string_view caption) : m_host(host) {
    m_host.BeginProgress(caption);
  }
  ~ScopedProgress() { m_host.EndProgress(); }
  ScopedProgress(const ScopedProgress&) = delete;
  ScopedProgress& operator=(const ScopedProgress&) = delete;

private:
  Host& m_host;
};

}  // namespace romsteward
