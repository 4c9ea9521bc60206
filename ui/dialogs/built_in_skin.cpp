#include "ui/dialogs/built_in_skin.h"

#include <QHash>
#include <QLinearGradient>
#include <QPainter>

#include "ui/look/current_look.h"

namespace dorvane {

namespace {

constexpr int kScale = 2;
constexpr double kBorder = 3;

/// The colours of the look now.
const FrameColors& Colors() {
  return CurrentLook().frame;
}

using PaintPicture = void (*)(QPainter& painter, const QRectF& rect);

void PaintTitle(QPainter& painter, const QRectF& rect) {
  QLinearGradient shade(rect.topLeft(), rect.bottomLeft());
  shade.setColorAt(0, Colors().title_top);
  shade.setColorAt(1, Colors().title_bottom);
  painter.fillRect(rect, shade);
}

void PaintLeftEdge(QPainter& painter, const QRectF& rect) {
  painter.fillRect(QRectF(rect.left(), rect.top(), kBorder, rect.height()), Colors().edge);
}

void PaintRightEdge(QPainter& painter, const QRectF& rect) {
  painter.fillRect(QRectF(rect.right() - kBorder, rect.top(), kBorder, rect.height()),
                   Colors().edge);
}

void PaintBottomEdge(QPainter& painter, const QRectF& rect) {
  painter.fillRect(QRectF(rect.left(), rect.bottom() - kBorder, rect.width(), kBorder),
                   Colors().edge);
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
  painter.setPen(QPen(Colors().sign, 1.6, Qt::SolidLine, Qt::RoundCap));
  painter.setBrush(Qt::NoBrush);
  return rect.adjusted(4, 4, -4, -4);
}

void PaintClose(QPainter& painter, const QRectF& rect) {
  const QRectF symbol = PaintFace(painter, rect, Colors().close);
  painter.drawLine(symbol.topLeft(), symbol.bottomRight());
  painter.drawLine(symbol.topRight(), symbol.bottomLeft());
}

void PaintMinimize(QPainter& painter, const QRectF& rect) {
  const QRectF symbol = PaintFace(painter, rect, Colors().button);
  painter.drawLine(symbol.bottomLeft(), symbol.bottomRight());
}

void PaintMaximize(QPainter& painter, const QRectF& rect) {
  painter.drawRect(PaintFace(painter, rect, Colors().button));
}

void PaintRestore(QPainter& painter, const QRectF& rect) {
  const QRectF symbol = PaintFace(painter, rect, Colors().button);
  painter.drawRect(symbol.adjusted(0, 2, -2, 0));
  painter.drawLine(symbol.topLeft() + QPointF(2, 0), symbol.topRight());
  painter.drawLine(symbol.topRight(), symbol.bottomRight() - QPointF(0, 2));
}

void PaintHelp(QPainter& painter, const QRectF& rect) {
  PaintFace(painter, rect, Colors().button);
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
