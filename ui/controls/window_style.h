#pragma once

#include <QProxyStyle>

namespace dorvane {

/// The style of every window: alike on every desktop, in the colours of the window's palette. The
/// control that has the focus carries a frame in the highlight colour, by whatever way the focus
/// came to it.
class WindowStyle : public QProxyStyle {
 public:
  WindowStyle() : QProxyStyle(QStringLiteral("Fusion")) {}

  void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override;
  void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                          QPainter* painter, const QWidget* widget) const override;
  /// A combo box's entry that is too long is shown with dots in its middle.
  void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                   const QWidget* widget) const override;
  int pixelMetric(PixelMetric metric, const QStyleOption* option,
                  const QWidget* widget) const override;
  /// Password fields show "*".
  int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                QStyleHintReturn* data) const override;
};

}  // namespace dorvane
