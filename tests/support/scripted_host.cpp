#include "support/scripted_host.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "core/tools/split_size_chooser.h"

namespace romsteward::test {

namespace {

std::string_view PromptKindName(PromptKind kind) {
  static constexpr std::string_view kNames[] = {
      "message",       "yes/no question",  "yes/no/cancel question", "question box",
      "text input",    "open-file dialog", "open-files dialog",      "save-file dialog",
      "folder dialog", "list dialog",      "split size chooser"};
  const auto index = static_cast<std::size_t>(kind);
  return index < std::size(kNames) ? kNames[index] : "prompt";
}

HostEvent Event(PromptKind kind, std::string_view title, std::string_view text = {},
                MessageIcon icon = MessageIcon::None) {
  HostEvent event;
  event.kind = kind;
  event.title = title;
  event.text = text;
  event.icon = icon;
  return event;
}

HostEvent DialogEvent(PromptKind kind, const FileDialog& dialog) {
  HostEvent event = Event(kind, dialog.title);
  event.dialog = dialog;
  return event;
}

std::string Describe(const HostEvent& event) {
  return fmt::format("{} titled \"{}\": \"{}\"", PromptKindName(event.kind), event.title,
                     event.text);
}

}  // namespace

ScriptedHost::~ScriptedHost() {
  const std::size_t unused = m_yesNo.size() + m_yesNoCancel.size() + m_questionBox.size() +
                             m_text.size() + m_openFile.size() + m_openFiles.size() +
                             m_saveFile.size() + m_folder.size() + m_list.size() +
                             m_splitSize.size();
  if (unused > 0) {
    ADD_FAILURE() << unused << " queued answer(s) were never asked for. What was shown:\n"
                  << Transcript();
  }
  if (m_progressOpen) ADD_FAILURE() << "Progress was begun and never ended";
}

std::vector<HostEvent> ScriptedHost::EventsOf(PromptKind kind) const {
  std::vector<HostEvent> events;
  for (const HostEvent& event : m_events) {
    if (event.kind == kind) events.push_back(event);
  }
  return events;
}

std::vector<std::string> ScriptedHost::Texts() const {
  std::vector<std::string> texts;
  for (const HostEvent& event : m_events) {
    if (!event.text.empty()) texts.push_back(event.text);
  }
  return texts;
}

std::string ScriptedHost::Transcript() const {
  std::string transcript;
  for (const HostEvent& event : m_events)
    transcript += "  " + Describe(event) + "\n";
  return transcript.empty() ? "  (nothing)\n" : transcript;
}

HostEvent& ScriptedHost::Record(HostEvent event) {
  m_events.push_back(std::move(event));
  return m_events.back();
}

template <class T>
T ScriptedHost::Next(std::deque<T>& queue, const HostEvent& event, T fallback) {
  if (queue.empty()) {
    ADD_FAILURE() << "Unexpected " << Describe(event) << " (no answer queued). Shown so far:\n"
                  << Transcript();
    return fallback;
  }
  T answer = std::move(queue.front());
  queue.pop_front();
  return answer;
}

void ScriptedHost::ShowMessage(std::string_view text, MessageIcon icon, std::string_view title) {
  Record(Event(PromptKind::Message, title, text, icon));
}

Answer ScriptedHost::AskYesNo(std::string_view text, MessageIcon icon, std::string_view title) {
  const HostEvent& event = Record(Event(PromptKind::YesNo, title, text, icon));
  const Answer answer = Next(m_yesNo, event, Answer::No);
  if (answer != Answer::Yes && answer != Answer::No) {
    ADD_FAILURE() << "A yes/no question can only be answered Yes or No: " << Describe(event);
    return Answer::No;
  }
  return answer;
}

Answer ScriptedHost::AskYesNoCancel(std::string_view text, MessageIcon icon,
                                    std::string_view title) {
  const HostEvent& event = Record(Event(PromptKind::YesNoCancel, title, text, icon));
  const Answer answer = Next(m_yesNoCancel, event, Answer::Cancel);
  if (answer != Answer::Yes && answer != Answer::No && answer != Answer::Cancel) {
    ADD_FAILURE() << "A yes/no/cancel question cannot answer " << static_cast<int>(answer) << ": "
                  << Describe(event);
    return Answer::Cancel;
  }
  return answer;
}

int ScriptedHost::ShowQuestionBox(const QuestionBox& box) {
  HostEvent shown = Event(PromptKind::QuestionBox, box.title, box.text, MessageIcon::Question);
  shown.box = box;
  const HostEvent& event = Record(std::move(shown));
  const int escolha = Next(m_questionBox, event, kEscolhaClosed);
  if (!CanAnswer(box, escolha)) {
    const QuestionButton* button = ButtonFor(box, escolha);
    ADD_FAILURE() << "The queued answer " << escolha << " cannot be given by the "
                  << Describe(event)
                  << (button ? " because its button \"" + button->caption + "\" is hidden"
                             : std::string(" because no button has that value"));
    return kEscolhaClosed;
  }
  return escolha;
}

std::optional<std::string> ScriptedHost::AskText(std::string_view prompt, std::string_view title,
                                                 std::string_view initial, bool masked) {
  HostEvent shown = Event(PromptKind::Text, title, prompt);
  shown.initial = initial;
  shown.masked = masked;
  const HostEvent& event = Record(std::move(shown));
  return Next(m_text, event, std::optional<std::string>{});
}

std::optional<std::string> ScriptedHost::ChooseOpenFile(const FileDialog& dialog) {
  return Next(m_openFile, Record(DialogEvent(PromptKind::OpenFile, dialog)),
              std::optional<std::string>{});
}

std::vector<std::string> ScriptedHost::ChooseOpenFiles(const FileDialog& dialog) {
  return Next(m_openFiles, Record(DialogEvent(PromptKind::OpenFiles, dialog)),
              std::vector<std::string>{});
}

std::optional<std::string> ScriptedHost::ChooseSaveFile(const FileDialog& dialog) {
  return Next(m_saveFile, Record(DialogEvent(PromptKind::SaveFile, dialog)),
              std::optional<std::string>{});
}

std::optional<std::string> ScriptedHost::ChooseFolder(std::string_view title,
                                                      std::string_view initialDir) {
  HostEvent shown = Event(PromptKind::Folder, title);
  shown.initial = initialDir;
  const HostEvent& event = Record(std::move(shown));
  return Next(m_folder, event, std::optional<std::string>{});
}

std::optional<std::string> ScriptedHost::ChooseFromList(std::string_view title,
                                                        const std::vector<std::string>& items) {
  HostEvent shown = Event(PromptKind::List, title);
  shown.items = items;
  const HostEvent& event = Record(std::move(shown));
  std::optional<std::string> choice = Next(m_list, event, std::optional<std::string>{});
  if (choice && std::find(items.begin(), items.end(), *choice) == items.end()) {
    ADD_FAILURE() << "The queued choice \"" << *choice << "\" is not in the " << Describe(event);
    return std::nullopt;
  }
  return choice;
}

int ScriptedHost::ChooseSplitSize(SplitSizeChooser& chooser) {
  const HostEvent& event = Record(Event(PromptKind::SplitSize, chooser.Caption()));
  for (;;) {
    const std::optional<int> megabits = Next(m_splitSize, event, std::optional<int>{});
    if (!megabits) return SplitSizeChooser::kCancelled;
    if (*megabits >= 1 && *megabits <= SplitSizeChooser::kPresetCount)
      chooser.SelectOption(*megabits - 1);
    else
      chooser.SetCustomText(std::to_string(*megabits));
    const Result<int> accepted = chooser.Accept();
    if (accepted) return accepted.value();
    ShowMessage(accepted.error().message, MessageIcon::Critical, {});
  }
}

void ScriptedHost::BeginProgress(std::string_view caption) {
  if (m_progressOpen) ADD_FAILURE() << "Progress begun while another is shown";
  m_progressOpen = true;
  m_progressCaptions.emplace_back(caption);
}

void ScriptedHost::SetProgressCaption(std::string_view caption) {
  if (!m_progressOpen) ADD_FAILURE() << "Progress caption set with no progress shown";
  m_progressCaptions.emplace_back(caption);
}

bool ScriptedHost::SetProgress(int percent) {
  if (!m_progressOpen) ADD_FAILURE() << "Progress reported with no progress shown";
  if (percent < 0 || percent > 100) ADD_FAILURE() << "Progress out of range: " << percent;
  m_progressReports.push_back(percent);
  return percent < m_cancelAt;
}

void ScriptedHost::EndProgress() {
  if (!m_progressOpen) ADD_FAILURE() << "Progress ended that was never begun";
  m_progressOpen = false;
}

}  // namespace romsteward::test
