#include "ui/main_window.h"

#include <QAction>
#include <QCheckBox>
#include <QCloseEvent>
#include <QComboBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QItemSelectionModel>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QShortcut>
#include <QSignalBlocker>
#include <QSplitter>
#include <QSystemTrayIcon>
#include <QVBoxLayout>

#include "ui/emulator_tabs.h"
#include "ui/qt_text.h"
#include "ui/rom_list_model.h"
#include "ui/rom_list_view.h"

namespace romsteward::ui {

namespace {

void SetItems(QComboBox* combo, const std::vector<std::string>& items, int current) {
  const QSignalBlocker blocker(combo);
  combo->clear();
  for (const std::string& item : items)
    combo->addItem(ToQt(item));
  combo->setCurrentIndex(current);
}

QLabel* PanelField(QWidget* parent, const char* name) {
  auto* label = new QLabel(parent);
  label->setObjectName(name);
  label->setTextInteractionFlags(Qt::TextSelectableByMouse);
  return label;
}

// Rows of controls on a panel of their own, so that the arrangement can move them as one.
QWidget* RowPanel(QWidget* parent, const char* name, std::initializer_list<QLayout*> rows) {
  auto* panel = new QWidget(parent);
  panel->setObjectName(name);
  auto* layout = new QVBoxLayout(panel);
  layout->setContentsMargins(0, 0, 0, 0);
  for (QLayout* row : rows)
    layout->addLayout(row);
  return panel;
}

}  // namespace

MainWindow::MainWindow(Host& host, AppSettings& settings, FileOperations& operations,
                       QWidget* parent)
    : QMainWindow(parent), m_host(host), m_model(host, settings, &operations) {
  setObjectName("launch");
  m_listModel = new RomListModel(m_model, this);
  m_listView = new RomListView(this);
  m_listView->setObjectName("List1");
  m_listView->setModel(m_listModel);
  m_txtFiles = PanelField(this, "txtFiles");

  auto* listSide = new QWidget(this);
  auto* listLayout = new QVBoxLayout(listSide);
  listLayout->setContentsMargins(0, 0, 0, 0);
  listLayout->addWidget(m_listView, 1);
  listLayout->addWidget(m_txtFiles);

  auto* splitter = new QSplitter(this);
  splitter->addWidget(listSide);
  splitter->addWidget(BuildPanel());
  splitter->setStretchFactor(0, 2);
  splitter->setStretchFactor(1, 3);
  splitter->setChildrenCollapsible(false);
  auto* central = new QWidget(this);
  auto* centralLayout = new QVBoxLayout(central);
  centralLayout->setContentsMargins(6, 6, 6, 6);
  centralLayout->addWidget(splitter);
  setCentralWidget(central);
  BuildMenus();

  // The model follows the highlighted entry, not the current one: the view moves its current
  // row on its own (to the first entry when it gets the focus) without selecting it.
  connect(m_listView->selectionModel(), &QItemSelectionModel::selectionChanged, this, [this] {
    if (m_rendering) return;
    Run([this] { m_model.Select(ShownSelection()); });
  });
  connect(m_listView, &RomListView::launchRequested, this, &MainWindow::launchRequested);
  connect(m_listView, &RomListView::filesDropped, this,
          [this](const std::optional<std::vector<std::string>>& paths) {
            Run([this, paths] { m_model.DropFiles(paths); });
          });
  auto* rescan = new QShortcut(QKeySequence(Qt::Key_F5), this);
  connect(rescan, &QShortcut::activated, this,
          [this] { Run([this] { m_model.RefreshRomList(); }); });
  resize(820, 440);
}

MainWindow::~MainWindow() = default;

QWidget* MainWindow::BuildPanel() {
  auto* panel = new QWidget(this);

  auto* info = new QGroupBox("ROM information", panel);
  info->setObjectName("Picture1");
  auto* form = new QFormLayout(info);
  m_txtTipo = PanelField(info, "txtTipo");
  m_txtbits = PanelField(info, "txtbits");
  m_txtRAM = PanelField(info, "txtRAM");
  m_txtarquivo = PanelField(info, "txtarquivo");
  form->addRow(m_txtTipo);
  auto* sizes = new QHBoxLayout;
  sizes->addWidget(m_txtbits);
  sizes->addWidget(m_txtRAM);
  sizes->addWidget(m_txtarquivo, 1, Qt::AlignRight);
  form->addRow(sizes);

  m_cmbSave = new QComboBox(info);
  m_cmbSave->setObjectName("cmbSave");
  m_cmdDeletaSave = new QPushButton("Delete", info);
  m_cmdDeletaSave->setObjectName("cmdDeletaSave");
  m_cmdDeletaSave->setToolTip("Delete the chosen saved game");
  BindButton(m_cmdDeletaSave, "cmdDeletaSave");
  auto* saves = new QHBoxLayout;
  saves->addWidget(m_cmbSave, 1);
  saves->addWidget(m_cmdDeletaSave);
  form->addRow("Saved Games:", saves);
  connect(m_cmdDeletaSave, &QPushButton::clicked, this, [this] {
    const int index = m_cmbSave->currentIndex();
    if (index >= 0)
      Run([this, index] { m_model.DeleteSavedGame(static_cast<std::size_t>(index)); });
  });

  m_tabs = new EmulatorTabs(m_model, panel);
  m_tabs->setObjectName("Picture2");
  connect(m_tabs, &EmulatorTabs::optionsChanged, this, &MainWindow::Render);

  m_cmbCartLang = new QComboBox(panel);
  m_cmbCartLang->setObjectName("cmbCartLang");
  m_cmbCartLang->setToolTip("Game main country lock");
  m_cmdForce = new QPushButton("Force another language", panel);
  m_cmdForce->setObjectName("CmdForce");
  BindButton(m_cmdForce, "CmdForce");
  m_chkIPS = new QCheckBox("Activate dynamic patch", panel);
  m_chkIPS->setObjectName("chkIPS");
  m_txtCmd = new QLineEdit(panel);
  m_txtCmd->setObjectName("txtCmd");
  connect(m_cmbCartLang, &QComboBox::currentIndexChanged, this,
          [this](int index) { m_model.ChooseCountry(index); });
  connect(m_cmdForce, &QPushButton::clicked, this,
          [this] { Run([this] { m_model.ForceAnotherLanguage(); }); });
  connect(m_chkIPS, &QCheckBox::toggled, this,
          [this](bool on) { m_model.Options().activateDynamicPatch = on; });
  connect(m_txtCmd, &QLineEdit::textEdited, this,
          [this](const QString& text) { m_model.SetExtraCommandLine(FromQt(text)); });

  auto* country = new QHBoxLayout;
  country->addWidget(new QLabel("Country:", panel));
  country->addWidget(m_cmbCartLang, 1);
  country->addWidget(m_cmdForce);
  auto* extra = new QHBoxLayout;
  extra->addWidget(new QLabel("Additional Comand-line:", panel));
  extra->addWidget(m_txtCmd, 1);
  m_launchRow = new QHBoxLayout;
  m_launchRow->addWidget(m_chkIPS);
  m_launchRow->addStretch(1);

  // The tabs take the height the other rows leave, so a maximized window has no empty half.
  auto* layout = new QVBoxLayout(panel);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(info);
  layout->addWidget(m_tabs, 1);
  layout->addWidget(RowPanel(panel, "Picture3", {country, extra}));
  layout->addWidget(RowPanel(panel, "Picture5", {m_launchRow}));
  return panel;
}

void MainWindow::Run(const std::function<void()>& command) {
  command();
  Render();
}

void MainWindow::Start() {
  Run([this] { m_model.Start(); });
}

void MainWindow::Render() {
  // Showing the model moves the list's current row; that must not run a command again.
  m_rendering = true;
  setWindowTitle(ToQt(m_model.Texts().caption));
  RenderSelection();
  RenderPanel();
  for (const auto& [action, name] : m_bound) {
    const ControlState& state = m_model.Controls()[name];
    if (!state.caption.empty()) {
      QString caption = ToQt(state.caption);
      // A path in the history is shown as it is, not read for access keys.
      if (name.starts_with("mnu_dirs(")) caption.replace('&', "&&");
      action->setText(caption);
    }
    action->setEnabled(state.enabled);
    if (action->isCheckable()) action->setChecked(state.checked);
    action->setVisible(state.visible);
  }
  for (const auto& [button, name] : m_boundButtons) {
    const ControlState& state = m_model.Controls()[name];
    if (!state.caption.empty()) button->setText(ToQt(state.caption));
    button->setEnabled(state.enabled);
    button->setVisible(state.visible);
  }
  m_rendering = false;
  emit rendered();
}

std::optional<std::size_t> MainWindow::ShownSelection() const {
  const QModelIndexList rows = m_listView->selectionModel()->selectedRows();
  if (rows.size() != 1) return std::nullopt;
  return static_cast<std::size_t>(rows.front().row());
}

void MainWindow::RenderSelection() {
  m_listModel->Sync();
  const std::optional<std::size_t> selection = m_model.Selection();
  if (ShownSelection() == selection) return;
  QItemSelectionModel* selectionModel = m_listView->selectionModel();
  if (selection) {
    const QModelIndex index = m_listModel->index(static_cast<int>(*selection));
    selectionModel->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect);
    m_listView->scrollTo(index);
  } else {
    selectionModel->clear();
  }
}

void MainWindow::RenderPanel() {
  const WindowTexts& texts = m_model.Texts();
  const WindowControls& controls = m_model.Controls();
  m_txtFiles->setText(ToQt(texts.txtFiles));
  m_txtTipo->setText(ToQt(texts.txtTipo));
  m_txtbits->setText(ToQt(texts.txtbits));
  m_txtRAM->setText(ToQt(texts.txtRAM));
  m_txtarquivo->setText(ToQt(texts.txtarquivo));
  switch (texts.txtarquivoColour) {
    case TextColour::Red:
      m_txtarquivo->setStyleSheet("color: rgb(255, 0, 0);");
      break;
    case TextColour::Blue:
      m_txtarquivo->setStyleSheet("color: rgb(0, 0, 255);");
      break;
    case TextColour::Normal:
      m_txtarquivo->setStyleSheet({});
      break;
  }
  SetItems(m_cmbSave, texts.cmbSave, texts.cmbSave.empty() ? -1 : 0);
  m_cmbSave->setEnabled(controls["cmbSave"].enabled);
  SetItems(m_cmbCartLang, texts.cmbCartLang, m_model.CountryIndex());
  m_cmbCartLang->setEnabled(controls["cmbCartLang"].enabled);
  {
    const QSignalBlocker blocker(m_chkIPS);
    m_chkIPS->setChecked(m_model.Options().activateDynamicPatch);
    m_chkIPS->setEnabled(controls["chkIPS"].enabled);
  }
  if (m_txtCmd->text() != ToQt(m_model.ExtraCommandLine()))
    m_txtCmd->setText(ToQt(m_model.ExtraCommandLine()));
  m_tabs->Load();
}

void MainWindow::BindAction(QAction* action, std::string name) {
  // Other parts find an item by the model's name (the toolbar, tests).
  if (action->objectName().isEmpty()) action->setObjectName(ToQt(name));
  m_bound.emplace_back(action, std::move(name));
}

void MainWindow::BindButton(QAbstractButton* button, std::string name) {
  m_boundButtons.emplace_back(button, std::move(name));
}

void MainWindow::InsertMenu(QMenu* menu) {
  menuBar()->insertMenu(m_helpMenu->menuAction(), menu);
}

QAction* MainWindow::Action(const std::string& name) const {
  for (const auto& [action, bound] : m_bound)
    if (bound == name) return action;
  return nullptr;
}

QMenu* MainWindow::MenuOf(const std::string& name) const {
  QAction* action = Action(name);
  return action ? action->menu() : nullptr;
}

QLabel* MainWindow::Field(const char* name) const {
  return findChild<QLabel*>(name);
}

void MainWindow::closeEvent(QCloseEvent* event) {
  m_model.Close({x(), y()});
  if (m_tray) m_tray->hide();
  event->accept();
}

void MainWindow::changeEvent(QEvent* event) {
  QMainWindow::changeEvent(event);
  if (event->type() == QEvent::WindowStateChange && isMinimized() &&
      m_model.Controls()["mnu_tray"].checked && QSystemTrayIcon::isSystemTrayAvailable())
    HideToTray();
}

void MainWindow::HideToTray() {
  if (!m_tray) {
    m_tray = new QSystemTrayIcon(windowIcon(), this);
    m_tray->setToolTip(windowTitle());
    connect(m_tray, &QSystemTrayIcon::activated, this, [this] {
      showNormal();
      activateWindow();
      m_tray->hide();
    });
  }
  m_tray->show();
  hide();
}

}  // namespace romsteward::ui
