#include "ui/patch/patch_window.h"

#include <QAction>
#include <QDialogButtonBox>
#include <QFontDatabase>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QVBoxLayout>

#include "core/common/strings.h"
#include "core/host/app_title.h"
#include "core/host/host.h"
#include "core/patch/patch_dialog_model.h"
#include "core/settings/app_settings.h"
#include "ui/main_window.h"
#include "ui/qt_text.h"

namespace romsteward::ui {

namespace {

using Texts = PatchDialogTexts;

QLineEdit* Field(QWidget* parent, const char* name, std::string_view tip) {
  auto* field = new QLineEdit(parent);
  field->setObjectName(name);
  field->setToolTip(ToQt(tip));
  return field;
}

// A key that types something the value field refuses: printable text with a non-hex digit.
// Control keys (backspace, shortcuts such as Ctrl+V) and bare navigation keys pass.
bool TypesNonHex(const QKeyEvent& key) {
  const QString text = key.text();
  if (text.isEmpty()) return false;
  for (const QChar c : text)
    if (c.unicode() < 0x20 || c.unicode() == 0x7F) return false;
  return !IsHexText(FromQt(text));
}

}  // namespace

PatchWindow::PatchWindow(PatchDialogModel& model, QWidget* parent)
    : QDialog(parent), m_model(model) {
  setObjectName("frmpatch");
  setWindowTitle(ToQt(Texts::kTitle));

  m_txtNome = Field(this, "txtNome", Texts::kNameTip);
  m_txtNome->setText(ToQt(m_model.Name()));
  auto* save = new QPushButton("&Save", this);
  save->setObjectName("Command3");
  save->setToolTip(ToQt(Texts::kSaveTip));
  m_txtval = Field(this, "txtval", Texts::kValueTip);
  m_txtval->setText(ToQt(m_model.Value()));
  m_txtval->installEventFilter(this);
  m_txtval->setContextMenuPolicy(Qt::CustomContextMenu);
  m_txtpos = Field(this, "txtpos", Texts::kPositionTip);
  m_txtpos->setText(ToQt(m_model.Position()));
  auto* size = new QLabel(ToQt(m_model.SizeText()), this);
  size->setObjectName("lbltam");
  // Digits line up in a fixed-width face, as a hex editor shows them.
  QFont mono = QFontDatabase::systemFont(QFontDatabase::FixedFont);
  m_txtval->setFont(mono);
  m_txtpos->setFont(mono);

  auto* bar = new QMenuBar(this);
  m_editMenu = bar->addMenu(ToQt(Texts::kEditMenu));
  m_editMenu->menuAction()->setObjectName("mnuedit");
  QAction* hexa = m_editMenu->addAction(ToQt(Texts::kConvertToHexItem));
  hexa->setObjectName("mnu_hexa");
  QAction* get = m_editMenu->addAction("&Get value from ROM...");
  get->setObjectName("mnu_get");

  auto* nameRow = new QHBoxLayout;
  nameRow->addWidget(m_txtNome, 1);
  nameRow->addWidget(save);
  auto* form = new QFormLayout;
  form->addRow(ToQt(Texts::kNameLabel), nameRow);
  form->addRow(ToQt(Texts::kValueLabel), m_txtval);
  form->addRow(ToQt(Texts::kPositionLabel), m_txtpos);
  form->addRow(ToQt(Texts::kSizeLabel), size);
  // Our own addition: Save closes nothing, so this line tells that the patch is stored.
  m_saved = new QLabel(this);
  m_saved->setObjectName("lblSaved");
  auto* buttons = new QDialogButtonBox(this);
  QPushButton* close = buttons->addButton("&Close", QDialogButtonBox::RejectRole);
  close->setObjectName("CmdX1");
  auto* layout = new QVBoxLayout(this);
  layout->setMenuBar(bar);
  layout->addLayout(form);
  layout->addWidget(m_saved);
  layout->addWidget(buttons);
  // The fields in the order they are filled in, then the commands.
  setTabOrder(m_txtNome, m_txtval);
  setTabOrder(m_txtval, m_txtpos);
  setTabOrder(m_txtpos, save);
  setTabOrder(save, close);

  connect(m_txtNome, &QLineEdit::textEdited, this, [this](const QString& text) {
    m_model.SetName(FromQt(text));
    m_saved->clear();
  });
  connect(m_txtval, &QLineEdit::textChanged, this, [this](const QString& text) {
    m_model.SetValue(FromQt(text));
    m_saved->clear();
  });
  connect(m_txtpos, &QLineEdit::textEdited, this, [this](const QString& text) {
    m_model.SetPosition(FromQt(text));
    m_saved->clear();
  });
  // Saving may put a "0" before an odd count of digits: the field shows what was stored.
  connect(save, &QPushButton::clicked, this, [this] {
    const bool stored = m_model.Save();
    ShowValue();
    if (stored)
      m_saved->setText(QString("Saved \"%1\": %2 byte(s) at position %3.")
                           .arg(ToQt(m_model.Name()))
                           .arg(m_model.Value().size() / 2)
                           .arg(ToQt(m_model.Position()).toUpper()));
  });
  connect(hexa, &QAction::triggered, this, [this] {
    m_model.ConvertValueToHex();
    ShowValue();
  });
  connect(get, &QAction::triggered, this, [this] {
    m_model.GetValue();
    ShowValue();
  });
  connect(m_txtval, &QWidget::customContextMenuRequested, this,
          [this](const QPoint& at) { m_editMenu->exec(m_txtval->mapToGlobal(at)); });
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

  setMinimumWidth(420);
  m_txtNome->selectAll();
  m_txtNome->setFocus();
}

void PatchWindow::ShowValue() {
  const QString value = ToQt(m_model.Value());
  if (m_txtval->text() != value) m_txtval->setText(value);
}

bool PatchWindow::eventFilter(QObject* watched, QEvent* event) {
  if (watched == m_txtval && event->type() == QEvent::KeyPress &&
      TypesNonHex(*static_cast<QKeyEvent*>(event))) {
    return true;
  }
  return QDialog::eventFilter(watched, event);
}

QAction* AddPatchWindowItem(MainWindow& window, QMenu* menu, Host& host) {
  QAction* action = menu->addAction("Dynamic &patching...");
  window.BindAction(action, "mnu_patch");
  QObject::connect(action, &QAction::triggered, &window, [&window, &host] {
    MainWindowModel& main = window.Model();
    if (!main.Selection() || main.IsZipListing()) return;
    const std::string listText = main.SelectedText();
    auto model = PatchDialogModel::Load(host, main.Settings().Store(),
                                        Utf8ToPath(JoinDirName(main.Diret(), listText)), listText);
    if (!model) {
      host.ShowMessage(model.error().message, MessageIcon::Critical, kAppTitle);
      return;
    }
    PatchWindow dialog(*model, &window);
    dialog.exec();
    main.DynamicPatchesChanged();
    window.Render();
  });
  return action;
}

}  // namespace romsteward::ui
