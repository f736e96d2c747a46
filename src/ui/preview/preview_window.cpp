#include "ui/preview/preview_window.h"

#include <QCloseEvent>
#include <QCoreApplication>
#include <QGuiApplication>
#include <QImageReader>
#include <QLabel>
#include <QScreen>
#include <QVBoxLayout>

#include "core/app/main_window_model.h"
#include "core/host/app_title.h"
#include "core/host/host.h"
#include "ui/main_window.h"
#include "ui/qt_text.h"
#include "ui/screen_place.h"

namespace romsteward::ui {

namespace {

constexpr int kFirstSide = 320;
constexpr int kSaveDelayMs = 500;
constexpr int kGap = 8;

}  // namespace

QImage LoadPicture(const QString& path) {
  QImageReader reader(path);
  reader.setAutoTransform(true);
  return reader.read();
}

PreviewWindow::PreviewWindow(MainWindow& window, Host& host)
    : QWidget(&window, Qt::Tool),
      m_window(window),
      m_host(host),
      m_programDirectory(QCoreApplication::applicationDirPath()) {
  setObjectName("frmPreview");
  setWindowTitle("Preview");
  m_view = new QLabel(this);
  m_view->setAlignment(Qt::AlignCenter);
  m_view->setMinimumSize(64, 64);
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(m_view);
  m_saveTimer.setSingleShot(true);
  m_saveTimer.setInterval(kSaveDelayMs);
  connect(&m_saveTimer, &QTimer::timeout, this, &PreviewWindow::SavePosition);
  connect(&window, &MainWindow::rendered, this, &PreviewWindow::Follow);
  // The main window's closing stores this one's place too, without switching it off.
  window.installEventFilter(this);
}

void PreviewWindow::Follow() {
  const std::optional<std::string> path =
      m_window.Model().PreviewPicture(FromQt(m_programDirectory));
  if (!path) {
    hide();
    return;
  }
  const QString key = ToQt(m_window.Model().SelectedText()) + '\n' + ToQt(*path);
  if (key != m_shownKey) {
    // Kept before the message, which lets other events (and Renders) run meanwhile.
    m_shownKey = key;
    m_path = ToQt(*path);
    m_picture = LoadPicture(m_path);
    if (m_picture.isNull()) {
      hide();
      m_host.ShowMessage(kInvalidPicture, MessageIcon::Critical, kAppTitle);
      return;
    }
  }
  if (m_picture.isNull()) return;
  if (!m_placed) PlaceFirstTime();
  Present();
  show();
}

void PreviewWindow::PlaceFirstTime() {
  m_placed = true;
  const QSize first = m_picture.size().scaled(kFirstSide, kFirstSide, Qt::KeepAspectRatio);
  resize(first.expandedTo(m_view->minimumSize()));
  if (const std::optional<WindowPosition> stored = m_window.Model().PreviewPosition()) {
    const QPoint position(stored->x, stored->y);
    // A place on a screen that is gone would leave the window out of reach.
    if (QGuiApplication::screenAt(position)) {
      PlaceOnScreen(*this, position);
      m_savedPosition = position;
      return;
    }
  }
  // Beside the main window on its right, else on its left, else as near as the screen allows.
  const QRect main = m_window.frameGeometry();
  const QScreen* screen = ScreenFor(m_window, main.center());
  const int width = size().grownBy(FrameMargins(*this)).width();
  QPoint beside = main.topRight() + QPoint(kGap + 1, 0);
  if (screen) {
    const QRect area = screen->availableGeometry();
    if (beside.x() + width > area.right() + 1 && main.left() - kGap - width >= area.left())
      beside.setX(main.left() - kGap - width);
  }
  PlaceOnScreen(*this, beside, screen);
}

void PreviewWindow::Present() {
  m_view->setPixmap(QPixmap::fromImage(
      m_picture.scaled(m_view->size(), Qt::KeepAspectRatio, Qt::SmoothTransformation)));
  m_view->setToolTip(m_path);
}

void PreviewWindow::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  if (!m_picture.isNull()) Present();
}

void PreviewWindow::moveEvent(QMoveEvent* event) {
  QWidget::moveEvent(event);
  if (isVisible()) m_saveTimer.start();
}

void PreviewWindow::hideEvent(QHideEvent* event) {
  QWidget::hideEvent(event);
  SavePosition();
}

void PreviewWindow::closeEvent(QCloseEvent* event) {
  SavePosition();
  if (m_window.Model().Controls()["mnu_preview"].checked) {
    m_window.Model().TogglePreview();
    m_window.Render();
  }
  event->accept();
}

bool PreviewWindow::eventFilter(QObject* watched, QEvent* event) {
  if (watched == &m_window && event->type() == QEvent::Close && isVisible()) hide();
  return QWidget::eventFilter(watched, event);
}

void PreviewWindow::SavePosition() {
  m_saveTimer.stop();
  if (!m_placed || m_savedPosition == pos()) return;
  m_savedPosition = pos();
  m_window.Model().SavePreviewPosition({pos().x(), pos().y()});
}

}  // namespace romsteward::ui
