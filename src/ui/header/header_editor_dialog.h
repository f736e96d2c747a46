#pragma once

#include <QDialog>
#include <map>
#include <span>

#include "core/cart/header_edit.h"

class QCheckBox;
class QFormLayout;
class QGroupBox;
class QLabel;
class QLineEdit;

namespace romsteward {
class Host;
}

namespace romsteward::ui {

/// The header editor: a form over a HeaderEditor. Save hands every field to the editor,
/// shows the first refusal and stays open, and closes once the image holds the new header.
class HeaderEditorDialog : public QDialog {
  Q_OBJECT
public:
  HeaderEditorDialog(HeaderEditor& editor, Host& host, QWidget* parent = nullptr);

  QLineEdit* TextField(HeaderText id) const { return m_texts.at(id); }
  QLineEdit* AddressField(HeaderAddress id) const { return m_addresses.at(id); }

private:
  QGroupBox* Group(const QString& title, std::span<const HeaderText> texts,
                   std::span<const HeaderAddress> addresses, bool checksum);
  QGroupBox* CodeGroup(const QString& title, HeaderText field, std::span<const HeaderCode> codes,
                       int columns);
  void Save();
  /// Shows `status`'s refusal and puts the cursor in `field`; true when there was none.
  bool Accepted(const Status& status, QLineEdit* field);

  HeaderEditor& m_editor;
  Host& m_host;
  std::map<HeaderText, QLineEdit*> m_texts;
  std::map<HeaderAddress, QLineEdit*> m_addresses;
  QLineEdit* m_checksum = nullptr;
  QLabel* m_makerDate = nullptr;
  QCheckBox* m_fixChecksum = nullptr;
};

}  // namespace romsteward::ui
