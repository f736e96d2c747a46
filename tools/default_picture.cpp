// Draws the default preview picture ("romsteward.jpg", shown for a cartridge without one of
// its own) at build time, so the project keeps no binary asset. Only shapes and gradients:
// no fonts, so every machine draws the same pixels.
// Usage: romsteward-picture OUTPUT.jpg
#include <QGuiApplication>
#include <QImage>
#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <cstdio>

namespace {

constexpr int kWidth = 320;
constexpr int kHeight = 240;
constexpr int kQuality = 90;

void DrawCartridge(QPainter& painter) {
  // The shell, its grip ridges and the contacts at the bottom.
  const QRectF shell(70, 28, 180, 190);
  QLinearGradient body(shell.topLeft(), shell.bottomRight());
  body.setColorAt(0, QColor(58, 58, 64));
  body.setColorAt(1, QColor(24, 24, 28));
  painter.setPen(QPen(QColor(90, 90, 100), 2));
  painter.setBrush(body);
  painter.drawRoundedRect(shell, 10, 10);
  painter.setPen(QPen(QColor(80, 80, 90), 3));
  for (int i = 0; i < 5; ++i) {
    const qreal y = 40 + i * 8;
    painter.drawLine(QPointF(88, y), QPointF(232, y));
  }
  painter.setPen(Qt::NoPen);
  painter.setBrush(QColor(196, 160, 64));
  for (int i = 0; i < 14; ++i)
    painter.drawRect(QRectF(92 + i * 10, 206, 6, 12));

  // The label: a sunset over hills, the kind of art old boxes had.
  const QRectF label(88, 86, 144, 104);
  QLinearGradient sky(label.topLeft(), label.bottomLeft());
  sky.setColorAt(0, QColor(40, 30, 110));
  sky.setColorAt(0.6, QColor(230, 90, 60));
  sky.setColorAt(1, QColor(250, 200, 90));
  painter.setBrush(sky);
  painter.drawRoundedRect(label, 4, 4);
  painter.save();
  painter.setClipRect(label);
  painter.setBrush(QColor(255, 235, 150));
  painter.drawEllipse(QPointF(160, 160), 26, 26);
  QPainterPath hills(QPointF(label.left(), label.bottom()));
  hills.cubicTo(QPointF(120, 140), QPointF(150, 190), QPointF(180, 160));
  hills.cubicTo(QPointF(205, 140), QPointF(225, 165), QPointF(label.right(), 150));
  hills.lineTo(label.bottomRight());
  hills.closeSubpath();
  painter.setBrush(QColor(30, 60, 50));
  painter.drawPath(hills);
  painter.restore();
}

}  // namespace

int main(int argc, char** argv) {
  QGuiApplication app(argc, argv);
  if (argc != 2) {
    std::fprintf(stderr, "usage: romsteward-picture OUTPUT.jpg\n");
    return 2;
  }
  QImage image(kWidth, kHeight, QImage::Format_RGB32);
  QPainter painter(&image);
  painter.setRenderHint(QPainter::Antialiasing);
  QLinearGradient background(0, 0, 0, kHeight);
  background.setColorAt(0, QColor(16, 32, 96));
  background.setColorAt(1, QColor(4, 8, 32));
  painter.fillRect(image.rect(), background);
  DrawCartridge(painter);
  painter.end();
  if (!image.save(QString::fromLocal8Bit(argv[1]), "JPG", kQuality)) {
    std::fprintf(stderr, "romsteward-picture: cannot write %s\n", argv[1]);
    return 1;
  }
  return 0;
}
