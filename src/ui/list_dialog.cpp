#include "ui/list_dialog.h"

#include <QDialogButtonBox>
#include <QListView>
#include <QPushButton>
#include <QStringListModel>
#include <QVBoxLayout>

#include "ui/caption_width.h"
#include "ui/qt_text.h"

namespace romsteward::ui {

ListDialog::ListDialog(const QString& title, const std::vector<std::string>& items, QWidget* parent)
    : QDialog(parent) {
  setWindowTitle(title);
  QStringList texts;
  for (const std::string& item : items)
    texts << ToQt(item);
  m_model = new QStringListModel(texts, this);
  m_view = new QListView(this);
  m_view->setModel(m_model);
  m_view->setEditTriggers(QAbstractItemView::NoEditTriggers);
  if (!texts.isEmpty()) m_view->setCurrentIndex(m_model->index(0));

  auto* buttons = new QDialogButtonBox(this);
  QPushButton* choose = buttons->addButton(tr("&Choose"), QDialogButtonBox::AcceptRole);
  buttons->addButton(tr("&Done"), QDialogButtonBox::RejectRole);
  choose->setEnabled(!texts.isEmpty());
  connect(buttons, &QDialogButtonBox::accepted, this, &ListDialog::ChooseCurrent);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  connect(m_view, &QListView::doubleClicked, this, &ListDialog::ChooseCurrent);

  auto* layout = new QVBoxLayout(this);
  layout->addWidget(m_view);
  layout->addWidget(buttons);
  WidenToCaption(*this);
}

void ListDialog::ChooseCurrent() {
  const QModelIndex current = m_view->currentIndex();
  if (!current.isValid()) return;
  m_choice = FromQt(current.data().toString());
  accept();
}

}  // namespace romsteward::ui
