#pragma once

#include <QDialog>

class QLabel;
class QLineEdit;
class QMenu;
class QPushButton;

namespace romsteward {
class Host;
class PatchDialogModel;
}  // namespace romsteward

namespace romsteward::ui {

class MainWindow;

/// The "Dynamic patching" window (`frmpatch`): draws a PatchDialogModel and forwards the
/// fields and commands to it. The value field takes only hexadecimal digits from the keyboard;
/// text reaches it through the get-value command or a paste, and "Convert value to &hexa"
/// turns it into digits.
class PatchWindow : public QDialog {
  Q_OBJECT
public:
  PatchWindow(PatchDialogModel& model, QWidget* parent = nullptr);

  QLineEdit* NameField() const { return m_txtNome; }
  QLineEdit* ValueField() const { return m_txtval; }
  QLineEdit* PositionField() const { return m_txtpos; }
  QMenu* EditMenu() const { return m_editMenu; }

protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

private:
  void ShowValue();

  PatchDialogModel& m_model;
  QLineEdit* m_txtNome = nullptr;
  QLineEdit* m_txtval = nullptr;
  QLineEdit* m_txtpos = nullptr;
  QLabel* m_saved = nullptr;
  QMenu* m_editMenu = nullptr;
};

/// Adds "Dynamic &patching..." (`mnu_patch`) to `menu`: it opens the window modally on the
/// selected image; afterwards "Activate dynamic patch" follows.
QAction* AddPatchWindowItem(MainWindow& window, QMenu* menu, Host& host);

}  // namespace romsteward::ui
