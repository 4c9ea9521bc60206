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
  kRaised = 0,       // two-tone bevel
  kFlat = 1,         // one line
  kThick = 2,        // two lines
  kEtched = 3,       // a groove
  kSoft = 4,         // rounded corners and a sheen; rectangles only, else as kFlat
  kHoverRaised = 5,  // no outline until the mouse is over it, then as kRaised
  kHoverFlat = 6,    // no outline until the mouse is over it, then as kFlat
  kBorderless = 7,
};
enum class CaptionAlign { kLeft = 0, kRight = 1, kCenter = 2 };
enum class CaptionStyle { kFlat = 0, kEmbossed = 1, kEngraved = 2 };
enum class ButtonShape {
  kRectangle = 0,
  kLeftDiagonal = 1,      // the left side leans to the right: /  |
  kRightDiagonal = 2,     // |  \ .
  kForwardDiagonal = 3,   // /  /
  kBackwardDiagonal = 4,  // \  \ .
  kNarrowTop = 5,         // /  \ .
  kNarrowBottom = 6,      // \  /
};
enum class PictureAlign {
  kLeftEdge = 0,
  kRightEdge = 1,
  kLeftOfCaption = 2,
  kRightOfCaption = 3,
  kAboveCaption = 4,
  kBelowCaption = 5,
};
enum class GradientMode { kNone = 0, kToRight = 1, kToLeft = 2, kToBottom = 3, kToTop = 4 };
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
  ButtonStyle style = ButtonStyle::kRaised;
  ButtonShape shape = ButtonShape::kRectangle;
  QString caption;  // "||" breaks the line, "&" marks the access key
  CaptionAlign caption_align = CaptionAlign::kCenter;
  CaptionStyle caption_style = CaptionStyle::kFlat;
  QPixmap picture;
  PictureAlign picture_align = PictureAlign::kLeftEdge;
  int picture_size = picture_size::kSmall;
  GradientMode gradient = GradientMode::kNone;
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
