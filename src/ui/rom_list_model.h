#pragma once

#include <QAbstractListModel>
#include <string>
#include <vector>

namespace romsteward {
class MainWindowModel;
}

namespace romsteward::ui {

/// The ROM list as Qt sees it: the app model's entries, the full name as the tooltip, and
/// the files behind the entries for dragging them out (not the members of an archive).
class RomListModel : public QAbstractListModel {
  Q_OBJECT
public:
  explicit RomListModel(MainWindowModel& model, QObject* parent = nullptr);

  int rowCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  Qt::ItemFlags flags(const QModelIndex& index) const override;
  QStringList mimeTypes() const override;
  QMimeData* mimeData(const QModelIndexList& indexes) const override;
  Qt::DropActions supportedDragActions() const override;

  /// Brings the rows in line with the app model; resets the view only when the entries
  /// changed, so a selection change does not rebuild the list.
  void Sync();

private:
  MainWindowModel& m_model;
  std::vector<std::string> m_shown;
};

}  // namespace romsteward::ui
