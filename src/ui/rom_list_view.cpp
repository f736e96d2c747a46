#include "ui/rom_list_view.h"

#include <QApplication>
#include <QDropEvent>
#include <QKeyEvent>
#include <QMimeData>
#include <QMouseEvent>
#include <QUrl>

#include "ui/qt_text.h"

namespace romsteward::ui {

std::optional<std::vector<std::string>> DroppedFiles(const QMimeData& mime) {
  if (!mime.hasUrls()) return std::nullopt;
  std::vector<std::string> paths;
  for (const QUrl& url : mime.urls()) {
    if (!url.isLocalFile()) return std::nullopt;
    paths.push_back(FromQt(url.toLocalFile().trimmed()));
  }
  if (paths.empty()) return std::nullopt;
  return paths;
}

RomListView::RomListView(QWidget* parent) : QListView(parent) {
  setSelectionMode(QAbstractItemView::SingleSelection);
  setEditTriggers(QAbstractItemView::NoEditTriggers);
  setUniformItemSizes(true);
  setDragEnabled(true);
  setAcceptDrops(true);
  setDropIndicatorShown(false);
  setDragDropMode(QAbstractItemView::DragDrop);
  setDefaultDropAction(Qt::CopyAction);
}

QItemSelectionModel::SelectionFlags RomListView::selectionCommand(const QModelIndex& index,
                                                                  const QEvent* event) const {
  // As in a list box, the selection stays where it is: the panel and "Run this game!" always
  // stand for the entry the list shows selected.
  if (!index.isValid()) return QItemSelectionModel::NoUpdate;
  const QItemSelectionModel::SelectionFlags flags = QListView::selectionCommand(index, event);
  if (flags & (QItemSelectionModel::Deselect | QItemSelectionModel::Toggle))
    return QItemSelectionModel::ClearAndSelect;
  return flags;
}

void RomListView::focusInEvent(QFocusEvent* event) {
  // The view makes the first entry current when it gets the focus, without selecting it: it
  // would look chosen while nothing is, and Down would skip it. Without a current entry,
  // the first key that moves selects the first entry.
  const bool hadCurrent = currentIndex().isValid();
  QListView::focusInEvent(event);
  if (!hadCurrent && !selectionModel()->hasSelection()) selectionModel()->clearCurrentIndex();
}

void RomListView::keyPressEvent(QKeyEvent* event) {
  switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
      if (selectionModel()->hasSelection()) emit launchRequested();
      return;
    default:
      QListView::keyPressEvent(event);
  }
}

void RomListView::mousePressEvent(QMouseEvent* event) {
  // The right button selects the entry under the pointer first, so that a menu or a
  // command that follows acts on it.
  if (event->button() == Qt::RightButton) {
    const QModelIndex index = indexAt(event->position().toPoint());
    if (index.isValid()) setCurrentIndex(index);
    return;
  }
  QListView::mousePressEvent(event);
}

void RomListView::mouseDoubleClickEvent(QMouseEvent* event) {
  QListView::mouseDoubleClickEvent(event);
  if (event->button() == Qt::LeftButton && indexAt(event->position().toPoint()).isValid())
    emit launchRequested();
}

void RomListView::startDrag(Qt::DropActions actions) {
  // A plain drag would too easily move a ROM by accident: only Shift or Ctrl start one.
  const Qt::KeyboardModifiers held = QGuiApplication::queryKeyboardModifiers();
  if (!(held & (Qt::ShiftModifier | Qt::ControlModifier))) return;
  QListView::startDrag(actions);
}

void RomListView::dragEnterEvent(QDragEnterEvent* event) {
  // Anything may come in: what is not a file list is refused with a message at the drop.
  if (event->source() == this) return event->ignore();
  event->acceptProposedAction();
}

void RomListView::dragMoveEvent(QDragMoveEvent* event) {
  if (event->source() == this) return event->ignore();
  event->acceptProposedAction();
}

void RomListView::dropEvent(QDropEvent* event) {
  if (event->source() == this) return event->ignore();
  event->acceptProposedAction();
  emit filesDropped(DroppedFiles(*event->mimeData()));
}

}  // namespace romsteward::ui
