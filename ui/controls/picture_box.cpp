#include "ui/controls/picture_box.h"

#include <QMouseEvent>
#include <QPainter>

namespace dorvane {

PictureBox::PictureBox(QWidget* parent) : QWidget(parent) {
  setMouseTracking(true);
}

void PictureBox::SetPicture(const QPixmap& picture) {
  picture_ = picture;
  update();
}

void PictureBox::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::SmoothPixmapTransform);
  if (!isEnabled()) painter.setOpacity(0.35);
  painter.drawPixmap(rect(), picture_);
}

void PictureBox::mousePressEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton) emit Pressed();
}

void PictureBox::mouseReleaseEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton && rect().contains(event->pos())) emit Clicked();
}

void PictureBox::mouseMoveEvent(QMouseEvent*) {
  emit MouseMoved();
}

void PictureBox::enterEvent(QEnterEvent*) {
  emit MouseMoved();
}

}  // namespace dorvane
