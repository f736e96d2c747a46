#include "cli/repair_host.h"

#include "core/cart/rom_size_check.h"

namespace romsteward::cli {

int RepairHost::ShowQuestionBox(const QuestionBox& box) {
  const bool offersTruncate = !box.no.hidden && box.no.caption == kTruncateCaption;
  if (offersTruncate && m_truncate) {
    Inner().ShowMessage(box.text + " -> Truncate (--truncate)", MessageIcon::Question, box.title);
    return kEscolhaNo;
  }
  if (offersTruncate && m_answerNo) {
    QuestionBox withoutTruncate = box;
    withoutTruncate.no.hidden = true;
    return Inner().ShowQuestionBox(withoutTruncate);
  }
  return Inner().ShowQuestionBox(box);
}

}  // namespace romsteward::cli
