#include "ui/tools/split_size_dialog.h"

#include <QButtonGroup>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QToolButton>
#include <QVBoxLayout>

#include "core/tools/split_size_chooser.h"
#include "ui/caption_width.h"
#include "ui/message_box.h"
#include "ui/qt_text.h"

namespace romsteward::ui {

namespace {

constexpr int kColumns = 3;

QToolButton* SpinButton(const char* name, Qt::ArrowType arrow, const QString& tip,
                        QWidget* parent) {
  auto* button = new QToolButton(parent);
  button->setObjectName(name);
  button->setArrowType(arrow);
  button->setToolTip(tip);
  button->setAutoRepeat(true);
  return button;
}

// Whether the whole text could have been typed through the field's key filter.
bool TypedThroughFilter(const QString& text) {
  const std::string bytes = FromQt(text);
  for (char c : bytes)
    if (!SplitSizeChooser::KeyPasses(c)) return false;
  return true;
}

}  // namespace

SplitSizeDialog::SplitSizeDialog(SplitSizeChooser& chooser, QWidget* parent)
    : QDialog(parent), m_chooser(chooser), m_size(SplitSizeChooser::kCancelled) {
  setObjectName("frmsplittam");
  setWindowTitle(ToQt(chooser.Caption()));

  m_tam = new QButtonGroup(this);
  auto* sizes = new QGridLayout;
  for (int option = 0; option < SplitSizeChooser::kPresetCount; ++option) {
    auto* radio = new QRadioButton(ToQt(SplitSizeChooser::OptionCaption(option)), this);
    radio->setObjectName(QStringLiteral("tam(%1)").arg(option));
    m_tam->addButton(radio, option);
    // Down the columns, as sizes are read: 1-4, 5-8, 9-12.
    const int rows = SplitSizeChooser::kPresetCount / kColumns;
    sizes->addWidget(radio, option % rows, option / rows);
  }

  auto* custom = new QRadioButton(
      ToQt(SplitSizeChooser::OptionCaption(SplitSizeChooser::kCustomOption)), this);
  custom->setObjectName(QStringLiteral("tam(%1)").arg(SplitSizeChooser::kCustomOption));
  m_tam->addButton(custom, SplitSizeChooser::kCustomOption);
  m_text1 = new QLineEdit(this);
  m_text1->setObjectName("Text1");
  m_text1->setMaximumWidth(80);
  m_text1->setToolTip("Size in megabits");
  m_text1->installEventFilter(this);
  auto* up = SpinButton("SpinUp", Qt::UpArrow, "One megabit more", this);
  auto* down = SpinButton("SpinDown", Qt::DownArrow, "One megabit less", this);
  auto* customRow = new QHBoxLayout;
  customRow->addWidget(custom);
  customRow->addWidget(m_text1);
  customRow->addWidget(up);
  customRow->addWidget(down);
  customRow->addStretch();

  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
  buttons->button(QDialogButtonBox::Ok)->setObjectName("CmdOk");
  buttons->button(QDialogButtonBox::Cancel)->setObjectName("CmdCancel");

  auto* layout = new QVBoxLayout(this);
  layout->addLayout(sizes);
  layout->addLayout(customRow);
  layout->addWidget(buttons);
  layout->setSizeConstraint(QLayout::SetFixedSize);
  WidenToCaption(*this);

  connect(m_tam, &QButtonGroup::idClicked, this, [this](int option) {
    m_chooser.SelectOption(option);
    if (option == SplitSizeChooser::kCustomOption) m_text1->setFocus();
  });
  connect(m_text1, &QLineEdit::textEdited, this, &SplitSizeDialog::EditCustomText);
  connect(up, &QToolButton::clicked, this, [this] {
    m_chooser.SpinUp();
    ShowChooser();
  });
  connect(down, &QToolButton::clicked, this, [this] {
    m_chooser.SpinDown();
    ShowChooser();
  });
  connect(buttons, &QDialogButtonBox::accepted, this, &SplitSizeDialog::Ok);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  ShowChooser();
}

void SplitSizeDialog::ShowChooser() {
  m_tam->button(m_chooser.SelectedOption())->setChecked(true);
  if (m_text1->text() != ToQt(m_chooser.CustomText()))
    m_text1->setText(ToQt(m_chooser.CustomText()));
}

// Typed keys pass the chooser's key filter; the field's editing keys (backspace, delete,
// arrows, shortcuts) carry no printable text and pass as well.
bool SplitSizeDialog::eventFilter(QObject* watched, QEvent* event) {
  if (watched == m_text1 && event->type() == QEvent::KeyPress) {
    const QString text = static_cast<QKeyEvent*>(event)->text();
    if (text.size() == 1 && text.at(0).isPrint() &&
        !SplitSizeChooser::KeyPasses(text.at(0).toLatin1()))
      return true;
  }
  return QDialog::eventFilter(watched, event);
}

// Every edit, pasted or dropped text included, must be one the key filter lets through;
// anything else puts the field back as it was.
void SplitSizeDialog::EditCustomText(const QString& text) {
  if (TypedThroughFilter(text)) {
    m_chooser.SetCustomText(FromQt(text));
  }
  ShowChooser();
}

void SplitSizeDialog::Ok() {
  const Result<int> accepted = m_chooser.Accept();
  if (!accepted) {
    ShowMessageBox(this, MessageIcon::Critical, {}, accepted.error().message, QMessageBox::Ok,
                   QMessageBox::Ok);
    return;
  }
  m_size = *accepted;
  accept();
}

}  // namespace romsteward::ui
