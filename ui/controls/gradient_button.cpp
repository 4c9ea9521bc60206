#include "ui/controls/gradient_button.h"

#include <QEvent>
#include <QHoverEvent>
#include <QKeySequence>
#include <QPainter>
#include <QShortcutEvent>
#include <algorithm>
#include <iterator>

#include "ui/controls/button_painter.h"

namespace dorvane {

namespace {

constexpr int kCustomPointer = 99;
// The pointers by their numbers 0 to 15.
constexpr Qt::CursorShape kPointers[] = {
    Qt::ArrowCursor,     Qt::ArrowCursor,   Qt::CrossCursor,     Qt::IBeamCursor,
    Qt::ArrowCursor,     Qt::SizeAllCursor, Qt::SizeBDiagCursor, Qt::SizeVerCursor,
    Qt::SizeFDiagCursor, Qt::SizeHorCursor, Qt::UpArrowCursor,   Qt::WaitCursor,
    Qt::ForbiddenCursor, Qt::BusyCursor,    Qt::WhatsThisCursor, Qt::SizeAllCursor,
};
constexpr int kPictureSizes[] = {picture_size::kSmall,   picture_size::kMedium,
                                 picture_size::kLarge,   picture_size::kHuge,
                                 picture_size::kOwnSize, picture_size::kFillButton};
constexpr int kBold = 1;
constexpr int kItalic = 2;
constexpr int kUnderline = 4;
constexpr int kStrikeOut = 8;

}  // namespace

GradientButton::GradientButton(QWidget* parent) : QAbstractButton(parent) {
  setAttribute(Qt::WA_Hover);
  setFocusPolicy(Qt::StrongFocus);
  setSizePolicy(QSizePolicy::Minimum, QSizePolicy::Fixed);
  look_.back_color = palette().color(QPalette::Window);
  look_.hover_back_color = look_.back_color;
}

template <typename Enum>
void GradientButton::SetInRange(Enum& property, int value, int last) {
  if (value < 0 || value > last) return;
  property = static_cast<Enum>(value);
  Changed();
}

void GradientButton::SetButtonStyle(int value) {
  SetInRange(look_.style, value, 7);
}
void GradientButton::SetCaptionStyle(int value) {
  SetInRange(look_.caption_style, value, 2);
}
void GradientButton::SetButtonShape(int value) {
  SetInRange(look_.shape, value, 6);
}
void GradientButton::SetGradientMode(int value) {
  SetInRange(look_.gradient, value, 4);
}

void GradientButton::SetCaption(const QString& value) {
  look_.caption = value;
  setText(value);
  setAccessibleName(CaptionLines(value).replace('\n', ' ').remove('&'));
  ApplyAccessKey();
  Changed();
}

bool GradientButton::IsPictureStacked() const {
  return !look_.picture.isNull() && (look_.picture_align == PictureAlign::AboveCaption ||
                                     look_.picture_align == PictureAlign::BelowCaption);
}

void GradientButton::SetCaptionAlign(int value) {
  if (IsPictureStacked() && value != static_cast<int>(CaptionAlign::Center)) return;
  SetInRange(look_.caption_align, value, 2);
}

void GradientButton::SetPicture(const QPixmap& value) {
  look_.picture = value;
  if (IsPictureStacked()) look_.caption_align = CaptionAlign::Center;
  Changed();
}

void GradientButton::SetPictureAlign(int value) {
  SetInRange(look_.picture_align, value, 5);
  if (IsPictureStacked()) look_.caption_align = CaptionAlign::Center;
}

void GradientButton::SetPictureSize(int value) {
  if (std::ranges::find(kPictureSizes, value) == std::end(kPictureSizes)) return;
  look_.picture_size = value;
  Changed();
}

void GradientButton::SetShowFocusRect(bool value) {
  show_focus_rect_ = value;
  Changed();
}

void GradientButton::SetMousePointer(int value) {
  const int last = static_cast<int>(std::size(kPointers)) - 1;
  if (value != kCustomPointer && (value < 0 || value > last)) return;
  mouse_pointer_ = value;
  ApplyMousePointer();
}

void GradientButton::SetMouseIcon(const QPixmap& value) {
  mouse_icon_ = value;
  ApplyMousePointer();
}

void GradientButton::ApplyMousePointer() {
  if (mouse_pointer_ == kCustomPointer) {
    mouse_icon_.isNull() ? unsetCursor() : setCursor(QCursor(mouse_icon_));
  } else if (mouse_pointer_ == 0) {
    unsetCursor();
  } else {
    setCursor(kPointers[mouse_pointer_]);
  }
}

void GradientButton::SetFont(const QFont& value) {
  setFont(value);
  Changed();
}

int GradientButton::FontStyle() const {
  const QFont current = font();
  return (current.bold() ? kBold : 0) | (current.italic() ? kItalic : 0) |
         (current.underline() ? kUnderline : 0) | (current.strikeOut() ? kStrikeOut : 0);
}

void GradientButton::SetFontStyle(int value) {
  if (value < 0 || value > (kBold | kItalic | kUnderline | kStrikeOut)) return;
  QFont changed = font();
  changed.setBold(value & kBold);
  changed.setItalic(value & kItalic);
  changed.setUnderline(value & kUnderline);
  changed.setStrikeOut(value & kStrikeOut);
  SetFont(changed);
}

void GradientButton::SetForeColor(const QColor& value) {
  look_.fore_color = value;
  ApplyHoverLocks();
}

void GradientButton::SetBackColor(const QColor& value) {
  look_.back_color = value;
  ApplyHoverLocks();
}

void GradientButton::SetGradientColor(const QColor& value) {
  look_.gradient_color = value;
  Changed();
}

void GradientButton::SetResetDefaultColors(bool value) {
  if (!value) return;
  const QPalette standard;
  look_.back_color = look_.hover_back_color = standard.color(QPalette::Button);
  look_.fore_color = look_.hover_fore_color = standard.color(QPalette::ButtonText);
  hover_locks_ = 0;
  Changed();
}

void GradientButton::SetHoverColorLocks(int value) {
  if (value < 0 || value > (hover_lock::kBackColor | hover_lock::kForeColor)) return;
  hover_locks_ = value;
  ApplyHoverLocks();
}

void GradientButton::SetHoverForeColor(const QColor& value) {
  look_.hover_fore_color = value;
  if (value != look_.fore_color) hover_locks_ &= ~hover_lock::kForeColor;
  Changed();
}

void GradientButton::SetHoverBackColor(const QColor& value) {
  look_.hover_back_color = value;
  if (value != look_.back_color) hover_locks_ &= ~hover_lock::kBackColor;
  Changed();
}

void GradientButton::ApplyHoverLocks() {
  if (hover_locks_ & hover_lock::kBackColor) look_.hover_back_color = look_.back_color;
  if (hover_locks_ & hover_lock::kForeColor) look_.hover_fore_color = look_.fore_color;
  Changed();
}

void GradientButton::SetAccessKey(QChar key) {
  access_key_ = key;
  ApplyAccessKey();
  Changed();
}

void GradientButton::SetDefault(bool value) {
  is_default_ = value;
  update();
}

void GradientButton::ApplyAccessKey() {
  // A mark in the caption wins: the base class has made it the shortcut.
  if (access_key_.isNull() || !QKeySequence::mnemonic(text()).isEmpty()) return;
  setShortcut(QKeySequence(QStringLiteral("Alt+") + access_key_.toUpper()));
}

void GradientButton::Changed() {
  updateGeometry();
  update();
}

QSize GradientButton::sizeHint() const {
  return NaturalSize(look_, font()).toSize();
}

bool GradientButton::hitButton(const QPoint& position) const {
  return ShapeOutline(look_.shape, rect()).containsPoint(position, Qt::OddEvenFill);
}

void GradientButton::SetHovered(bool hovered) {
  if (hovered_ == hovered) return;
  hovered_ = hovered;
  update();
  emit MouseOnButton(hovered);
}

bool GradientButton::event(QEvent* event) {
  switch (event->type()) {
    case QEvent::HoverEnter:
    case QEvent::HoverMove: {
      // The corners outside a slanted outline are not the button.
      const QPointF position = static_cast<QHoverEvent*>(event)->position();
      SetHovered(isEnabled() && hitButton(position.toPoint()));
      break;
    }
    case QEvent::HoverLeave:
      SetHovered(false);
      break;
    case QEvent::Shortcut:
      // At once: the base class clicks a moment later, and the next key would come before.
      if (static_cast<QShortcutEvent*>(event)->isAmbiguous()) break;
      click();
      return true;
    case QEvent::EnabledChange:
      if (!isEnabled()) SetHovered(false);
      break;
    default:
      break;
  }
  return QAbstractButton::event(event);
}

void GradientButton::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  PaintButton(painter, look_,
              {.enabled = isEnabled(),
               .hovered = hovered_,
               .pressed = isDown(),
               .is_default = is_default_,
               .focus_rect = show_focus_rect_ && hasFocus(),
               .access_key = access_key_},
              rect(), font());
}

}  // namespace dorvane
