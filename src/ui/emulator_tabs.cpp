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

constexpr const char* kFrameSkipTip = "Number of frames to skip (1=no skip)";

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

QCheckBox* EmulatorTabs::AddCheck(QWidget* parent, const char* name, const char* caption,
                                  const char* tooltip, bool EmulatorOptions::*member,
                                  std::function<void(bool)> setter) {
  auto* box = new QCheckBox(caption, parent);
  box->setObjectName(name);
  box->setToolTip(tooltip);
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
  slider->setToolTip(kFrameSkipTip);
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
  grid->addWidget(AddCheck(tab, "chknew", "Use GenNew", "Use the faster and buggier GenEm version",
                           &EmulatorOptions::useGenNew),
                  0, 0);
  grid->addWidget(FrameSkip(tab, m_slidGen, m_genFrames, &EmulatorOptions::genFrameSkip), 0, 1);
  grid->addWidget(
      AddCheck(tab, "Check1", "Disable &Joypad", "Disable PC-joypad support",
               &EmulatorOptions::disableJoypad, [this](bool on) { m_model.SetDisableJoypad(on); }),
      1, 0);
  grid->addWidget(AddCheck(tab, "Check2", "Disable &Sound", "Disable all sound",
                           &EmulatorOptions::disableSound),
                  1, 1);
  grid->addWidget(
      AddCheck(tab, "Check3", "Enable Z80", "Enable Z80 Co-processor emulation needed for sound",
               &EmulatorOptions::enableZ80, [this](bool on) { m_model.SetEnableZ80(on); }),
      2, 0);
  grid->addWidget(
      AddCheck(tab, "Check4", "Fake Z80",
               "Fake the Z80 coprocessor emulation so the games that require it run anyway",
               &EmulatorOptions::fakeZ80, [this](bool on) { m_model.SetFakeZ80(on); }),
      2, 1);
  grid->addWidget(AddCheck(tab, "chkmodex", "320x240 resolution", "Use ModeX,  a slower video mode",
                           &EmulatorOptions::modeX),
                  3, 0);
  grid->setRowStretch(4, 1);
  return tab;
}

QWidget* EmulatorTabs::BuildKGen() {
  auto* tab = new QWidget(this);
  auto* layout = new QVBoxLayout(tab);
  layout->addWidget(FrameSkip(tab, m_slidK, m_kFrames, &EmulatorOptions::kgenFrameSkip));
  layout->addWidget(AddCheck(tab, "chkKSom", "Disable Sound", "Disable all sound, but not the Z80",
                             &EmulatorOptions::kgenDisableSound));
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
  m_cmbCystSnd->setToolTip("Set the sound quality");
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
  struct GenecystCheck {
    const char* name;
    const char* caption;
    const char* tooltip;
    bool EmulatorOptions::*member;
  };
  static constexpr GenecystCheck kChecks[] = {
      {"cystvsync", "Wait V. sync", "Wait for the vertical sync to draw frames",
       &EmulatorOptions::cystWaitVsync},
      {"cystskip", "CPU skipper",
       "Prevents idle loops in rom code, just for fast machines! Can introduce a compatibility "
       "problems...",
       &EmulatorOptions::cystCpuSkipper},
      {"cystexclusive", "Exclusive mode", "Freezes all windows programs to run faster",
       &EmulatorOptions::cystExclusive},
      {"cystDAC", "No DAC", "Disable all DAC sound", &EmulatorOptions::cystNoDac},
      {"cystfm", "No FM", "Disable all FM sound", &EmulatorOptions::cystNoFm},
      {"cystforceFM", "Force FM", "Forces the FM emulation on even if OPL3 is not detected",
       &EmulatorOptions::cystForceFm},
      {"cystfakez80", "Enable Faked Z80", "If a game locks without Z80, try this",
       &EmulatorOptions::cystFakedZ80},
      {"cystZ80", "Disable Z80", "Its emulation is needed for sound",
       &EmulatorOptions::cystDisableZ80},
      {"cystTSC", "Enable RDTSC profiling", "Don't use it in non-pentium processors!",
       &EmulatorOptions::cystRdtscProfiling},
      {"cystFPU", "Enable FPU copies", "Video Speed-up for Pentium processors",
       &EmulatorOptions::cystFpuCopies},
  };
  grid->addWidget(rate, 0, 0, 1, 3);
  int cell = 0;
  for (const GenecystCheck& check : kChecks) {
    grid->addWidget(AddCheck(tab, check.name, check.caption, check.tooltip, check.member),
                    1 + cell / 3, cell % 3);
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
    const std::string name(control.name), caption(control.caption), tooltip(control.tooltip);
    layout->addWidget(AddCheck(page, name.c_str(), caption.c_str(), tooltip.c_str(), *member++));
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
