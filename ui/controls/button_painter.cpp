#include "ui/controls/button_painter.h"

#include <QLinearGradient>
#include <QPainterPath>

#include "ui/look/contrast.h"

namespace dorvane {

namespace {

bool IsDark(const QColor& color) {
  return qGray(color.rgb()) < 128;
}

QColor Greyed(const QColor& color, bool on_dark) {
  const int grey = qGray(color.rgb());
  const QColor faint = on_dark ? QColor(52, 55, 61) : QColor(200, 204, 212);
  return Mix(Mix(color, QColor(grey, grey, grey), 0.7), faint, 0.55);
}

bool IsSoft(const ButtonLook& look) {
  return look.style == ButtonStyle::Soft && look.shape == ButtonShape::Rectangle;
}

QPainterPath OutlinePath(const ButtonLook& look, const QRectF& bounds) {
  QPainterPath path;
  if (IsSoft(look)) {
    path.addRoundedRect(bounds, 5, 5);
    return path;
  }
  path.addPolygon(ShapeOutline(look.shape, bounds));
  path.closeSubpath();
  return path;
}

QBrush Background(const ButtonLook& look, const ButtonState& state, const QRectF& bounds) {
  QColor primary = state.hovered ? look.hover_back_color : look.back_color;
  QColor secondary = look.gradient_color;
  if (!state.enabled) {
    primary = Greyed(primary, IsDark(look.back_color));
    secondary = Greyed(secondary, IsDark(look.back_color));
  }
  if (state.pressed) {
    primary = primary.darker(118);
    secondary = secondary.darker(118);
  }
  if (look.gradient == GradientMode::None) {
    if (!IsSoft(look)) return primary;
    // The sheen of soft buttons: a little light from above, less when pressed.
    QLinearGradient sheen(bounds.topLeft(), bounds.bottomLeft());
    sheen.setColorAt(0, state.pressed ? primary.darker(106) : primary.lighter(112));
    sheen.setColorAt(1, primary);
    return sheen;
  }
  struct Direction {
    QPointF from, to;
  };
  const Direction directions[] = {{},
                                  {bounds.topLeft(), bounds.topRight()},
                                  {bounds.topRight(), bounds.topLeft()},
                                  {bounds.topLeft(), bounds.bottomLeft()},
                                  {bounds.bottomLeft(), bounds.topLeft()}};
  const Direction& direction = directions[static_cast<int>(look.gradient)];
  QLinearGradient shade(direction.from, direction.to);
  shade.setColorAt(0, primary);
  shade.setColorAt(1, secondary);
  return shade;
}

void StrokeBevel(QPainter& painter, const QPolygonF& outline, const QColor& light,
                 const QColor& dark, double width) {
  painter.setPen(QPen(dark, width, Qt::SolidLine, Qt::FlatCap, Qt::MiterJoin));
  painter.drawPolyline(QPolygonF({outline[1], outline[2], outline[3]}));
  painter.setPen(QPen(light, width, Qt::SolidLine, Qt::FlatCap, Qt::MiterJoin));
  painter.drawPolyline(QPolygonF({outline[3], outline[0], outline[1]}));
}

void PaintRaised(QPainter& painter, const ButtonLook& look, const QRectF& bounds, bool pressed,
                 const QColor& base) {
  const QColor light = Mix(base, Qt::white, 0.7);
  const QColor dark = Mix(base, Qt::black, 0.5);
  const QPolygonF outline = ShapeOutline(look.shape, bounds.adjusted(1, 1, -1, -1));
  StrokeBevel(painter, outline, pressed ? dark : light, pressed ? light : dark, 2);
}

void PaintBorder(QPainter& painter, const ButtonLook& look, const ButtonState& state,
                 const QRectF& bounds) {
  const bool on_dark = IsDark(look.back_color);
  const QColor base = state.enabled ? look.back_color : Greyed(look.back_color, on_dark);
  const QColor line = on_dark ? Mix(base, Qt::white, state.enabled ? 0.3 : 0.1)
                              : Mix(base, Qt::black, state.enabled ? 0.5 : 0.2);
  const auto stroke = [&](double inset) {
    const QRectF rect = bounds.adjusted(inset, inset, -inset, -inset);
    painter.setPen(QPen(line, 1, Qt::SolidLine, Qt::FlatCap, Qt::MiterJoin));
    painter.drawPath(OutlinePath(look, rect));
  };
  const auto etch = [&] {
    const QColor light = Mix(base, Qt::white, 0.6);
    StrokeBevel(painter, ShapeOutline(look.shape, bounds.adjusted(0.5, 0.5, -0.5, -0.5)), line,
                light, 1);
    StrokeBevel(painter, ShapeOutline(look.shape, bounds.adjusted(1.5, 1.5, -1.5, -1.5)), light,
                line, 1);
  };
  painter.setBrush(Qt::NoBrush);
  const bool active = state.hovered || state.pressed;
  switch (look.style) {
    case ButtonStyle::Raised:
      PaintRaised(painter, look, bounds, state.pressed, base);
      break;
    case ButtonStyle::Flat:
    case ButtonStyle::Soft:
      stroke(0.5);
      if (state.is_default) stroke(1.5);
      break;
    case ButtonStyle::Thick:
      stroke(0.5), stroke(1.5), stroke(2.5);
      break;
    case ButtonStyle::Etched:
      etch();
      break;
    case ButtonStyle::HoverRaised:
      if (active) PaintRaised(painter, look, bounds, state.pressed, base);
      break;
    case ButtonStyle::HoverFlat:
      if (active) stroke(0.5);
      break;
    case ButtonStyle::Borderless:
      break;
  }
}

void PaintPicture(QPainter& painter, const ButtonLook& look, const ButtonState& state,
                  const QRectF& rect) {
  if (look.picture.isNull()) return;
  QRectF target = rect;
  if (look.picture_size != picture_size::kFillButton) {
    const QSizeF size =
        look.picture.deviceIndependentSize().scaled(rect.size(), Qt::KeepAspectRatio);
    target.setSize(size);
    target.moveCenter(rect.center());
  }
  painter.setOpacity(state.enabled ? 1 : 0.4);
  painter.drawPixmap(target, look.picture, look.picture.rect());
  painter.setOpacity(1);
}

// The caption with a mark before its access key, as the text drawing expects it.
QString MarkedCaption(const QString& caption, QChar access_key) {
  QString text = CaptionLines(caption);
  if (access_key.isNull() || text.contains('&')) return text;
  const qsizetype at = text.indexOf(access_key, 0, Qt::CaseInsensitive);
  return at < 0 ? text : text.insert(at, '&');
}

void PaintCaption(QPainter& painter, const ButtonLook& look, const ButtonState& state,
                  const ButtonLayout& layout) {
  const QString text = MarkedCaption(look.caption, state.access_key);
  const int flags = static_cast<int>(layout.caption_alignment) | Qt::TextShowMnemonic;
  const QColor background = state.hovered ? look.hover_back_color : look.back_color;
  QColor text_color = state.hovered ? look.hover_fore_color : look.fore_color;
  const auto draw = [&](const QColor& color, double offset) {
    painter.setPen(color);
    painter.drawText(layout.caption.translated(offset, offset), flags, text);
  };
  if (!state.enabled) text_color = Mix(Greyed(background, IsDark(background)), text_color, 0.38);
  const QColor light = Mix(background, Qt::white, 0.75);
  const QColor dark = Mix(background, Qt::black, 0.6);
  // Embossed letters catch the light from the upper left, engraved ones at their lower right.
  if (look.caption_style == CaptionStyle::Embossed) draw(light, -1), draw(dark, 1);
  if (look.caption_style == CaptionStyle::Engraved) draw(dark, -1), draw(light, 1);
  draw(text_color, 0);
}

void PaintFocus(QPainter& painter, const ButtonLook& look, const ButtonState& state,
                const QRectF& bounds) {
  const QColor background = state.hovered ? look.hover_back_color : look.back_color;
  const QColor color = IsDark(background) ? QColor(255, 255, 255) : QColor(24, 40, 84);
  painter.setBrush(Qt::NoBrush);
  painter.setPen(QPen(color, 1.6, Qt::CustomDashLine, Qt::FlatCap, Qt::RoundJoin));
  QPen pen = painter.pen();
  pen.setDashPattern({1.6, 1.2});
  painter.setPen(pen);
  painter.drawPath(OutlinePath(look, bounds.adjusted(3.5, 3.5, -3.5, -3.5)));
}

}  // namespace

void PaintButton(QPainter& painter, const ButtonLook& look, const ButtonState& state,
                 const QRectF& bounds, const QFont& font) {
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setRenderHint(QPainter::SmoothPixmapTransform);
  painter.setFont(font);
  painter.fillPath(OutlinePath(look, bounds.adjusted(0.5, 0.5, -0.5, -0.5)),
                   Background(look, state, bounds));
  ButtonLayout layout = LayOutButton(look, bounds, font);
  if (state.pressed) {
    layout.caption.translate(1, 1);
    layout.picture.translate(1, 1);
  }
  PaintPicture(painter, look, state, layout.picture);
  PaintBorder(painter, look, state, bounds);
  PaintCaption(painter, look, state, layout);
  if (state.focus_rect) PaintFocus(painter, look, state, bounds);
}

}  // namespace dorvane
