#pragma once

#include "core/host/forwarding_host.h"

namespace romsteward::cli {

/// The terminal's Host for `repair`, except for the size question: cutting a file loses data,
/// so "&Truncate" is chosen only by --truncate or by a person at the terminal, never by --no
/// (whose answer, the box's No button, carries that caption). --yes picks "&Fix header"
/// through the terminal's Host.
class RepairHost : public ForwardingHost {
public:
  RepairHost(Host& terminal, bool truncate, bool answerNo)
      : ForwardingHost(terminal), m_truncate(truncate), m_answerNo(answerNo) {}

  int ShowQuestionBox(const QuestionBox& box) override;

private:
  bool m_truncate;
  bool m_answerNo;
};

}  // namespace romsteward::cli
