#pragma once

#include <QColor>
#include <QWidget>

namespace dorvane {

/// The round marker beside an entry of the step list.
class StepMarker : public QWidget {
 public:
  explicit StepMarker(QWidget* parent);

  QColor FillColor() const { return fill_; }
  void SetFillColor(const QColor& color);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  QColor fill_;
};

}  // namespace dorvane
