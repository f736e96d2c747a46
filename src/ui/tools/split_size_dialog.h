#pragma once

#include <QDialog>

class QButtonGroup;
class QLineEdit;

namespace romsteward {
class SplitSizeChooser;
}

namespace romsteward::ui {

/// The split size chooser (`frmsplittam`) over the core's SplitSizeChooser: twelve sizes and
/// "Custom:" as radio buttons, the custom field with its spin buttons, OK and Cancel. OK
/// asks the chooser; a refusal is shown and the dialog stays open. Size() is the accepted
/// size in megabits, SplitSizeChooser::kCancelled after Cancel or closing.
class SplitSizeDialog : public QDialog {
  Q_OBJECT
public:
  explicit SplitSizeDialog(SplitSizeChooser& chooser, QWidget* parent = nullptr);

  int Size() const { return m_size; }

protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

private:
  void ShowChooser();
  void EditCustomText(const QString& text);
  void Ok();

  SplitSizeChooser& m_chooser;
  QButtonGroup* m_tam = nullptr;
  QLineEdit* m_text1 = nullptr;
  int m_size;
};

}  // namespace romsteward::ui
