#pragma once

#include <QImage>
#include <QPoint>
#include <QString>
#include <QTimer>
#include <QWidget>
#include <optional>

class QLabel;

namespace romsteward {
class Host;
}

namespace romsteward::ui {

class MainWindow;

/// The picture file at `path`, oriented as its metadata says; a null image when it cannot
/// be decoded.
QImage LoadPicture(const QString& path);

/// The preview picture: a small tool window beside the main window that shows the selected
/// cartridge's picture scaled with its aspect kept. It follows the model after every Render
/// (shown while "&Activated" is checked and the selection has a picture) and keeps its place
/// in `prevX`, `prevY`. Closing it switches the preview off.
class PreviewWindow : public QWidget {
  Q_OBJECT
public:
  PreviewWindow(MainWindow& window, Host& host);

  /// Shows the model's picture, or hides when there is none. A picture that cannot be
  /// decoded is reported once per selected entry and path.
  void Follow();
  /// Reads the picture again at the next Follow, even when its path is the same.
  void Forget() { m_shownKey.clear(); }
  /// Where the default picture is looked for: the program's directory unless told otherwise.
  void SetProgramDirectory(QString directory) { m_programDirectory = std::move(directory); }
  /// The file shown now, empty while hidden.
  QString ShownPath() const { return isVisible() ? m_path : QString(); }

protected:
  void resizeEvent(QResizeEvent* event) override;
  void moveEvent(QMoveEvent* event) override;
  void hideEvent(QHideEvent* event) override;
  void closeEvent(QCloseEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

private:
  void Present();
  void PlaceFirstTime();
  void SavePosition();

  MainWindow& m_window;
  Host& m_host;
  QString m_programDirectory;
  QLabel* m_view = nullptr;
  QImage m_picture;
  QString m_path;
  // The selected entry and path last read, so a Render that changed neither reads nothing.
  QString m_shownKey;
  bool m_placed = false;
  std::optional<QPoint> m_savedPosition;
  // Moves come in bursts while the window is dragged: the position is stored once it rests.
  QTimer m_saveTimer;
};

}  // namespace romsteward::ui
