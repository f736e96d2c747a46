#include "ui/manual_window.h"

#include <QDir>
#include <QFileInfo>
#include <QUrl>

#include "ui/screen_place.h"

namespace romsteward::ui {

namespace {

constexpr const char* kManualPage = "desktop.md";

}  // namespace

QStringList ManualPlaces(const QString& programDirectory) {
  const QDir program(programDirectory);
  return {QDir::cleanPath(program.filePath("doc")),
          QDir::cleanPath(program.filePath("../share/doc/romsteward"))};
}

QString FindManual(const QString& programDirectory) {
  for (const QString& place : ManualPlaces(programDirectory)) {
    const QFileInfo page(QDir(place).filePath(kManualPage));
    if (page.isFile() && page.isReadable()) return page.filePath();
  }
  return {};
}

ManualWindow::ManualWindow(QWidget* parent) : QTextBrowser(parent) {
  setObjectName("frmManual");
  setWindowFlag(Qt::Window);
  setWindowTitle("Manual");
  setOpenExternalLinks(true);
  resize(760, 600);
}

bool ManualWindow::Open(const QString& page) {
  const QFileInfo file(page);
  if (!file.isFile() || !file.isReadable()) return false;
  setSearchPaths({file.absolutePath()});
  setSource(QUrl::fromLocalFile(file.absoluteFilePath()));
  if (!isVisible()) {
    // Over the main window, where it is seen, and whole on that screen.
    const QWidget* main = parentWidget();
    PlaceOnScreen(*this, main ? main->frameGeometry().topLeft() + QPoint(40, 40) : pos());
  }
  show();
  raise();
  activateWindow();
  return true;
}

}  // namespace romsteward::ui
