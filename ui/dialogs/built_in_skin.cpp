#include "ui/dialogs/built_in_skin.h"

#include <QHash>
#include <QLinearGradient>
#include <QPainter>

namespace dorvane {

namespace {

constexpr int kScale = 2;
constexpr double kBorder = 3;
const QColor kTitleTop(92, 110, 140);
const QColor kTitleBottom(58, 72, 98);
const QColor kEdge(46, 58, 80);

using PaintPicture = void (*)(QPainter& painter, const QRectF& rect);

void PaintTitle(QPainter& painter, const QRectF& rect) {
  QLinearGradient shade(rect.topLeft(), rect.bottomLeft());
  shade.setColorAt(0, kTitleTop);
  shade.setColorAt(1, kTitleBottom);
  painter.fillRect(rect, shade);
}

void PaintLeftEdge(QPainter& painter, const QRectF& rect) {
  painter.fillRect(QRectF(rect.left(), rect.top(), kBorder, rect.height()), kEdge);
}

void PaintRightEdge(QPainter& painter, const QRectF& rect) {
  painter.fillRect(QRectF(rect.right() - kBorder, rect.top(), kBorder, rect.height()), kEdge);
}

void PaintBottomEdge(QPainter& painter, const QRectF& rect) {
  painter.fillRect(QRectF(rect.left(), rect.bottom() - kBorder, rect.width(), kBorder), kEdge);
}

void PaintBottomLeft(QPainter& painter, const QRectF& rect) {
  PaintLeftEdge(painter, rect);
  PaintBottomEdge(painter, rect);
}

void PaintBottomRight(QPainter& painter, const QRectF& rect) {
  PaintRightEdge(painter, rect);
  PaintBottomEdge(painter, rect);
}

// The face of a title-bar button; leaves the pen for its symbol and returns the symbol's place.
QRectF PaintFace(QPainter& painter, const QRectF& rect, const QColor& face) {
  painter.setPen(Qt::NoPen);
  painter.setBrush(face);
  painter.drawRoundedRect(rect, 3, 3);
  painter.setPen(QPen(Qt::white, 1.6, Qt::SolidLine, Qt::RoundCap));
  painter.setBrush(Qt::NoBrush);
  return rect.adjusted(4, 4, -4, -4);
}

void PaintClose(QPainter& painter, const QRectF& rect) {
  const QRectF symbol = PaintFace(painter, rect, QColor(190, 70, 64));
  painter.drawLine(symbol.topLeft(), symbol.bottomRight());
  painter.drawLine(symbol.topRight(), symbol.bottomLeft());
}

void PaintMinimize(QPainter& painter, const QRectF& rect) {
  const QRectF symbol = PaintFace(painter, rect, kTitleTop);
  painter.drawLine(symbol.bottomLeft(), symbol.bottomRight());
}

void PaintMaximize(QPainter& painter, const QRectF& rect) {
  painter.drawRect(PaintFace(painter, rect, kTitleTop));
}

void PaintRestore(QPainter& painter, const QRectF& rect) {
  const QRectF symbol = PaintFace(painter, rect, kTitleTop);
  painter.drawRect(symbol.adjusted(0, 2, -2, 0));
  painter.drawLine(symbol.topLeft() + QPointF(2, 0), symbol.topRight());
  painter.drawLine(symbol.topRight(), symbol.bottomRight() - QPointF(0, 2));
}

void PaintHelp(QPainter& painter, const QRectF& rect) {
  PaintFace(painter, rect, kTitleTop);
  QFont font = painter.font();
  font.setPixelSize(11);
  font.setBold(true);
  painter.setFont(font);
  painter.drawText(rect, Qt::AlignCenter, "?");
}

const QHash<QString, PaintPicture>& Pictures() {
  static const QHash<QString, PaintPicture> pictures = {
      {"imgTitleLeft", PaintTitle},         {"imgTitleMain", PaintTitle},
      {"imgTitleRight", PaintTitle},        {"imgWindowLeft", PaintLeftEdge},
      {"imgWindowRight", PaintRightEdge},   {"imgWindowBottomLeft", PaintBottomLeft},
      {"imgWindowBottom", PaintBottomEdge}, {"imgWindowBottomRight", PaintBottomRight},
      {"imgTitleClose", PaintClose},        {"imgTitleMinimize", PaintMinimize},
      {"imgTitleMaximize", PaintMaximize},  {"imgTitleMaxRestore", PaintMaximize},
      {"imgTitleRestore", PaintRestore},    {"imgTitleHelp", PaintHelp},
  };
  return pictures;
}

}  // namespace

QPixmap BuiltInPicture(const QString& name, QSize size) {
  const PaintPicture paint = Pictures().value(name, nullptr);
  if (!paint) return {};
  QPixmap picture(size * kScale);
  picture.setDevicePixelRatio(kScale);
  picture.fill(Qt::transparent);
  QPainter painter(&picture);
  painter.setRenderHint(QPainter::Antialiasing);
  paint(painter, QRectF({}, size));
  return picture;
}

}  // namespace dorvane
