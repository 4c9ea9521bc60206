#pragma once

#include <QColor>
#include <QFont>
#include <QPixmap>
#include <QPolygonF>
#include <QRectF>
#include <QString>

namespace dorvane {

/// The enumerated properties of a push button. They are stored as these numbers.
enum class ButtonStyle {
  Raised = 0,       // two-tone bevel
  Flat = 1,         // one line
  Thick = 2,        // two lines
  Etched = 3,       // a groove
  Soft = 4,         // rounded corners and a sheen; rectangles only, else as Flat
  HoverRaised = 5,  // no outline until the mouse is over it, then as Raised
  HoverFlat = 6,    // no outline until the mouse is over it, then as Flat
  Borderless = 7,
};
enum class CaptionAlign { Left = 0, Right = 1, Center = 2 };
enum class CaptionStyle { Flat = 0, Embossed = 1, Engraved = 2 };
enum class ButtonShape {
  Rectangle = 0,
  LeftDiagonal = 1,      // the left side leans to the right: /  |
  RightDiagonal = 2,     // |  \ .
  ForwardDiagonal = 3,   // /  /
  BackwardDiagonal = 4,  // \  \ .
  NarrowTop = 5,         // /  \ .
  NarrowBottom = 6,      // \  /
};
enum class PictureAlign {
  LeftEdge = 0,
  RightEdge = 1,
  LeftOfCaption = 2,
  RightOfCaption = 3,
  AboveCaption = 4,
  BelowCaption = 5,
};
enum class GradientMode { None = 0, ToRight = 1, ToLeft = 2, ToBottom = 3, ToTop = 4 };
/// Side of the picture's square in logical pixels, or one of the last two options, which centre the
/// picture on the button behind the caption.
namespace picture_size {
inline constexpr int kSmall = 16;
inline constexpr int kMedium = 24;
inline constexpr int kLarge = 32;
inline constexpr int kHuge = 48;
inline constexpr int kOwnSize = 100;
inline constexpr int kFillButton = 101;
}  // namespace picture_size
/// Bits.
namespace hover_lock {
inline constexpr int kBackColor = 1;
inline constexpr int kForeColor = 2;
}  // namespace hover_lock

/// What a button shows, whatever the state of mouse and keyboard.
struct ButtonLook {
  ButtonStyle style = ButtonStyle::Raised;
  ButtonShape shape = ButtonShape::Rectangle;
  QString caption;  // "||" breaks the line, "&" marks the access key
  CaptionAlign caption_align = CaptionAlign::Center;
  CaptionStyle caption_style = CaptionStyle::Flat;
  QPixmap picture;
  PictureAlign picture_align = PictureAlign::LeftEdge;
  int picture_size = picture_size::kSmall;
  GradientMode gradient = GradientMode::None;
  QColor fore_color = Qt::black;
  QColor back_color = Qt::lightGray;
  QColor gradient_color = Qt::black;
  QColor hover_fore_color = Qt::black;
  QColor hover_back_color = Qt::lightGray;
};

/// Where the parts of a button lie, in its own logical pixels.
struct ButtonLayout {
  QRectF picture;  // empty without one
  QRectF caption;  // the block of all lines
  Qt::Alignment caption_alignment;
};

/// The outline of a shape in `bounds`.
QPolygonF ShapeOutline(ButtonShape shape, const QRectF& bounds);

/// `caption` with its "||" as line breaks.
QString CaptionLines(const QString& caption);

ButtonLayout LayOutButton(const ButtonLook& look, const QRectF& bounds, const QFont& font);

/// The size at which nothing of caption and picture is cut.
QSizeF NaturalSize(const ButtonLook& look, const QFont& font);

}  // namespace dorvane
