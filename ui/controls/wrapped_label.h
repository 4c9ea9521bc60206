#pragma once

#include <QLabel>

namespace dorvane {

/// The height in logical pixels of a plain text that wraps at `width` as a WrappedLabel does.
int WrappedTextHeight(const QString& text, const QFont& font, int width);

/// A label of plain text that wraps between words and, where a word is wider than the label, inside
/// it, so that nothing is cut at the right.
class WrappedLabel : public QLabel {
 public:
  explicit WrappedLabel(QWidget* parent = nullptr);

  bool hasHeightForWidth() const override { return true; }
  int heightForWidth(int width) const override;
  QSize sizeHint() const override { return {width(), heightForWidth(width())}; }
  QSize minimumSizeHint() const override { return {40, fontMetrics().height()}; }

 protected:
  void paintEvent(QPaintEvent* event) override;
};

}  // namespace dorvane
