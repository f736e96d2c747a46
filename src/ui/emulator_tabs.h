#pragma once

#include <QTabWidget>
#include <functional>
#include <initializer_list>
#include <string_view>

class QCheckBox;
class QComboBox;
class QLabel;
class QSlider;

namespace romsteward {
class MainWindowModel;
struct EmulatorOptions;
}  // namespace romsteward

namespace romsteward::ui {

/// The tabs of the emulator strip, in the order of the stored preferred emulator
/// (`prefemu`): the index of a tab is the value saved for it.
enum EmulatorTab {
  kTabGenecyst = 0,
  kTabGenEm = 1,
  kTabKGen = 2,
  kTabBlastEm = 3,
  kTabMednafen = 4
};

/// The emulator tab strip: every option control of the GenEm, KGen and Genecyst tabs, and of
/// the BlastEm and Mednafen tabs beside them, bound
/// to the app model's option set. A change goes straight into the model (through its rules
/// where there are some); Load() shows the model's values again.
class EmulatorTabs : public QTabWidget {
  Q_OBJECT
public:
  explicit EmulatorTabs(MainWindowModel& model, QWidget* parent = nullptr);

  /// Shows the option set of the model.
  void Load();

  /// A check box by its control name ("Check1", "cystfakez80"), for tests and the launch
  /// wiring; nullptr for an unknown name.
  QCheckBox* Check(const QString& name) const;
  QSlider* GenSlider() const { return m_slidGen; }
  QSlider* KSlider() const { return m_slidK; }
  QComboBox* SoundRate() const { return m_cmbCystSnd; }

signals:
  /// An option changed through a control (the window shows what the rules changed).
  void optionsChanged();

private:
  struct BoundCheck {
    QCheckBox* box;
    bool EmulatorOptions::*member;
  };
  QWidget* BuildGenEm();
  QWidget* BuildKGen();
  QWidget* BuildGenecyst();
  /// A tab of check boxes only, captions and tooltips from the core's control table.
  QWidget* BuildChecks(int tab, std::initializer_list<bool EmulatorOptions::*> members);
  QCheckBox* AddCheck(QWidget* parent, std::string_view name, bool EmulatorOptions::*member,
                      std::function<void(bool)> setter = {});
  QWidget* FrameSkip(QWidget* parent, QSlider*& slider, QLabel*& value,
                     int EmulatorOptions::*member);
  void Changed();

  MainWindowModel& m_model;
  std::vector<BoundCheck> m_checks;
  QSlider* m_slidGen = nullptr;
  QSlider* m_slidK = nullptr;
  QLabel* m_genFrames = nullptr;
  QLabel* m_kFrames = nullptr;
  QComboBox* m_cmbCystSnd = nullptr;
  bool m_loading = false;
};

}  // namespace romsteward::ui
