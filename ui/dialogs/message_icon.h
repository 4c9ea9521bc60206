#pragma once

#include <QPainter>
#include <QRectF>

namespace dorvane {

/// The icons of message boxes, by the numbers of the standard system icons.
enum class MessageIcon {
  kError = 32513,
  kQuestion = 32514,
  kWarning = 32515,
  kInformation = 32516,
};

/// Paints an icon into a square.
void PaintMessageIcon(QPainter& painter, MessageIcon icon, const QRectF& square);

}  // namespace dorvane
