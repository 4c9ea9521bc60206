#include "ui/wizard/step_marker.h"

#include <QPainter>

namespace dorvane {

StepMarker::StepMarker(QWidget* parent) : QWidget(parent) {
  setFixedSize(18, 18);
}

void StepMarker::SetFillColor(const QColor& color) {
  fill_ = color;
  update();
}

void StepMarker::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(QPen(QColor(255, 255, 255, 150), 1.4));
  painter.setBrush(fill_);
  painter.drawEllipse(QRectF(rect()).adjusted(2, 2, -2, -2));
}

}  // namespace dorvane
