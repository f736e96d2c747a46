#pragma once

#include <QDialog>

#include "core/host/host.h"

class QPushButton;

namespace romsteward::ui {

/// The three-button question box (`frmmessage`): the caller's title, text, button captions,
/// tooltips and hidden buttons. Escolha() is 6, 7 or 2 for the button pressed, 0 when the
/// box was closed without one.
class QuestionDialog : public QDialog {
  Q_OBJECT
public:
  explicit QuestionDialog(const QuestionBox& box, QWidget* parent = nullptr);

  int Escolha() const { return m_escolha; }
  /// The button that answers `escolha` (6, 7 or 2), for tests; nullptr for any other.
  QPushButton* Button(int escolha) const;

private:
  QPushButton* AddButton(const QuestionButton& button, int escolha);

  int m_escolha = kEscolhaClosed;
  QPushButton* m_yes = nullptr;
  QPushButton* m_no = nullptr;
  QPushButton* m_cancel = nullptr;
};

}  // namespace romsteward::ui
