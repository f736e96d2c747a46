#include "ui/report/report_editor.h"

#include <QDialogButtonBox>
#include <QFontDatabase>
#include <QMenu>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include "core/host/host.h"
#include "core/settings/app_settings.h"
#include "core/tools/report_form.h"
#include "ui/main_window.h"
#include "ui/qt_text.h"

namespace romsteward::ui {

ReportEditor::ReportEditor(RomListForm& form, Host& host, const AppSettings& settings,
                           RomListSource source, QWidget* parent)
    : QDialog(parent),
      m_form(form),
      m_host(host),
      m_settings(settings),
      m_source(std::move(source)) {
  setObjectName("frmLista");
  setWindowTitle("Create ROM list");

  m_text = new QPlainTextEdit(this);
  m_text->setObjectName("Text1");
  m_text->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
  m_text->setLineWrapMode(QPlainTextEdit::NoWrap);
  ShowTemplate();

  auto* bar = new QMenuBar(this);
  QMenu* script = bar->addMenu("&Script");
  QMenu* insert = bar->addMenu("&Insert");
  BuildMenus(script, insert, bar->addMenu("&Options"));

  auto* buttons = new QDialogButtonBox(this);
  QPushButton* create = buttons->addButton("C&reate list...", QDialogButtonBox::ActionRole);
  create->setObjectName("Command2");
  create->setToolTip("Writes the list of every ROM listed in the main window");
  buttons->addButton("&Close", QDialogButtonBox::RejectRole);

  auto* layout = new QVBoxLayout(this);
  layout->setMenuBar(bar);
  layout->addWidget(m_text, 1);
  layout->addWidget(buttons);

  connect(m_text, &QPlainTextEdit::textChanged, this, &ReportEditor::TakeTemplate);
  connect(create, &QPushButton::clicked, this,
          [this] { m_form.CreateList(m_host, m_settings, m_source); });
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  resize(640, 520);
  m_text->setFocus();
}

void ReportEditor::BuildMenus(QMenu* script, QMenu* insert, QMenu* options) {
  QAction* open = script->addAction("Open...");
  open->setObjectName("mnu_open");
  connect(open, &QAction::triggered, this, [this] {
    m_form.OpenScript(m_host);
    ShowTemplate();
  });
  QAction* save = script->addAction("Save...");
  save->setObjectName("mnu_save");
  connect(save, &QAction::triggered, this, [this] { m_form.SaveScript(m_host); });

  // The two header names sit under "&Game name"; everything else is an item of its own.
  QMenu* gameName = nullptr;
  for (const InsertMenuItem& item : ReportInsertMenu()) {
    const bool name = item.text == PlaceholderText(Placeholder::NameDomestic) ||
                      item.text == PlaceholderText(Placeholder::NameOverseas);
    if (name && !gameName) gameName = insert->addMenu("&Game name");
    QAction* action = (name ? gameName : insert)->addAction(ToQt(item.caption));
    const QString text = ToQt(item.text);
    action->setObjectName("mnu_ins" + QString(text).remove('%').remove('-'));
    connect(action, &QAction::triggered, this, [this, text] {
      m_text->insertPlainText(text);
      m_text->setFocus();
    });
  }

  QMenu* romName = options->addMenu("&Name do Include");
  m_domestic = romName->addAction("&Domestic");
  m_overseas = romName->addAction("&Overseas");
  m_domestic->setObjectName("mnu_subname(0)");
  m_overseas->setObjectName("mnu_subname(1)");
  for (QAction* choice : {m_domestic, m_overseas}) {
    choice->setCheckable(true);
    const RomNameChoice value =
        choice == m_domestic ? RomNameChoice::Domestic : RomNameChoice::Overseas;
    connect(choice, &QAction::triggered, this, [this, value] {
      m_form.ChooseRomName(m_host, value);
      ShowRomNameChoice();
    });
  }
  ShowRomNameChoice();
}

void ReportEditor::ShowRomNameChoice() {
  m_domestic->setChecked(m_form.RomName() == RomNameChoice::Domestic);
  m_overseas->setChecked(m_form.RomName() == RomNameChoice::Overseas);
}

void ReportEditor::ShowTemplate() {
  QString text = ToQt(m_form.Text());
  m_crlf = text.contains("\r\n");
  text.replace("\r\n", "\n");
  const QSignalBlocker blocker(m_text);
  m_text->setPlainText(text);
}

void ReportEditor::TakeTemplate() {
  QString text = m_text->toPlainText();
  if (m_crlf) text.replace("\n", "\r\n");
  m_form.SetText(FromQt(text));
}

QAction* AddRomListItem(MainWindow& window, QMenu* menu, Host& host) {
  QAction* action = menu->addAction("Create ROM List...");
  window.BindAction(action, "mnu_lista");
  QObject::connect(action, &QAction::triggered, &window, [&window, &host] {
    MainWindowModel& main = window.Model();
    RomListSource source{main.Diret(), main.IsZipListing(), main.Entries()};
    RomListForm form;
    ReportEditor editor(form, host, main.Settings(), std::move(source), &window);
    editor.exec();
  });
  return action;
}

}  // namespace romsteward::ui
