#include "ui/controls/button_look.h"

#include <QFontMetricsF>
#include <algorithm>

namespace dorvane {

namespace {

constexpr double kMargin = 6;
constexpr double kGap = 5;

// How far each corner of a shape is drawn in, in units of the slant.
struct Slants {
  int top_left, top_right, bottom_right, bottom_left;
};
constexpr Slants kSlants[] = {
    {0, 0, 0, 0},  // rectangle
    {1, 0, 0, 0},  // left diagonal
    {0, 1, 0, 0},  // right diagonal
    {1, 0, 1, 0},  // forward
    {0, 1, 0, 1},  // backward
    {1, 1, 0, 0},  // narrow top
    {0, 0, 1, 1},  // narrow bottom
};

double Slant(const QRectF& bounds) {
  return std::min(bounds.height() / 2, bounds.width() / 4);
}

bool IsBehindCaption(int size) {
  return size == picture_size::kOwnSize || size == picture_size::kFillButton;
}

bool IsStacked(const ButtonLook& look) {
  return look.picture_align == PictureAlign::AboveCaption ||
         look.picture_align == PictureAlign::BelowCaption;
}

QSizeF PictureExtent(const ButtonLook& look) {
  const double side = look.picture_size;
  return look.picture.isNull() ? QSizeF() : QSizeF(side, side);
}

QSizeF CaptionExtent(const QString& caption, const QFont& font) {
  if (caption.isEmpty()) return {0, 0};
  return QFontMetricsF(font).size(Qt::TextShowMnemonic, CaptionLines(caption));
}

QRectF Inner(const ButtonLook& look, const QRectF& bounds) {
  const Slants& slants = kSlants[static_cast<int>(look.shape)];
  const double slant = Slant(bounds) / 2;
  const double left = slants.top_left || slants.bottom_left ? slant : 0;
  const double right = slants.top_right || slants.bottom_right ? slant : 0;
  return bounds.adjusted(kMargin + left, 3, -kMargin - right, -3);
}

QRectF BackdropRect(const ButtonLook& look, const QRectF& bounds) {
  if (look.picture_size == picture_size::kFillButton) return bounds;
  QRectF rect({}, look.picture.deviceIndependentSize());
  rect.moveCenter(bounds.center());
  return rect;
}

Qt::Alignment HorizontalAlignment(CaptionAlign align) {
  constexpr Qt::Alignment kAlignments[] = {Qt::AlignLeft, Qt::AlignRight, Qt::AlignHCenter};
  return kAlignments[static_cast<int>(align)];
}

ButtonLayout LayOutStacked(const ButtonLook& look, const QRectF& inner, const QSizeF& picture,
                           const QSizeF& caption) {
  const double gap = caption.height() > 0 ? kGap : 0;
  const double top = inner.center().y() - (picture.height() + gap + caption.height()) / 2;
  const bool picture_first = look.picture_align == PictureAlign::AboveCaption;
  const double picture_top = picture_first ? top : top + caption.height() + gap;
  const double caption_top = picture_first ? top + picture.height() + gap : top;
  return {{QPointF(inner.center().x() - picture.width() / 2, picture_top), picture},
          {inner.left(), caption_top, inner.width(), caption.height()},
          Qt::AlignHCenter | Qt::AlignVCenter};
}

// A picture at an edge of the button keeps the caption off its side.
ButtonLayout LayOutAtEdge(const ButtonLook& look, const QRectF& inner, const QSizeF& picture) {
  const bool left = look.picture_align == PictureAlign::LeftEdge;
  const double x = left ? inner.left() : inner.right() - picture.width();
  const double taken = picture.width() + kGap;
  return {{QPointF(x, inner.center().y() - picture.height() / 2), picture},
          inner.adjusted(left ? taken : 0, 0, left ? 0 : -taken, 0),
          HorizontalAlignment(look.caption_align) | Qt::AlignVCenter};
}

// A picture beside the caption moves with it.
ButtonLayout LayOutBeside(const ButtonLook& look, const QRectF& inner, const QSizeF& picture,
                          const QSizeF& caption) {
  const double gap = caption.width() > 0 ? kGap : 0;
  const double room = std::max(0.0, inner.width() - picture.width() - gap);
  const double text = std::min(caption.width() + 1, room);
  const double slack = room - text;
  const double shift = look.caption_align == CaptionAlign::Left    ? 0
                       : look.caption_align == CaptionAlign::Right ? slack
                                                                   : slack / 2;
  const bool picture_first = look.picture_align == PictureAlign::LeftOfCaption;
  const double start = inner.left() + shift;
  const double picture_x = picture_first ? start : start + text + gap;
  const double text_x = picture_first ? start + picture.width() + gap : start;
  return {{QPointF(picture_x, inner.center().y() - picture.height() / 2), picture},
          {text_x, inner.top(), text, inner.height()},
          Qt::AlignHCenter | Qt::AlignVCenter};
}

}  // namespace

QPolygonF ShapeOutline(ButtonShape shape, const QRectF& bounds) {
  const Slants& slants = kSlants[static_cast<int>(shape)];
  const double slant = Slant(bounds);
  return QPolygonF({bounds.topLeft() + QPointF(slants.top_left * slant, 0),
                    bounds.topRight() - QPointF(slants.top_right * slant, 0),
                    bounds.bottomRight() - QPointF(slants.bottom_right * slant, 0),
                    bounds.bottomLeft() + QPointF(slants.bottom_left * slant, 0)});
}

QString CaptionLines(const QString& caption) {
  return QString(caption).replace(QLatin1String("||"), QLatin1String("\n"));
}

ButtonLayout LayOutButton(const ButtonLook& look, const QRectF& bounds, const QFont& font) {
  const QRectF inner = Inner(look, bounds);
  const Qt::Alignment alignment = HorizontalAlignment(look.caption_align) | Qt::AlignVCenter;
  if (look.picture.isNull()) return {{}, inner, alignment};
  if (IsBehindCaption(look.picture_size)) return {BackdropRect(look, bounds), inner, alignment};

  const QSizeF picture = PictureExtent(look);
  const QSizeF caption = CaptionExtent(look.caption, font);
  if (IsStacked(look)) return LayOutStacked(look, inner, picture, caption);
  const bool at_edge =
      look.picture_align == PictureAlign::LeftEdge || look.picture_align == PictureAlign::RightEdge;
  return at_edge ? LayOutAtEdge(look, inner, picture) : LayOutBeside(look, inner, picture, caption);
}

QSizeF NaturalSize(const ButtonLook& look, const QFont& font) {
  QSizeF size = CaptionExtent(look.caption, font);
  if (!look.picture.isNull() && !IsBehindCaption(look.picture_size)) {
    const QSizeF picture = PictureExtent(look);
    const double gap = look.caption.isEmpty() ? 0 : kGap;
    size = IsStacked(look) ? QSizeF(std::max(size.width(), picture.width()),
                                    size.height() + gap + picture.height())
                           : QSizeF(size.width() + gap + picture.width(),
                                    std::max(size.height(), picture.height()));
  }
  size += QSizeF(2 * kMargin + 8, 12);
  // Slanted sides take their room beside the caption.
  if (look.shape != ButtonShape::Rectangle) size.rwidth() += size.height();
  return size;
}

}  // namespace dorvane
