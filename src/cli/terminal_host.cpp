#include "cli/terminal_host.h"

#include <fmt/format.h>

#include <istream>
#include <ostream>

#include "cli/console.h"
#include "core/common/strings.h"

namespace romsteward::cli {

namespace {

std::string_view IconWord(MessageIcon icon) {
  switch (icon) {
    case MessageIcon::Critical:
      return "error";
    case MessageIcon::Exclamation:
      return "warning";
    case MessageIcon::Information:
      return "note";
    case MessageIcon::Question:
      return "question";
    case MessageIcon::None:
      break;
  }
  return {};
}

// Message texts use CR LF between lines; a bare CR would overwrite the line on a terminal.
std::string TerminalLines(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\r') {
      out += '\n';
      if (i + 1 < text.size() && text[i + 1] == '\n') ++i;
    } else {
      out += text[i];
    }
  }
  return out;
}

std::string FilterText(const std::vector<FileFilter>& filters) {
  std::string text;
  for (const FileFilter& filter : filters) {
    if (!text.empty()) text += ", ";
    text += fmt::format("{} {}", filter.description, filter.patterns);
  }
  return text;
}

std::string DialogDetail(const FileDialog& dialog) {
  std::string detail = FilterText(dialog.filters);
  if (!dialog.initialDir.empty()) {
    detail += (detail.empty() ? "in " : ", in ") + dialog.initialDir;
  }
  return detail;
}

// The letter after a single "&" of a caption: the button's access key.
std::optional<char> AccessKey(std::string_view caption) {
  for (std::size_t i = 0; i + 1 < caption.size(); ++i) {
    if (caption[i] != '&') continue;
    if (caption[i + 1] == '&') {
      ++i;
      continue;
    }
    return static_cast<char>(ToLowerAscii(caption.substr(i + 1, 1))[0]);
  }
  return std::nullopt;
}

std::string_view Why(AutoAnswer answer) {
  switch (answer) {
    case AutoAnswer::Yes:
      return "--yes";
    case AutoAnswer::No:
      return "--no";
    case AutoAnswer::None:
      break;
  }
  return "no terminal to ask";
}

}  // namespace

std::string FormatMessageLine(std::string_view text, MessageIcon icon, std::string_view title) {
  std::string line;
  if (const std::string_view word = IconWord(icon); !word.empty())
    line += fmt::format("{}: ", word);
  if (!title.empty()) line += fmt::format("{}: ", title);
  line += text;
  return TerminalLines(line);
}

TerminalHost::TerminalHost(std::istream& in, std::ostream& err, TerminalHostOptions options)
    : m_in(in), m_err(err), m_options(options) {}

std::optional<std::string> TerminalHost::ReadLine() {
  std::string line;
  if (!std::getline(m_in, line)) return std::nullopt;
  if (!line.empty() && line.back() == '\r') line.pop_back();
  return line;
}

void TerminalHost::Report(std::string_view question, std::string_view answer,
                          std::string_view why) {
  m_err << question << " -> " << answer << " (" << why << ")\n";
}

void TerminalHost::ShowMessage(std::string_view text, MessageIcon icon, std::string_view title) {
  m_err << FormatMessageLine(text, icon, title) << '\n';
}

Answer TerminalHost::AskChoice(std::string_view question, std::string_view keys, Answer onEnd) {
  const bool withCancel = keys.find('c') != std::string_view::npos;
  for (;;) {
    m_err << question << (withCancel ? " [y/n/c] " : " [y/n] ") << std::flush;
    const std::optional<std::string> line = ReadLine();
    if (!line) {
      m_err << '\n';
      return onEnd;
    }
    const std::string word = ToLowerAscii(TrimBlanks(*line));
    if (word == "y" || word == "yes") return Answer::Yes;
    if (word == "n" || word == "no") return Answer::No;
    if (withCancel && (word == "c" || word == "cancel")) return Answer::Cancel;
    m_err << (withCancel ? "Please answer y, n or c.\n" : "Please answer y or n.\n");
  }
}

Answer TerminalHost::AskYesNo(std::string_view text, MessageIcon icon, std::string_view title) {
  const std::string question = FormatMessageLine(text, icon, title);
  if (m_options.autoAnswer == AutoAnswer::Yes) {
    Report(question, "yes", Why(m_options.autoAnswer));
    return Answer::Yes;
  }
  if (m_options.autoAnswer == AutoAnswer::No || !m_options.interactive) {
    Report(question, "no", Why(m_options.autoAnswer));
    return Answer::No;
  }
  return AskChoice(question, "yn", Answer::No);
}

Answer TerminalHost::AskYesNoCancel(std::string_view text, MessageIcon icon,
                                    std::string_view title) {
  const std::string question = FormatMessageLine(text, icon, title);
  switch (m_options.autoAnswer) {
    case AutoAnswer::Yes:
      Report(question, "yes", Why(m_options.autoAnswer));
      return Answer::Yes;
    case AutoAnswer::No:
      Report(question, "no", Why(m_options.autoAnswer));
      return Answer::No;
    case AutoAnswer::None:
      break;
  }
  if (!m_options.interactive) {
    Report(question, "cancel", Why(m_options.autoAnswer));
    return Answer::Cancel;
  }
  return AskChoice(question, "ync", Answer::Cancel);
}

int TerminalHost::ShowQuestionBox(const QuestionBox& box) {
  const std::string question = FormatMessageLine(box.text, MessageIcon::Question, box.title);
  if (m_options.autoAnswer != AutoAnswer::None || !m_options.interactive) {
    const int wanted = m_options.autoAnswer == AutoAnswer::Yes  ? kEscolhaYes
                       : m_options.autoAnswer == AutoAnswer::No ? kEscolhaNo
                                                                : kEscolhaClosed;
    // A hidden button cannot be pressed, not even by --yes or --no: the box is closed.
    const int escolha = CanAnswer(box, wanted) ? wanted : kEscolhaClosed;
    const QuestionButton* button = ButtonFor(box, escolha);
    Report(question, button ? CaptionText(button->caption) : "closed without a choice",
           Why(m_options.autoAnswer));
    return escolha;
  }

  std::vector<int> shown;
  for (const int value : {kEscolhaYes, kEscolhaNo, kEscolhaCancel}) {
    if (CanAnswer(box, value)) shown.push_back(value);
  }
  m_err << question << '\n';
  for (std::size_t i = 0; i < shown.size(); ++i) {
    const QuestionButton& button = *ButtonFor(box, shown[i]);
    m_err << fmt::format("  {}) {}", i + 1, CaptionText(button.caption));
    if (!button.tooltip.empty()) m_err << " - " << button.tooltip;
    m_err << '\n';
  }
  for (;;) {
    m_err << fmt::format("Choose 1-{} (an empty line closes the box): ", shown.size())
          << std::flush;
    const std::optional<std::string> line = ReadLine();
    if (!line) m_err << '\n';
    const std::string word = line ? ToLowerAscii(TrimBlanks(*line)) : std::string();
    if (word.empty()) return kEscolhaClosed;
    for (std::size_t i = 0; i < shown.size(); ++i) {
      const std::string& caption = ButtonFor(box, shown[i])->caption;
      const std::optional<char> key = AccessKey(caption);
      if (word == std::to_string(i + 1) || word == ToLowerAscii(CaptionText(caption)) ||
          (key && word.size() == 1 && word[0] == *key)) {
        return shown[i];
      }
    }
    m_err << "That is not one of the buttons.\n";
  }
}

std::optional<std::string> TerminalHost::AskText(std::string_view prompt, std::string_view title,
                                                 std::string_view initial, bool masked) {
  const std::string question = FormatMessageLine(prompt, MessageIcon::None, title);
  if (m_options.autoAnswer == AutoAnswer::Yes) {
    // OK pressed on the box as it was offered.
    Report(question, masked ? "accepted" : fmt::format("\"{}\"", initial), "--yes");
    return std::string(initial);
  }
  if (m_options.autoAnswer == AutoAnswer::No || !m_options.interactive) {
    Report(question, "cancelled", Why(m_options.autoAnswer));
    return std::nullopt;
  }
  m_err << question;
  if (!initial.empty() && !masked) m_err << " [" << initial << ']';
  m_err << ": " << std::flush;
  std::optional<std::string> line;
  if (masked && m_options.hideMaskedInput) {
    ScopedEchoOff hidden;
    line = ReadLine();
    m_err << '\n';
  } else {
    line = ReadLine();
  }
  if (!line) return std::nullopt;
  if (line->empty()) return std::string(initial);
  return line;
}

std::optional<std::string> TerminalHost::AskPath(std::string_view title, std::string_view detail) {
  const std::string question =
      detail.empty() ? std::string(title) : fmt::format("{} ({})", title, detail);
  if (!m_options.interactive || m_options.autoAnswer != AutoAnswer::None) {
    Report(question, "nothing chosen", Why(m_options.autoAnswer));
    return std::nullopt;
  }
  m_err << question << ", an empty line cancels: " << std::flush;
  std::optional<std::string> line = ReadLine();
  if (!line || line->empty()) return std::nullopt;
  return line;
}

std::optional<std::string> TerminalHost::ChooseOpenFile(const FileDialog& dialog) {
  return AskPath(dialog.title, DialogDetail(dialog));
}

std::vector<std::string> TerminalHost::ChooseOpenFiles(const FileDialog& dialog) {
  std::vector<std::string> files;
  std::optional<std::string> first =
      AskPath(dialog.title,
              DialogDetail(dialog) + (dialog.filters.empty() ? "" : ", ") + "one file per line");
  if (!first) return files;
  files.push_back(std::move(*first));
  while (std::optional<std::string> line = ReadLine()) {
    if (line->empty()) break;
    files.push_back(std::move(*line));
  }
  return files;
}

std::optional<std::string> TerminalHost::ChooseSaveFile(const FileDialog& dialog) {
  return AskPath(dialog.title, DialogDetail(dialog));
}

std::optional<std::string> TerminalHost::ChooseFolder(std::string_view title,
                                                      std::string_view initialDir) {
  return AskPath(title, initialDir.empty() ? "" : fmt::format("now {}", initialDir));
}

std::optional<std::string> TerminalHost::ChooseFromList(std::string_view title,
                                                        const std::vector<std::string>& items) {
  if (!m_options.interactive || m_options.autoAnswer != AutoAnswer::None || items.empty()) {
    Report(title, "nothing chosen", Why(m_options.autoAnswer));
    return std::nullopt;
  }
  m_err << title << '\n';
  for (std::size_t i = 0; i < items.size(); ++i) {
    m_err << fmt::format("  {}) {}\n", i + 1, EscapeForDisplay(items[i]));
  }
  for (;;) {
    m_err << fmt::format("Choose 1-{} (an empty line chooses none): ", items.size()) << std::flush;
    const std::optional<std::string> line = ReadLine();
    if (!line || TrimBlanks(*line).empty()) return std::nullopt;
    const std::string_view word = TrimBlanks(*line);
    if (IsNumeric(word) && word.find_first_of(".+-") == std::string_view::npos) {
      const auto index = LeadingNumber(word);
      if (index >= 1 && static_cast<std::size_t>(index) <= items.size()) {
        return items[static_cast<std::size_t>(index - 1)];
      }
    }
    m_err << "That is not one of the numbers.\n";
  }
}

void TerminalHost::BeginProgress(std::string_view caption) {
  m_progressCaption = caption.empty() ? "Progress" : std::string(caption);
  m_progressShown = -1;
}

void TerminalHost::SetProgressCaption(std::string_view caption) {
  m_progressCaption = caption;
  if (m_progressShown >= 0) {
    const int percent = m_progressShown;
    m_progressShown = -1;
    SetProgress(percent);
  }
}

bool TerminalHost::SetProgress(int percent) {
  if (!m_options.showProgress || percent == m_progressShown) return true;
  // Erase to the end of the line, so a shorter caption leaves nothing of the longer one.
  m_err << '\r' << m_progressCaption << ": " << percent << "%\x1b[K" << std::flush;
  m_progressShown = percent;
  return true;
}

void TerminalHost::EndProgress() {
  if (m_progressShown >= 0) m_err << '\n';
  m_progressShown = -1;
}

}  // namespace romsteward::cli
