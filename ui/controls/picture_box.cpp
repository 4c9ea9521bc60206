#include "ui/controls/picture_box.h"

#include <QAccessibleWidget>
#include <QMouseEvent>
#include <QPainter>
#include <memory>
#include <mutex>

namespace dorvane {

namespace {

/// A picture as assistive tools see it: a button where a click does something.
class AccessiblePicture : public QAccessibleWidget {
 public:
  explicit AccessiblePicture(PictureBox* box) : QAccessibleWidget(box), box_(*box) {}

  QAccessible::Role role() const override {
    return box_.HasAction() ? QAccessible::Button : QAccessible::Graphic;
  }
  QStringList actionNames() const override {
    return box_.HasAction() ? QStringList(pressAction()) : QStringList();
  }
  void doAction(const QString& name) override {
    if (name == pressAction() && box_.isEnabled()) emit box_.Clicked();
  }

 private:
  PictureBox& box_;
};

QAccessibleInterface* MakeAccessible(const QString&, QObject* object) {
  auto* box = qobject_cast<PictureBox*>(object);
  // Qt owns the interface.
  return box ? std::make_unique<AccessiblePicture>(box).release() : nullptr;
}

}  // namespace

PictureBox::PictureBox(QWidget* parent) : QWidget(parent) {
  setMouseTracking(true);
  static std::once_flag known;
  std::call_once(known, [] { QAccessible::installFactory(MakeAccessible); });
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

void PictureBox::leaveEvent(QEvent*) {
  emit MouseLeft();
}

}  // namespace dorvane
