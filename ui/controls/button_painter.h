#pragma once

#include <QFont>
#include <QPainter>

#include "ui/controls/button_look.h"

namespace dorvane {

/// The state of mouse and keyboard in which a button is painted.
struct ButtonState {
  bool enabled = true;
  bool hovered = false;
  bool pressed = false;
  bool is_default = false;
  bool focus_rect = false;
  QChar access_key;  // underlined in the caption where the caption itself marks none
};

/// Paints the whole button into `bounds`.
void PaintButton(QPainter& painter, const ButtonLook& look, const ButtonState& state,
                 const QRectF& bounds, const QFont& font);

}  // namespace dorvane
