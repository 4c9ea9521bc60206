#pragma once

#include <QColor>
#include <QFont>
#include <QObject>
#include <QPalette>
#include <QPixmap>
#include <QWidget>
#include <utility>

#include "ui/controls/gradient_button.h"

class QComboBox;
class QTableView;

namespace dorvane::theme {

/// The colours of the wizard.
inline constexpr QRgb kPageBackground = qRgb(71, 102, 171);
// Dark behind the step list, so that its grey words can be read.
inline constexpr QRgb kSidebarTop = qRgb(9, 13, 28);
inline constexpr QRgb kSidebarBottom = qRgb(15, 22, 44);
inline constexpr QRgb kTitleBackground = qRgb(244, 246, 250);
inline constexpr QRgb kNavBackground = qRgb(222, 227, 238);
inline constexpr QRgb kTextColor = qRgb(24, 34, 62);
inline constexpr QRgb kCurrentMarker = qRgb(255, 0, 0);
inline constexpr QRgb kOtherMarker = qRgb(71, 102, 171);
inline constexpr QRgb kCurrentStep = qRgb(255, 255, 255);
inline constexpr QRgb kOtherStep = qRgb(128, 128, 128);
inline constexpr QRgb kFieldBackground = qRgb(255, 255, 255);
inline constexpr QRgb kDisabledFieldBackground = qRgb(224, 224, 224);

/// Distances in logical pixels.
inline constexpr int kMargin = 24;
inline constexpr int kGap = 10;

/// White words and light fields on the blue background of a page.
QPalette PagePalette();
/// Dark words on the light ground of a field, for what stands on it whole.
QPalette FieldPalette();
/// Gives a drop-down list the light ground of a field when it is open, and long entries dots in
/// their middle.
void StyleDropDown(QComboBox& list);
/// A table that is read only: light ground, whole rows, no grid; it takes the room there is.
void StyleTable(QTableView& table);
/// Sets one colour of a widget for all its states.
void SetColor(QWidget& widget, QPalette::ColorRole role, QRgb color);

/// The steps of the one font scale, relative to the desktop's font.
QFont TitleFont(const QFont& base);
QFont CaptionFont(const QFont& base);

/// A button of the wizard, clicked with Alt and `access_key` as well ('\0' for none).
GradientButton& AddButton(const char* name, QWidget& parent, const char* caption, char access_key);

/// At least `width` pixels wide, more where its caption needs them.
void Widen(GradientButton& button, int width);

/// Pictures drawn for the window, sharp up to a scale factor of 3.
QPixmap HelpPicture(bool highlighted);
QPixmap LogoPicture();

/// Two pictures for one picture control: 1 normal, 2 highlighted.
class ImageList : public QObject {
 public:
  ImageList(QPixmap normal, QPixmap highlighted, QObject* parent)
      : QObject(parent), normal_(std::move(normal)), highlighted_(std::move(highlighted)) {}

  /// `number` is 1 or 2.
  const QPixmap& Picture(int number) const { return number == 1 ? normal_ : highlighted_; }

 private:
  QPixmap normal_;
  QPixmap highlighted_;
};

/// The round marker beside an entry of the step list.
class StepMarker : public QWidget {
 public:
  explicit StepMarker(QWidget* parent);

  QColor FillColor() const { return fill_; }
  void SetFillColor(const QColor& color);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  QColor fill_;
};

}  // namespace dorvane::theme
