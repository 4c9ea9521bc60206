#pragma once

#include <QPainter>
#include <QRectF>
#include <cstdint>

namespace dorvane {

/// The signs of message boxes, by the numbers of the standard system icons.
enum class MessageIcon {
  kError = 32513,
  kQuestion = 32514,
  kWarning = 32515,
  kInformation = 32516,
};

/// Paints a sign into a square.
void PaintMessageIcon(QPainter& painter, MessageIcon icon, const QRectF& square);

}  // namespace dorvane
