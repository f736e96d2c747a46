#include "ui/question_dialog.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QStyle>
#include <QVBoxLayout>

#include "ui/caption_width.h"
#include "ui/qt_text.h"

namespace romsteward::ui {

QuestionDialog::QuestionDialog(const QuestionBox& box, QWidget* parent) : QDialog(parent) {
  setWindowTitle(ToQt(box.title));
  setModal(true);

  auto* text = new QLabel(ToQt(box.text), this);
  text->setWordWrap(true);
  text->setMinimumWidth(320);
  auto* icon = new QLabel(this);
  icon->setObjectName("Picture1");
  icon->setPixmap(style()->standardIcon(QStyle::SP_MessageBoxQuestion).pixmap(32, 32));
  icon->setAlignment(Qt::AlignTop);

  auto* message = new QHBoxLayout;
  message->addWidget(icon);
  message->addWidget(text, 1);
  auto* buttons = new QHBoxLayout;
  buttons->addStretch(1);
  m_yes = AddButton(box.yes, kEscolhaYes);
  m_no = AddButton(box.no, kEscolhaNo);
  m_cancel = AddButton(box.cancel, kEscolhaCancel);
  for (QPushButton* button : {m_yes, m_no, m_cancel})
    buttons->addWidget(button);

  auto* layout = new QVBoxLayout(this);
  layout->addLayout(message);
  layout->addLayout(buttons);
  WidenToCaption(*this);
}

QPushButton* QuestionDialog::AddButton(const QuestionButton& button, int escolha) {
  auto* widget = new QPushButton(ToQt(button.caption), this);
  widget->setToolTip(ToQt(button.tooltip));
  widget->setVisible(!button.hidden);
  widget->setAutoDefault(false);
  connect(widget, &QPushButton::clicked, this, [this, escolha] {
    m_escolha = escolha;
    accept();
  });
  return widget;
}

QPushButton* QuestionDialog::Button(int escolha) const {
  switch (escolha) {
    case kEscolhaYes:
      return m_yes;
    case kEscolhaNo:
      return m_no;
    case kEscolhaCancel:
      return m_cancel;
    default:
      return nullptr;
  }
}

}  // namespace romsteward::ui
