#include "ui/rom_list_model.h"

#include <QMimeData>
#include <QUrl>

#include "core/app/main_window_model.h"
#include "core/common/strings.h"
#include "ui/qt_text.h"

namespace romsteward::ui {

RomListModel::RomListModel(MainWindowModel& model, QObject* parent)
    : QAbstractListModel(parent), m_model(model) {}

int RomListModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(m_shown.size());
}

QVariant RomListModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid() || static_cast<std::size_t>(index.row()) >= m_shown.size()) return {};
  switch (role) {
    case Qt::DisplayRole:
      return ToQt(m_shown[static_cast<std::size_t>(index.row())]);
    case Qt::ToolTipRole:
      return ToQt(m_model.TooltipForRow(index.row()));
    default:
      return {};
  }
}

Qt::ItemFlags RomListModel::flags(const QModelIndex& index) const {
  Qt::ItemFlags flags = QAbstractListModel::flags(index);
  if (index.isValid() && !m_model.IsZipListing()) flags |= Qt::ItemIsDragEnabled;
  return flags | Qt::ItemIsDropEnabled;
}

QStringList RomListModel::mimeTypes() const {
  return {"text/uri-list"};
}

QMimeData* RomListModel::mimeData(const QModelIndexList& indexes) const {
  QList<QUrl> urls;
  for (const QModelIndex& index : indexes) {
    if (!index.isValid()) continue;
    const std::string& name = m_shown[static_cast<std::size_t>(index.row())];
    urls << QUrl::fromLocalFile(ToQt(JoinDirName(m_model.Diret(), name)));
  }
  auto* mime = new QMimeData;
  mime->setUrls(urls);
  return mime;
}

Qt::DropActions RomListModel::supportedDragActions() const {
  return Qt::CopyAction | Qt::MoveAction;
}

void RomListModel::Sync() {
  if (m_shown == m_model.Entries()) return;
  beginResetModel();
  m_shown = m_model.Entries();
  endResetModel();
}

}  // namespace romsteward::ui
