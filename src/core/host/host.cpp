#include "core/host/host.h"

namespace romsteward {

const QuestionButton* ButtonFor(const QuestionBox& box, int escolha) {
  switch (escolha) {
    case kEscolhaYes:
      return &box.yes;
    case kEscolhaNo:
      return &box.no;
    case kEscolhaCancel:
      return &box.cancel;
    default:
      return nullptr;
  }
}

bool CanAnswer(const QuestionBox& box, int escolha) {
  if (escolha == kEscolhaClosed) return true;
  const QuestionButton* button = ButtonFor(box, escolha);
  return button != nullptr && !button->hidden;
}

std::string CaptionText(std::string_view caption) {
  std::string text;
  text.reserve(caption.size());
  for (std::size_t i = 0; i < caption.size(); ++i) {
    if (caption[i] == '&') {
      if (i + 1 < caption.size() && caption[i + 1] == '&') text += caption[++i];
      continue;
    }
    text += caption[i];
  }
  return text;
}

}  // namespace romsteward
