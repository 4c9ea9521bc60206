#include "ui/controls/window_style.h"

#include <QAbstractItemView>
#include <QPainter>
#include <QStyleOption>

namespace dorvane {

namespace {

constexpr int kFrameWidth = 2;
constexpr int kEntryMargin = 6;  // left and right of a combo box's entry together

bool IsList(const QWidget* widget) {
  return qobject_cast<const QAbstractItemView*>(widget) != nullptr;
}

void PaintFocusFrame(QPainter& painter, const QStyleOption& option, const QRect& rect) {
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(QPen(option.palette.color(QPalette::Highlight), kFrameWidth));
  painter.setBrush(Qt::NoBrush);
  painter.drawRoundedRect(QRectF(rect).adjusted(1, 1, -1, -1), 3, 3);
  painter.restore();
}

/// The base style outlines fields in a darker shade of the window, which is lost on a dark one.
void OutlineOnDark(QPainter& painter, const QStyleOption& option, bool is_round) {
  const QColor window = option.palette.color(QPalette::Window);
  if (window.lightness() >= 128) return;
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  QColor line = option.palette.color(QPalette::WindowText);
  line.setAlphaF(option.state.testFlag(QStyle::State_Enabled) ? 0.45F : 0.3F);
  painter.setPen(line);
  painter.setBrush(Qt::NoBrush);
  const QRectF rect = QRectF(option.rect).adjusted(0.5, 0.5, -0.5, -0.5);
  if (is_round) {
    painter.drawEllipse(rect);
  } else {
    painter.drawRoundedRect(rect, 2, 2);
  }
  painter.restore();
}

}  // namespace

void WindowStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option,
                                QPainter* painter, const QWidget* widget) const {
  if (element == PE_FrameFocusRect) {
    // The selected entry of a list stands out by itself.
    if (!IsList(widget)) PaintFocusFrame(*painter, *option, option->rect.adjusted(0, -1, 2, 1));
    return;
  }
  QProxyStyle::drawPrimitive(element, option, painter, widget);
  const bool is_outlined = element == PE_FrameLineEdit || element == PE_Frame ||
                           element == PE_IndicatorCheckBox || element == PE_IndicatorRadioButton;
  if (is_outlined) OutlineOnDark(*painter, *option, element == PE_IndicatorRadioButton);
  const bool is_frame = element == PE_FrameLineEdit || (element == PE_Frame && IsList(widget));
  if (is_frame && option->state.testFlag(State_HasFocus)) {
    PaintFocusFrame(*painter, *option, option->rect);
  }
}

void WindowStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                                     QPainter* painter, const QWidget* widget) const {
  QProxyStyle::drawComplexControl(control, option, painter, widget);
  if (control == CC_SpinBox) OutlineOnDark(*painter, *option, false);
  const bool has_focus = option->state.testFlag(State_HasFocus);
  if (control == CC_ComboBox && has_focus) PaintFocusFrame(*painter, *option, option->rect);
}

void WindowStyle::drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                              const QWidget* widget) const {
  const auto* combo_box = qstyleoption_cast<const QStyleOptionComboBox*>(option);
  if (element != CE_ComboBoxLabel || !combo_box) {
    QProxyStyle::drawControl(element, option, painter, widget);
    if (element == CE_ProgressBarGroove) OutlineOnDark(*painter, *option, false);
    return;
  }
  QStyleOptionComboBox label = *combo_box;
  const int width =
      subControlRect(CC_ComboBox, combo_box, SC_ComboBoxEditField, widget).width() - kEntryMargin;
  label.currentText = label.fontMetrics.elidedText(label.currentText, Qt::ElideMiddle, width);
  QProxyStyle::drawControl(element, &label, painter, widget);
}

int WindowStyle::pixelMetric(PixelMetric metric, const QStyleOption* option,
                             const QWidget* widget) const {
  // Room for the frame around the entries.
  if (metric == PM_DefaultFrameWidth && IsList(widget)) return kFrameWidth;
  return QProxyStyle::pixelMetric(metric, option, widget);
}

int WindowStyle::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                           QStyleHintReturn* data) const {
  if (hint == SH_LineEdit_PasswordCharacter) return '*';
  return QProxyStyle::styleHint(hint, option, widget, data);
}

}  // namespace dorvane
