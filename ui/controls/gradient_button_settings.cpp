// The design-time settings of a button: which key keeps which property, and the defaults.
#include "ui/controls/gradient_button.h"

namespace dorvane {

namespace {

struct StoredNumber {
  const char* key;
  int (GradientButton::*read)() const;
  void (GradientButton::*write)(int);
  int default_value;
};

struct StoredColor {
  const char* key;
  QColor (GradientButton::*read)() const;
  void (GradientButton::*write)(const QColor&);
};

struct StoredSwitch {
  const char* key;
  bool (GradientButton::*read)() const;
  void (GradientButton::*write)(bool);
};

struct StoredPicture {
  const char* key;
  QPixmap (GradientButton::*read)() const;
  void (GradientButton::*write)(const QPixmap&);
};

using B = GradientButton;

// In the order in which they are read: CapAlign depends on the picture and its place.
constexpr StoredNumber kNumbers[] = {
    {"ImgSize", &B::PictureSize, &B::SetPictureSize, picture_size::kSmall},
    {"ImgAlign", &B::PictureAlign, &B::SetPictureAlign, 0},
    {"CapAlign", &B::CaptionAlign, &B::SetCaptionAlign, 2},
    {"CapStyle", &B::CaptionStyle, &B::SetCaptionStyle, 0},
    {"BackStyle", &B::ButtonStyle, &B::SetButtonStyle, 0},
    {"Shape", &B::ButtonShape, &B::SetButtonShape, 0},
    {"Gradient", &B::GradientMode, &B::SetGradientMode, 0},
    {"mPointer", &B::MousePointer, &B::SetMousePointer, 0},
};
constexpr StoredColor kBlackByDefault[] = {
    {"cGradient", &B::GradientColor, &B::SetGradientColor},
    {"cFore", &B::ForeColor, &B::SetForeColor},
    {"cFHover", &B::HoverForeColor, &B::SetHoverForeColor},
};
constexpr StoredSwitch kTrueByDefault[] = {
    {"Focus", &B::ShowFocusRect, &B::SetShowFocusRect},
    {"Enabled", &B::Enabled, &B::SetEnabled},
};
constexpr StoredPicture kPictures[] = {
    {"Image", &B::Picture, &B::SetPicture},
    {"mIcon", &B::MouseIcon, &B::SetMouseIcon},
};

QColor ColorOf(int stored) {
  return {stored & 255, stored >> 8 & 255, stored >> 16 & 255};
}
int NumberOf(const QColor& color) {
  return color.red() | color.green() << 8 | color.blue() << 16;
}

QColor WindowColor(const GradientButton& button) {
  const QWidget* window = button.parentWidget();
  return (window ? window->palette() : QPalette()).color(QPalette::Window);
}

QFont WindowFont(const GradientButton& button) {
  return button.parentWidget() ? button.parentWidget()->font() : QFont();
}

}  // namespace

void GradientButton::ReadProperties(const QVariantMap& stored) {
  // The locks would carry a colour over to its hover colour while the two are read.
  SetHoverColorLocks(0);
  SetCaption(stored.value("Caption").toString());
  SetFont(stored.contains("Font") ? stored["Font"].value<QFont>() : WindowFont(*this));
  for (const StoredPicture& entry : kPictures) {
    (this->*entry.write)(stored.value(entry.key).value<QPixmap>());
  }
  for (const StoredNumber& entry : kNumbers) {
    (this->*entry.write)(stored.value(entry.key, entry.default_value).toInt());
  }
  for (const StoredColor& entry : kBlackByDefault) {
    (this->*entry.write)(ColorOf(stored.value(entry.key, 0).toInt()));
  }
  for (const StoredSwitch& entry : kTrueByDefault) {
    (this->*entry.write)(stored.value(entry.key, true).toBool());
  }
  SetBackColor(stored.contains("cBack") ? ColorOf(stored["cBack"].toInt()) : WindowColor(*this));
  SetHoverBackColor(stored.contains("cBHover") ? ColorOf(stored["cBHover"].toInt()) : BackColor());
  SetHoverColorLocks(stored.value("LockHover", 0).toInt());
}

QVariantMap GradientButton::WriteProperties() const {
  QVariantMap stored;
  if (!Caption().isEmpty()) stored["Caption"] = Caption();
  if (Font() != WindowFont(*this)) stored["Font"] = Font();
  for (const StoredPicture& entry : kPictures) {
    const QPixmap picture = (this->*entry.read)();
    if (!picture.isNull()) stored[entry.key] = picture;
  }
  for (const StoredNumber& entry : kNumbers) {
    const int value = (this->*entry.read)();
    if (value != entry.default_value) stored[entry.key] = value;
  }
  for (const StoredColor& entry : kBlackByDefault) {
    const int value = NumberOf((this->*entry.read)());
    if (value != 0) stored[entry.key] = value;
  }
  for (const StoredSwitch& entry : kTrueByDefault) {
    if (!(this->*entry.read)()) stored[entry.key] = false;
  }
  if (BackColor() != WindowColor(*this)) stored["cBack"] = NumberOf(BackColor());
  if (HoverBackColor() != BackColor()) stored["cBHover"] = NumberOf(HoverBackColor());
  if (HoverColorLocks() != 0) stored["LockHover"] = HoverColorLocks();
  return stored;
}

}  // namespace dorvane
