#include "ui/controls/wrapped_label.h"

#include <QPainter>
#include <QTextLayout>
#include <cmath>

namespace dorvane {

namespace {

// Breaks `text` into lines of `width` pixels; paints them when a painter is given. Returns the
// height of all lines.
double FlowText(const QString& text, const QFont& font, double width, QPainter* painter) {
  QTextOption option;
  option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
  double y = 0;
  for (QString paragraph : QString(text).remove('\r').split('\n')) {
    // An empty paragraph still takes a line.
    if (paragraph.isEmpty()) paragraph = ' ';
    QTextLayout layout(paragraph, font);
    layout.setTextOption(option);
    layout.beginLayout();
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
      line.setLineWidth(width);
      line.setPosition({0, y});
      y += line.height();
    }
    layout.endLayout();
    if (painter) layout.draw(painter, {0, 0});
  }
  return y;
}

}  // namespace

int WrappedTextHeight(const QString& text, const QFont& font, int width) {
  return static_cast<int>(std::ceil(FlowText(text, font, width, nullptr)));
}

WrappedLabel::WrappedLabel(QWidget* parent) : QLabel(parent) {
  setTextFormat(Qt::PlainText);
  QSizePolicy policy(QSizePolicy::Expanding, QSizePolicy::Minimum);
  policy.setHeightForWidth(true);
  setSizePolicy(policy);
}

int WrappedLabel::heightForWidth(int width) const {
  return WrappedTextHeight(text(), font(), width);
}

void WrappedLabel::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setPen(palette().color(QPalette::WindowText));
  FlowText(text(), font(), width(), &painter);
}

}  // namespace dorvane
