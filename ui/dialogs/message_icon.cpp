#include "ui/dialogs/message_icon.h"

#include <QLinearGradient>
#include <QPainterPath>

namespace dorvane {

namespace {

// Icons are drawn in a square of 32 units.
constexpr double kUnits = 32;

QBrush GradientBrush(const QColor& color) {
  QLinearGradient shade(0, 2, 0, 30);
  shade.setColorAt(0, color.lighter(128));
  shade.setColorAt(1, color);
  return shade;
}

void PaintCircle(QPainter& painter, const QColor& color) {
  painter.setPen(QPen(color.darker(135), 1.2));
  painter.setBrush(GradientBrush(color));
  painter.drawEllipse(QRectF(2, 2, 28, 28));
}

void PaintLetter(QPainter& painter, const QRectF& rect, const QString& letter,
                 const QColor& color) {
  QFont font = painter.font();
  font.setPixelSize(21);
  font.setBold(true);
  painter.setFont(font);
  painter.setPen(color);
  painter.drawText(rect, Qt::AlignCenter, letter);
}

void PaintError(QPainter& painter) {
  PaintCircle(painter, QColor(200, 40, 36));
  painter.setPen(QPen(Qt::white, 3.6, Qt::SolidLine, Qt::RoundCap));
  painter.drawLine(QPointF(11, 11), QPointF(21, 21));
  painter.drawLine(QPointF(21, 11), QPointF(11, 21));
}

void PaintWarning(QPainter& painter) {
  QPainterPath triangle;
  triangle.moveTo(16, 3);
  triangle.lineTo(30, 28.5);
  triangle.lineTo(2, 28.5);
  triangle.closeSubpath();
  const QColor amber(248, 190, 40);
  painter.setPen(QPen(amber.darker(170), 2, Qt::SolidLine, Qt::FlatCap, Qt::RoundJoin));
  painter.setBrush(GradientBrush(amber));
  painter.drawPath(triangle);
  PaintLetter(painter, QRectF(2, 7, 28, 22), "!", QColor(50, 36, 0));
}

}  // namespace

void PaintMessageIcon(QPainter& painter, MessageIcon icon, const QRectF& square) {
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  painter.translate(square.topLeft());
  painter.scale(square.width() / kUnits, square.height() / kUnits);
  switch (icon) {
    case MessageIcon::Error:
      PaintError(painter);
      break;
    case MessageIcon::Warning:
      PaintWarning(painter);
      break;
    case MessageIcon::Question:
      PaintCircle(painter, QColor(40, 96, 190));
      PaintLetter(painter, QRectF(2, 2, 28, 28), "?", Qt::white);
      break;
    case MessageIcon::Information:
      PaintCircle(painter, QColor(40, 96, 190));
      PaintLetter(painter, QRectF(2, 2, 28, 28), "i", Qt::white);
      break;
  }
  painter.restore();
}

}  // namespace dorvane
