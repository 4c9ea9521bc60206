#pragma once

#include <QPixmap>
#include <QWidget>

namespace dorvane {

/// A picture control: stretches its picture over its area, whatever the picture's resolution. A
/// disabled one is drawn faintly.
class PictureBox : public QWidget {
  Q_OBJECT

 public:
  explicit PictureBox(QWidget* parent = nullptr);

  const QPixmap& Picture() const { return picture_; }
  void SetPicture(const QPixmap& picture);
  /// Tells assistive tools that a click does something, and lets them click.
  void SetAction() { has_action_ = true; }
  bool HasAction() const { return has_action_; }

 signals:
  /// The left mouse button went down on the picture.
  void Pressed();
  /// It was released over the picture.
  void Clicked();
  /// The mouse came over the picture or moved on it.
  void MouseMoved();
  /// The mouse has left it.
  void MouseLeft();

 protected:
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void enterEvent(QEnterEvent* event) override;
  void leaveEvent(QEvent* event) override;

 private:
  QPixmap picture_;
  bool has_action_ = false;
};

}  // namespace dorvane
