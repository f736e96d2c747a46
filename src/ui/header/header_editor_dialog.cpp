#include "ui/header/header_editor_dialog.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalBlocker>
#include <QVBoxLayout>
#include <array>

#include "core/cart/header.h"
#include "core/common/strings.h"
#include "core/host/host.h"
#include "ui/qt_text.h"

namespace romsteward::ui {

namespace {

constexpr std::string_view kTitle = "Header";

QString FieldName(std::string_view label) {
  return ToQt(label).remove('&').remove(':').replace(' ', '_');
}

QString DecodedMakerDate(const QString& text) {
  auto bytes = DecodeHexEscapes(FromQt(text));
  return bytes ? ToQt(Latin1FallbackToUtf8(DecodeMakerDate(*bytes))) : QString();
}

}  // namespace

HeaderEditorDialog::HeaderEditorDialog(HeaderEditor& editor, Host& host, QWidget* parent)
    : QDialog(parent), m_editor(editor), m_host(host) {
  setObjectName("frmHeader");
  const std::string path = PathToUtf8(editor.Path());
  setWindowTitle(ToQt("Header of " + PathToUtf8(editor.Path().filename())));

  // The title names the file; the whole path is a hover away.
  auto* where =
      new QLabel(ToQt("Layout: " + std::string(FormatDescription(editor.ImageLayout()))), this);
  where->setToolTip(ToQt(path));

  constexpr std::array game{HeaderText::System,       HeaderText::MakerDate,
                            HeaderText::DomesticName, HeaderText::OverseasName,
                            HeaderText::ProductType,  HeaderText::Serial,
                            HeaderText::Version};
  constexpr std::array other{HeaderText::Modem, HeaderText::Memo};
  constexpr std::array memoryTexts{HeaderText::RamInfo};
  constexpr std::array rom{HeaderAddress::RomStart, HeaderAddress::RomEnd};
  constexpr std::array ram{HeaderAddress::RamStart, HeaderAddress::RamEnd};

  auto* left = new QVBoxLayout;
  left->addWidget(Group("Game", game, {}, false));
  left->addWidget(Group("Other", other, {}, false));
  left->addStretch(1);
  auto* right = new QVBoxLayout;
  auto* memory = new QHBoxLayout;
  memory->addWidget(Group("ROM", {}, rom, true));
  memory->addWidget(Group("Backup RAM", memoryTexts, ram, false));
  right->addLayout(memory);
  right->addWidget(CodeGroup("Devices", HeaderText::Devices, DeviceCodes(), 3));
  right->addWidget(CodeGroup("Countries", HeaderText::Countries, CountryCodes(), 4));
  right->addStretch(1);
  auto* columns = new QHBoxLayout;
  columns->addLayout(left, 1);
  columns->addLayout(right, 1);

  m_makerDate = new QLabel(this);
  m_makerDate->setObjectName("lblMakerDate");
  const auto showMakerDate = [this] {
    m_makerDate->setText(DecodedMakerDate(m_texts[HeaderText::MakerDate]->text()));
  };
  connect(m_texts[HeaderText::MakerDate], &QLineEdit::textChanged, this, showMakerDate);
  showMakerDate();
  static_cast<QFormLayout*>(m_texts[HeaderText::MakerDate]->parentWidget()->layout())
      ->insertRow(2, QString(), m_makerDate);

  m_fixChecksum = new QCheckBox("&Fix checksum", this);
  m_fixChecksum->setObjectName("chkFixChecksum");
  m_fixChecksum->setToolTip("Stores the checksum of the image's contents with the header");
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Save | QDialogButtonBox::Cancel, this);
  buttons->button(QDialogButtonBox::Save)->setText("&Save");
  buttons->button(QDialogButtonBox::Cancel)->setText("Cancel");
  connect(buttons, &QDialogButtonBox::accepted, this, &HeaderEditorDialog::Save);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  auto* bottom = new QHBoxLayout;
  bottom->addWidget(m_fixChecksum);
  bottom->addWidget(buttons, 1);

  auto* layout = new QVBoxLayout(this);
  layout->addWidget(where);
  layout->addLayout(columns, 1);
  layout->addLayout(bottom);
}

QGroupBox* HeaderEditorDialog::Group(const QString& title, std::span<const HeaderText> texts,
                                     std::span<const HeaderAddress> addresses, bool checksum) {
  auto* group = new QGroupBox(title, this);
  auto* form = new QFormLayout(group);
  for (HeaderText id : texts) {
    const HeaderTextField& field = TextFieldOf(id);
    auto* edit = new QLineEdit(ToQt(m_editor.Text(id)), group);
    edit->setObjectName("txt" + FieldName(field.label));
    edit->setToolTip(QString("At most %1 characters; \\xNN stands for a byte that is no text")
                         .arg(field.field.width));
    form->addRow(ToQt(field.label), edit);
    m_texts[id] = edit;
  }
  for (HeaderAddress id : addresses) {
    auto* edit = new QLineEdit(ToQt(m_editor.Address(id)), group);
    const HeaderAddressField& field = AddressFieldOf(id);
    edit->setObjectName("txt" + FieldName(field.label));
    edit->setToolTip("Up to eight hexadecimal digits");
    edit->setPlaceholderText(
        id == HeaderAddress::RamStart || id == HeaderAddress::RamEnd ? "none" : QString());
    form->addRow(ToQt(field.label), edit);
    m_addresses[id] = edit;
  }
  if (checksum) {
    m_checksum = new QLineEdit(ToQt(m_editor.Checksum()), group);
    m_checksum->setObjectName("txtChecksum");
    m_checksum->setToolTip("Four hexadecimal digits");
    form->addRow("C&hecksum:", m_checksum);
  }
  return group;
}

QGroupBox* HeaderEditorDialog::CodeGroup(const QString& title, HeaderText field,
                                         std::span<const HeaderCode> codes, int columns) {
  QGroupBox* group = Group(title, std::array{field}, {}, false);
  QLineEdit* edit = m_texts[field];
  auto* grid = new QGridLayout;
  std::vector<std::pair<QCheckBox*, char>> boxes;
  for (std::size_t i = 0; i < codes.size(); ++i) {
    const HeaderCode& code = codes[i];
    auto* box = new QCheckBox(ToQt(code.meaning + " (" + code.code + ")"), group);
    box->setObjectName(QString("chk%1%2").arg(title).arg(QChar(code.code)));
    grid->addWidget(box, static_cast<int>(i) / columns, static_cast<int>(i) % columns);
    boxes.emplace_back(box, code.code);
    connect(box, &QCheckBox::toggled, this, [edit, code = code.code](bool on) {
      edit->setText(ToQt(WithHeaderCode(FromQt(edit->text()), code, on)));
    });
  }
  // The boxes follow the letters typed; unknown letters stay in the field only.
  const auto sync = [edit, boxes] {
    for (const auto& [box, code] : boxes) {
      const QSignalBlocker blocker(box);
      box->setChecked(HasHeaderCode(FromQt(edit->text()), code));
    }
  };
  connect(edit, &QLineEdit::textChanged, this, sync);
  sync();
  static_cast<QFormLayout*>(group->layout())->addRow(grid);
  return group;
}

bool HeaderEditorDialog::Accepted(const Status& status, QLineEdit* field) {
  if (status) return true;
  m_host.ShowMessage(status.error().message, MessageIcon::Critical, kTitle);
  if (field != nullptr) {
    field->setFocus();
    field->selectAll();
  }
  return false;
}

void HeaderEditorDialog::Save() {
  for (const auto& [id, edit] : m_texts) {
    if (!Accepted(m_editor.SetText(id, FromQt(edit->text())), edit)) return;
  }
  for (const auto& [id, edit] : m_addresses) {
    if (!Accepted(m_editor.SetAddress(id, FromQt(edit->text())), edit)) return;
  }
  if (!m_fixChecksum->isChecked() &&
      !Accepted(m_editor.SetChecksum(FromQt(m_checksum->text())), m_checksum))
    return;
  if (!Accepted(m_editor.Save(m_fixChecksum->isChecked(), &m_host), nullptr)) return;
  accept();
}

}  // namespace romsteward::ui
