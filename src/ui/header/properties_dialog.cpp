#include "ui/header/properties_dialog.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "ui/qt_text.h"

namespace romsteward::ui {

PropertiesDialog::PropertiesDialog(const QString& name, const std::vector<PropertyRow>& rows,
                                   QWidget* parent)
    : QDialog(parent) {
  setObjectName("frmProperties");
  setWindowTitle("Properties of " + name);
  auto* form = new QFormLayout;
  form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
  for (const PropertyRow& row : rows) {
    auto* value = new QLabel(ToQt(row.value), this);
    // Named by the label, so tests and users' scripts find a value by what it is.
    value->setObjectName("lbl" + ToQt(row.label).remove(':').remove(' ').remove('-'));
    value->setTextInteractionFlags(Qt::TextSelectableByMouse);
    value->setWordWrap(row.value.size() > 60 && row.value.find(' ') != std::string::npos);
    form->addRow(ToQt(row.label), value);
  }
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
  buttons->button(QDialogButtonBox::Close)->setText("&Close");
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  auto* layout = new QVBoxLayout(this);
  layout->addLayout(form);
  layout->addWidget(buttons);
}

}  // namespace romsteward::ui
