#pragma once

#include <QColor>
#include <QFont>
#include <QObject>
#include <QPalette>
#include <QPixmap>
#include <QWidget>
#include <utility>

#include "ui/controls/gradient_button.h"
#include "ui/look/look.h"

class QComboBox;
class QTableView;

namespace dorvane::theme {

/// Distances in logical pixels.
inline constexpr int kMargin = 24;
inline constexpr int kGap = 10;

/// Gives a drop-down list the ground of a field when it is open, and long entries dots in
/// their middle.
void StyleDropDown(QComboBox& list);
/// A table that is read only: the ground of a field, whole rows, no grid; it takes the room there
/// is.
void StyleTable(QTableView& table);
/// Gives a widget one colour of its own, for all its states.
void SetColor(QWidget& widget, QPalette::ColorRole role, const QColor& color);

/// The steps of the one font scale, relative to the desktop's font.
QFont TitleFont(const QFont& base);
QFont CaptionFont(const QFont& base);

/// A button of the wizard, clicked with Alt and `access_key` as well ('\0' for none).
GradientButton& AddButton(const char* name, QWidget& parent, const char* caption, char access_key);

/// At least `width` pixels wide, more where its caption needs them.
void Widen(GradientButton& button, int width);

/// Pictures drawn for the window, sharp up to a scale factor of 3.
QPixmap HelpPicture(const Look& look, bool highlighted);
QPixmap LogoPicture(const Look& look);

/// Two pictures for one picture control: 1 normal, 2 highlighted.
class ImageList : public QObject {
 public:
  explicit ImageList(QObject* parent) : QObject(parent) {}

  void SetPictures(QPixmap normal, QPixmap highlighted) {
    normal_ = std::move(normal);
    highlighted_ = std::move(highlighted);
  }
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
