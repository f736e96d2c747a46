#include "ui/emulator_tabs.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QSignalBlocker>
#include <QSlider>
#include <QVBoxLayout>

#include "core/app/main_window_model.h"
#include "core/launch/option_controls.h"
#include "ui/qt_text.h"

namespace romsteward::ui {

namespace {

static_assert(kTabGenecyst == static_cast<int>(romsteward::EmulatorTab::Genecyst) &&
              kTabGenEm == static_cast<int>(romsteward::EmulatorTab::GenEm) &&
              kTabKGen == static_cast<int>(romsteward::EmulatorTab::KGen) &&
              kTabBlastEm == static_cast<int>(romsteward::EmulatorTab::BlastEm) &&
              kTabMednafen == static_cast<int>(romsteward::EmulatorTab::Mednafen));

// The text of a control in the core's table (every control named here is in it).
QString TooltipOf(std::string_view name) {
  return ToQt(FindOptionControl(name)->tooltip);
}

}  // namespace

EmulatorTabs::EmulatorTabs(MainWindowModel& model, QWidget* parent)
    : QTabWidget(parent), m_model(model) {
  // Inserted in index order, so that the tab index is the stored preferred emulator.
  insertTab(kTabGenecyst, BuildGenecyst(), "Genecyst");
  insertTab(kTabGenEm, BuildGenEm(), "GenEm");
  insertTab(kTabKGen, BuildKGen(), "KGen");
  insertTab(
      kTabBlastEm,
      BuildChecks(kTabBlastEm, {&EmulatorOptions::blastFullscreen, &EmulatorOptions::blastNoSound}),
      "BlastEm");
  insertTab(kTabMednafen,
            BuildChecks(kTabMednafen,
                        {&EmulatorOptions::mednafenFullscreen, &EmulatorOptions::mednafenNoSound,
                         &EmulatorOptions::mednafenFrameSkip}),
            "Mednafen");
  connect(this, &QTabWidget::currentChanged, this, [this](int index) {
    m_model.Options().preferredEmulator = index;
    Changed();
  });
  Load();
}

QCheckBox* EmulatorTabs::AddCheck(QWidget* parent, std::string_view name,
                                  bool EmulatorOptions::*member, std::function<void(bool)> setter) {
  // Captions and tooltips live once, in the core's table of option controls.
  const OptionControl* control = FindOptionControl(name);
  auto* box = new QCheckBox(control ? ToQt(control->caption) : QString(), parent);
  box->setObjectName(ToQt(name));
  if (control) box->setToolTip(ToQt(control->tooltip));
  m_checks.push_back({box, member});
  connect(box, &QCheckBox::toggled, this, [this, member, setter](bool on) {
    if (m_loading) return;
    if (setter) {
      setter(on);
    } else {
      m_model.Options().*member = on;
    }
    Changed();
  });
  return box;
}

QWidget* EmulatorTabs::FrameSkip(QWidget* parent, QSlider*& slider, QLabel*& value,
                                 int EmulatorOptions::*member) {
  auto* row = new QWidget(parent);
  slider = new QSlider(Qt::Horizontal, row);
  slider->setRange(kFrameSkipMin, kFrameSkipMax);
  slider->setPageStep(1);
  slider->setToolTip(TooltipOf("SlidGen"));
  value = new QLabel(row);
  value->setMinimumWidth(value->fontMetrics().horizontalAdvance("00"));
  value->setAlignment(Qt::AlignCenter);
  auto* layout = new QHBoxLayout(row);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(new QLabel("Display every", row));
  layout->addWidget(value);
  layout->addWidget(new QLabel("th frame", row));
  layout->addWidget(slider, 1);
  QLabel* shown = value;
  connect(slider, &QSlider::valueChanged, this, [this, shown, member](int frames) {
    shown->setNum(frames);
    if (m_loading) return;
    m_model.Options().*member = frames;
    Changed();
  });
  return row;
}

QWidget* EmulatorTabs::BuildGenEm() {
  auto* tab = new QWidget(this);
  auto* grid = new QGridLayout(tab);
  grid->addWidget(AddCheck(tab, "chknew", &EmulatorOptions::useGenNew), 0, 0);
  grid->addWidget(FrameSkip(tab, m_slidGen, m_genFrames, &EmulatorOptions::genFrameSkip), 0, 1);
  grid->addWidget(AddCheck(tab, "Check1", &EmulatorOptions::disableJoypad,
                           [this](bool on) { m_model.SetDisableJoypad(on); }),
                  1, 0);
  grid->addWidget(AddCheck(tab, "Check2", &EmulatorOptions::disableSound), 1, 1);
  grid->addWidget(AddCheck(tab, "Check3", &EmulatorOptions::enableZ80,
                           [this](bool on) { m_model.SetEnableZ80(on); }),
                  2, 0);
  grid->addWidget(AddCheck(tab, "Check4", &EmulatorOptions::fakeZ80,
                           [this](bool on) { m_model.SetFakeZ80(on); }),
                  2, 1);
  grid->addWidget(AddCheck(tab, "chkmodex", &EmulatorOptions::modeX), 3, 0);
  grid->setRowStretch(4, 1);
  return tab;
}

QWidget* EmulatorTabs::BuildKGen() {
  auto* tab = new QWidget(this);
  auto* layout = new QVBoxLayout(tab);
  layout->addWidget(FrameSkip(tab, m_slidK, m_kFrames, &EmulatorOptions::kgenFrameSkip));
  layout->addWidget(AddCheck(tab, "chkKSom", &EmulatorOptions::kgenDisableSound));
  layout->addStretch(1);
  return tab;
}

QWidget* EmulatorTabs::BuildGenecyst() {
  auto* tab = new QWidget(this);
  auto* grid = new QGridLayout(tab);
  auto* rate = new QWidget(tab);
  auto* rateRow = new QHBoxLayout(rate);
  rateRow->setContentsMargins(0, 0, 0, 0);
  m_cmbCystSnd = new QComboBox(rate);
  m_cmbCystSnd->setObjectName("cmbCystSnd");
  m_cmbCystSnd->setToolTip(TooltipOf("cmbCystSnd"));
  for (std::string_view item : kCystSoundRates)
    m_cmbCystSnd->addItem(ToQt(item));
  rateRow->addWidget(new QLabel("Sound rate:", rate));
  rateRow->addWidget(m_cmbCystSnd);
  rateRow->addStretch(1);
  connect(m_cmbCystSnd, &QComboBox::currentIndexChanged, this, [this](int index) {
    if (m_loading || index < 0) return;
    m_model.Options().cystSoundRate = index;
    Changed();
  });
  static constexpr std::pair<std::string_view, bool EmulatorOptions::*> kChecks[] = {
      {"cystvsync", &EmulatorOptions::cystWaitVsync},
      {"cystskip", &EmulatorOptions::cystCpuSkipper},
      {"cystexclusive", &EmulatorOptions::cystExclusive},
      {"cystDAC", &EmulatorOptions::cystNoDac},
      {"cystfm", &EmulatorOptions::cystNoFm},
      {"cystforceFM", &EmulatorOptions::cystForceFm},
      {"cystfakez80", &EmulatorOptions::cystFakedZ80},
      {"cystZ80", &EmulatorOptions::cystDisableZ80},
      {"cystTSC", &EmulatorOptions::cystRdtscProfiling},
      {"cystFPU", &EmulatorOptions::cystFpuCopies},
  };
  grid->addWidget(rate, 0, 0, 1, 3);
  int cell = 0;
  for (const auto& [name, member] : kChecks) {
    grid->addWidget(AddCheck(tab, name, member), 1 + cell / 3, cell % 3);
    ++cell;
  }
  grid->setRowStretch(1 + (cell + 2) / 3, 1);
  return tab;
}

QWidget* EmulatorTabs::BuildChecks(int tab,
                                   std::initializer_list<bool EmulatorOptions::*> members) {
  auto* page = new QWidget(this);
  auto* layout = new QVBoxLayout(page);
  auto member = members.begin();
  for (const OptionControl& control : kOptionControls) {
    if (control.tab != tab || member == members.end()) continue;
    layout->addWidget(AddCheck(page, control.name, *member++));
  }
  layout->addStretch(1);
  return page;
}

void EmulatorTabs::Load() {
  m_loading = true;
  const EmulatorOptions& options = m_model.Options();
  for (const BoundCheck& check : m_checks)
    check.box->setChecked(options.*check.member);
  m_slidGen->setValue(options.genFrameSkip);
  m_genFrames->setNum(options.genFrameSkip);
  m_slidK->setValue(options.kgenFrameSkip);
  m_kFrames->setNum(options.kgenFrameSkip);
  m_cmbCystSnd->setCurrentIndex(options.cystSoundRate);
  {
    const QSignalBlocker blocker(this);
    setCurrentIndex(options.preferredEmulator);
  }
  m_loading = false;
}

QCheckBox* EmulatorTabs::Check(const QString& name) const {
  for (const BoundCheck& check : m_checks)
    if (check.box->objectName() == name) return check.box;
  return nullptr;
}

void EmulatorTabs::Changed() {
  // The rules (Z80 against Fake Z80) may have changed another control.
  Load();
  emit optionsChanged();
}

}  // namespace romsteward::ui
