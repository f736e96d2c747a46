#pragma once

#include <QListView>
#include <optional>
#include <string>
#include <vector>

namespace romsteward::ui {

/// The list's own ways with keys and the mouse: Enter and a double click ask for a launch, a
/// right click selects before anything else, a click on blank space or a Ctrl+click never
/// leaves the list without its selection, entries are dragged out only with Shift or Ctrl
/// held, and files dropped from a file manager are handed on. (F5 belongs to the window.)
class RomListView : public QListView {
  Q_OBJECT
public:
  explicit RomListView(QWidget* parent = nullptr);

signals:
  void launchRequested();
  /// nullopt when what was dropped is not a list of local files.
  void filesDropped(const std::optional<std::vector<std::string>>& paths);

protected:
  QItemSelectionModel::SelectionFlags selectionCommand(const QModelIndex& index,
                                                       const QEvent* event) const override;
  void focusInEvent(QFocusEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void startDrag(Qt::DropActions actions) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dragMoveEvent(QDragMoveEvent* event) override;
  void dropEvent(QDropEvent* event) override;
};

/// The local files a drop carries, or nullopt when it carries anything else.
std::optional<std::vector<std::string>> DroppedFiles(const QMimeData& mime);

}  // namespace romsteward::ui
