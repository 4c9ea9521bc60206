#pragma once

#include <QPainter>
#include <QRectF>

namespace dorvane {

/// The icons of message boxes, by the numbers of the standard system icons.
enum class MessageIcon {
  Error = 32513,
  Question = 32514,
  Warning = 32515,
  Information = 32516,
};

/// Paints an icon into a square.
void PaintMessageIcon(QPainter& painter, MessageIcon icon, const QRectF& square);

}  // namespace dorvane
