#pragma once

#include <QAbstractButton>
#include <QColor>
#include <QFont>
#include <QPixmap>
#include <QVariantMap>

#include "ui/controls/button_look.h"

namespace dorvane {

/// The push button of every window: draws itself with a gradient, separate colours under the mouse,
/// an outline shape and an optional picture. Clicked by mouse, space bar or its access key. A value
/// outside the range of an enumerated property is ignored.
class GradientButton : public QAbstractButton {
  Q_OBJECT
  Q_PROPERTY(int ButtonStyle READ ButtonStyle WRITE SetButtonStyle)
  Q_PROPERTY(QString Caption READ Caption WRITE SetCaption)
  Q_PROPERTY(int CaptionAlign READ CaptionAlign WRITE SetCaptionAlign)
  Q_PROPERTY(int CaptionStyle READ CaptionStyle WRITE SetCaptionStyle)
  Q_PROPERTY(int ButtonShape READ ButtonShape WRITE SetButtonShape)
  Q_PROPERTY(QPixmap Picture READ Picture WRITE SetPicture)
  Q_PROPERTY(int PictureAlign READ PictureAlign WRITE SetPictureAlign)
  Q_PROPERTY(int PictureSize READ PictureSize WRITE SetPictureSize)
  Q_PROPERTY(bool Enabled READ Enabled WRITE SetEnabled)
  Q_PROPERTY(bool ShowFocusRect READ ShowFocusRect WRITE SetShowFocusRect)
  Q_PROPERTY(int MousePointer READ MousePointer WRITE SetMousePointer)
  Q_PROPERTY(QPixmap MouseIcon READ MouseIcon WRITE SetMouseIcon)
  Q_PROPERTY(QFont Font READ Font WRITE SetFont)
  Q_PROPERTY(int FontStyle READ FontStyle WRITE SetFontStyle)
  Q_PROPERTY(QColor ForeColor READ ForeColor WRITE SetForeColor)
  Q_PROPERTY(QColor BackColor READ BackColor WRITE SetBackColor)
  Q_PROPERTY(QColor GradientColor READ GradientColor WRITE SetGradientColor)
  Q_PROPERTY(int GradientMode READ GradientMode WRITE SetGradientMode)
  Q_PROPERTY(bool ResetDefaultColors READ ResetDefaultColors WRITE SetResetDefaultColors)
  Q_PROPERTY(int HoverColorLocks READ HoverColorLocks WRITE SetHoverColorLocks)
  Q_PROPERTY(QColor HoverForeColor READ HoverForeColor WRITE SetHoverForeColor)
  Q_PROPERTY(QColor HoverBackColor READ HoverBackColor WRITE SetHoverBackColor)
  Q_PROPERTY(bool DelayDrawing READ DelayDrawing WRITE SetDelayDrawing)
  Q_PROPERTY(quint64 hWnd READ hWnd)
  Q_CLASSINFO("ButtonStyle",
              "Various button styles. Select to preview. Note that hover buttons have dotted "
              "outlines in design mode.")
  Q_CLASSINFO("Caption", "The caption of the button. Double pipe (||) is a line break.")
  Q_CLASSINFO("CaptionAlign", "Horizontal alignment of caption on the button.")
  Q_CLASSINFO("CaptionStyle", "Flat, Embossed or Engraved effects")
  Q_CLASSINFO("ButtonShape", "Rectangular or various diagonal shapes")
  Q_CLASSINFO("Picture", "The image used to display on the button.")
  Q_CLASSINFO("PictureAlign",
              "Alignment of the button image in relation to the caption and/or button.")
  Q_CLASSINFO("PictureSize", "Size of button image. Last two options automatically center image.")
  Q_CLASSINFO("Enabled", "Determines if events are fired for this button.")
  Q_CLASSINFO("ShowFocusRect",
              "Allows or prevents a focus rectangle from being displayed. In design mode, this may "
              "always be displayed for button set as Default.")
  Q_CLASSINFO("MousePointer",
              "Various optional mouse pointers to use when mouse is over the button")
  Q_CLASSINFO("MouseIcon",
              "Icon or cursor used to display when mouse is over the button. MousePointer must be "
              "set to Custom.")
  Q_CLASSINFO("Font", "Font used to display the caption.")
  Q_CLASSINFO("FontStyle", "Various font attributes that can be changed directly.")
  Q_CLASSINFO("ForeColor", "The color of the caption's font .")
  Q_CLASSINFO("BackColor", "Button back color. See also ResetDefaultColors")
  Q_CLASSINFO("GradientColor",
              "Secondary color used for gradient shades. The BackColor property is the primary "
              "color.")
  Q_CLASSINFO("GradientMode", "Various directions to draw the gradient shading.")
  Q_CLASSINFO(
      "ResetDefaultColors",
      "Resets button's back color and text color to Window's standard. The hover properties "
      "are also reset.")
  Q_CLASSINFO("HoverColorLocks",
              "Can ensure the hover colors match the caption and back colors. Click for more "
              "options.")
  Q_CLASSINFO("HoverForeColor",
              "Color of button caption's text when mouse is hovering over it. Affects the "
              "HoverLockColors property.")
  Q_CLASSINFO("HoverBackColor",
              "Color of button background when mouse is hovering over it. Affects the "
              "HoverLockColors property.")

 public:
  explicit GradientButton(QWidget* parent = nullptr);

  int ButtonStyle() const { return static_cast<int>(look_.style); }
  void SetButtonStyle(int value);
  QString Caption() const { return look_.caption; }
  void SetCaption(const QString& value);
  int CaptionAlign() const { return static_cast<int>(look_.caption_align); }
  void SetCaptionAlign(int value);
  int CaptionStyle() const { return static_cast<int>(look_.caption_style); }
  void SetCaptionStyle(int value);
  int ButtonShape() const { return static_cast<int>(look_.shape); }
  void SetButtonShape(int value);
  QPixmap Picture() const { return look_.picture; }
  void SetPicture(const QPixmap& value);
  int PictureAlign() const { return static_cast<int>(look_.picture_align); }
  void SetPictureAlign(int value);
  /// A value of picture_size.
  int PictureSize() const { return look_.picture_size; }
  void SetPictureSize(int value);

  /// The button's own state: stays true when a window around it is disabled.
  bool Enabled() const { return isEnabledTo(parentWidget()); }
  void SetEnabled(bool value) { setEnabled(value); }
  bool ShowFocusRect() const { return show_focus_rect_; }
  void SetShowFocusRect(bool value);
  /// 0 default, 1 to 15 the usual pointers, 99 the MouseIcon.
  int MousePointer() const { return mouse_pointer_; }
  void SetMousePointer(int value);
  QPixmap MouseIcon() const { return mouse_icon_; }
  void SetMouseIcon(const QPixmap& value);
  QFont Font() const { return font(); }
  void SetFont(const QFont& value);
  /// Bits: 1 bold, 2 italic, 4 underlined, 8 struck out.
  int FontStyle() const;
  void SetFontStyle(int value);

  QColor ForeColor() const { return look_.fore_color; }
  void SetForeColor(const QColor& value);
  QColor BackColor() const { return look_.back_color; }
  void SetBackColor(const QColor& value);
  QColor GradientColor() const { return look_.gradient_color; }
  void SetGradientColor(const QColor& value);
  int GradientMode() const { return static_cast<int>(look_.gradient); }
  void SetGradientMode(int value);
  /// Writing true resets the colours; reads false.
  bool ResetDefaultColors() const { return false; }
  void SetResetDefaultColors(bool value);
  /// Bits of hover_lock: which hover colours follow the ordinary ones.
  int HoverColorLocks() const { return hover_locks_; }
  void SetHoverColorLocks(int value);
  /// Writing another colour than the ordinary one releases its lock.
  QColor HoverForeColor() const { return look_.hover_fore_color; }
  void SetHoverForeColor(const QColor& value);
  QColor HoverBackColor() const { return look_.hover_back_color; }
  void SetHoverBackColor(const QColor& value);

  /// While true nothing is painted; going back to false repaints.
  bool DelayDrawing() const { return !updatesEnabled(); }
  void SetDelayDrawing(bool value) { setUpdatesEnabled(!value); }
  /// The button's drawing context and window handle (0 while it has no window of its own).
  QPaintDevice* hDC() { return this; }
  quint64 hWnd() const { return effectiveWinId(); }
  void Refresh() { update(); }

  /// The letter that clicks the button together with Alt where the caption marks none itself. It is
  /// underlined in the caption, which keeps its text.
  QChar AccessKey() const { return access_key_; }
  void SetAccessKey(QChar key);

  /// The default button of its window has a heavier border.
  bool IsDefault() const { return is_default_; }
  void SetDefault(bool value);

  /// Design-time settings by their stored keys; an absent key takes its default. Colours are
  /// stored as numbers, red in the lowest byte.
  void ReadProperties(const QVariantMap& stored);
  /// The settings that differ from their defaults.
  QVariantMap WriteProperties() const;

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override { return sizeHint(); }

 signals:
  /// The mouse has entered or left the button.
  void MouseOnButton(bool OnButton);

 protected:
  bool hitButton(const QPoint& position) const override;
  bool event(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;

 private:
  template <typename Enum>
  void SetInRange(Enum& property, int value, int last);
  void SetHovered(bool hovered);
  void ApplyHoverLocks();
  void ApplyAccessKey();
  void ApplyMousePointer();
  bool IsPictureStacked() const;
  void Changed();

  ButtonLook look_;
  int hover_locks_ = 0;
  int mouse_pointer_ = 0;
  QPixmap mouse_icon_;
  QChar access_key_;
  bool show_focus_rect_ = true;
  bool hovered_ = false;
  bool is_default_ = false;
};

}  // namespace dorvane
