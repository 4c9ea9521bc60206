#include "ui/wizard/theme.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QHeaderView>
#include <QPainter>
#include <QPainterPath>
#include <QTableView>
#include <algorithm>

#include "ui/controls/soft_button.h"
#include "ui/look/current_look.h"

namespace dorvane::theme {

namespace {

constexpr int kPictureScale = 3;

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

void StyleDropDown(QComboBox& list) {
  // The open list is a window of its own and takes no colours from the page.
  FollowPalette(*list.view(), &Look::field);
  list.view()->setTextElideMode(Qt::ElideMiddle);
}

void StyleTable(QTableView& table) {
  FollowPalette(table, &Look::field);
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

void SetColor(QWidget& widget, QPalette::ColorRole role, const QColor& color) {
  QPalette palette;
  palette.setColor(role, color);
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
  return AddSoftButton(name, parent, caption, access_key, &Look::button);
}

void Widen(GradientButton& button, int width) {
  button.setMinimumWidth(std::max(width, button.sizeHint().width()));
}

QPixmap HelpPicture(const Look& look, bool highlighted) {
  QPixmap picture = BlankPicture({28, 28});
  QPainter painter(&picture);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(QPen(look.help.edge, 1.2));
  painter.setBrush(highlighted ? look.help.hover_ground : look.help.ground);
  painter.drawEllipse(QRectF(2, 2, 24, 24));
  QFont font;
  font.setPixelSize(17);
  font.setBold(true);
  painter.setFont(font);
  painter.setPen(highlighted ? look.help.hover_sign : look.help.sign);
  painter.drawText(QRectF(0, 0, 28, 28), Qt::AlignCenter, "?");
  return picture;
}

QPixmap LogoPicture(const Look& look) {
  QPixmap picture = BlankPicture({120, 56});
  QPainter painter(&picture);
  painter.setRenderHint(QPainter::Antialiasing);
  PaintCylinder(painter, {6, 8, 34, 42}, QColor(226, 96, 74));
  PaintCylinder(painter, {80, 8, 34, 42}, QColor(255, 190, 70));
  painter.setPen(QPen(look.sidebar.arrows, 3, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
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
  painter.setPen(QPen(CurrentLook().sidebar.marker_edge, 1.4));
  painter.setBrush(fill_);
  painter.drawEllipse(QRectF(rect()).adjusted(2, 2, -2, -2));
}

}  // namespace dorvane::theme
