#include "ui/wizard/theme.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QHeaderView>
#include <QPainter>
#include <QPainterPath>
#include <QTableView>
#include <algorithm>

#include "ui/controls/soft_button.h"

namespace dorvane::theme {

namespace {

constexpr int kPictureScale = 3;
constexpr SoftButtonColors kButtonColors = {.back = qRgb(252, 253, 255),
                                            .gradient = qRgb(196, 207, 228),
                                            .fore = kTextColor,
                                            .hover_back = qRgb(255, 226, 160),
                                            .hover_fore = qRgb(110, 44, 0)};

// A picture of `size` logical pixels, ready to be painted on.
QPixmap BlankPicture(QSize size) {
  QPixmap picture(size * kPictureScale);
  picture.setDevicePixelRatio(kPictureScale);
  picture.fill(Qt::transparent);
  return picture;
}

// A database: a cylinder of three slices.
void PaintCylinder(QPainter& painter, const QRectF& rect, const QColor& color) {
  const double ellipse_height = rect.height() * 0.28;
  QPainterPath body;
  body.moveTo(rect.left(), rect.top() + ellipse_height / 2);
  body.lineTo(rect.left(), rect.bottom() - ellipse_height / 2);
  body.arcTo(QRectF(rect.left(), rect.bottom() - ellipse_height, rect.width(), ellipse_height), 180,
             180);
  body.lineTo(rect.right(), rect.top() + ellipse_height / 2);
  painter.setPen(QPen(color.darker(170), 1));
  painter.setBrush(color);
  painter.drawPath(body);
  for (const double part : {0.34, 0.6}) {
    const QRectF seam(rect.left(), rect.top() + rect.height() * part - ellipse_height / 2,
                      rect.width(), ellipse_height);
    painter.drawArc(seam, 180 * 16, 180 * 16);
  }
  painter.setBrush(color.lighter(125));
  painter.drawEllipse(QRectF(rect.left(), rect.top(), rect.width(), ellipse_height));
}

}  // namespace

QPalette PagePalette() {
  QPalette palette;
  const auto set = [&palette](QPalette::ColorRole role, QRgb color, QRgb disabled) {
    palette.setColor(role, QColor(color));
    palette.setColor(QPalette::Disabled, role, QColor(disabled));
  };
  const QRgb disabled_text = qRgb(110, 116, 130);
  set(QPalette::Window, kPageBackground, kPageBackground);
  set(QPalette::WindowText, qRgb(255, 255, 255), qRgb(164, 184, 228));
  set(QPalette::Base, kFieldBackground, kDisabledFieldBackground);
  set(QPalette::AlternateBase, qRgb(240, 243, 250), kDisabledFieldBackground);
  set(QPalette::Text, kTextColor, disabled_text);
  set(QPalette::Button, qRgb(238, 241, 247), kDisabledFieldBackground);
  set(QPalette::ButtonText, kTextColor, disabled_text);
  // Amber stands out from the background: selected entries, and the frame of the field with the
  // focus.
  set(QPalette::Highlight, qRgb(255, 190, 70), qRgb(190, 196, 208));
  set(QPalette::HighlightedText, kTextColor, disabled_text);
  set(QPalette::PlaceholderText, qRgb(96, 102, 116), disabled_text);
  set(QPalette::ToolTipBase, qRgb(255, 252, 230), qRgb(255, 252, 230));
  set(QPalette::ToolTipText, kTextColor, kTextColor);
  return palette;
}

QPalette FieldPalette() {
  QPalette palette = PagePalette();
  palette.setColor(QPalette::Window, QColor(kFieldBackground));
  palette.setColor(QPalette::WindowText, QColor(kTextColor));
  return palette;
}

void StyleDropDown(QComboBox& list) {
  // The open list is a window of its own and takes no colours from the page.
  list.view()->setPalette(FieldPalette());
  list.view()->setTextElideMode(Qt::ElideMiddle);
}

void StyleTable(QTableView& table) {
  table.setPalette(FieldPalette());
  table.setEditTriggers(QAbstractItemView::NoEditTriggers);
  table.setSelectionBehavior(QAbstractItemView::SelectRows);
  table.setTabKeyNavigation(false);
  table.setShowGrid(false);
  table.setWordWrap(false);
  table.setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Ignored);
  table.verticalHeader()->hide();
  table.verticalHeader()->setDefaultSectionSize(table.fontMetrics().height() + 4);
  QHeaderView& header = *table.horizontalHeader();
  header.setStretchLastSection(true);
  header.setHighlightSections(false);
  header.setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
}

void SetColor(QWidget& widget, QPalette::ColorRole role, QRgb color) {
  QPalette palette = widget.palette();
  palette.setColor(role, QColor(color));
  widget.setPalette(palette);
}

QFont TitleFont(const QFont& base) {
  QFont font = base;
  font.setPointSizeF(base.pointSizeF() * 1.5);
  font.setBold(true);
  return font;
}

QFont CaptionFont(const QFont& base) {
  QFont font = base;
  font.setBold(true);
  return font;
}

GradientButton& AddButton(const char* name, QWidget& parent, const char* caption, char access_key) {
  return AddSoftButton(name, parent, caption, access_key, kButtonColors);
}

void Widen(GradientButton& button, int width) {
  button.setMinimumWidth(std::max(width, button.sizeHint().width()));
}

QPixmap HelpPicture(bool highlighted) {
  QPixmap picture = BlankPicture({28, 28});
  QPainter painter(&picture);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(QPen(QColor(kTextColor), 1.2));
  painter.setBrush(highlighted ? QColor(255, 190, 70) : QColor(kPageBackground));
  painter.drawEllipse(QRectF(2, 2, 24, 24));
  QFont font;
  font.setPixelSize(17);
  font.setBold(true);
  painter.setFont(font);
  painter.setPen(highlighted ? QColor(kTextColor) : QColor(Qt::white));
  painter.drawText(QRectF(0, 0, 28, 28), Qt::AlignCenter, "?");
  return picture;
}

QPixmap LogoPicture() {
  QPixmap picture = BlankPicture({120, 56});
  QPainter painter(&picture);
  painter.setRenderHint(QPainter::Antialiasing);
  PaintCylinder(painter, {6, 8, 34, 42}, QColor(226, 96, 74));
  PaintCylinder(painter, {80, 8, 34, 42}, QColor(255, 190, 70));
  painter.setPen(QPen(Qt::white, 3, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  painter.setBrush(Qt::NoBrush);
  painter.drawLine(QPointF(48, 24), QPointF(72, 24));
  painter.drawPolyline(QPolygonF({{66, 18}, {72, 24}, {66, 30}}));
  painter.drawLine(QPointF(48, 36), QPointF(72, 36));
  painter.drawPolyline(QPolygonF({{54, 30}, {48, 36}, {54, 42}}));
  return picture;
}

StepMarker::StepMarker(QWidget* parent) : QWidget(parent) {
  setFixedSize(18, 18);
}

void StepMarker::SetFillColor(const QColor& color) {
  fill_ = color;
  update();
}

void StepMarker::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(QPen(QColor(255, 255, 255, 150), 1.4));
  painter.setBrush(fill_);
  painter.drawEllipse(QRectF(rect()).adjusted(2, 2, -2, -2));
}

}  // namespace dorvane::theme
