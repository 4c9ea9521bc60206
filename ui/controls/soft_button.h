#pragma once

#include <QColor>
#include <QString>

#include "ui/controls/gradient_button.h"

namespace dorvane {

/// Distances in a dialog, in logical pixels.
inline constexpr int kDialogMargin = 20;
inline constexpr int kDialogGap = 10;

/// The colours of a soft button that shades from top to bottom.
struct SoftButtonColors {
  QRgb back;      // at the top
  QRgb gradient;  // at the bottom
  QRgb fore;
  QRgb hover_back;
  QRgb hover_fore;
};

/// A soft button that `parent` owns, clicked with Alt and `access_key` as well ('\0' for none).
GradientButton& AddSoftButton(const char* name, QWidget& parent, const QString& caption,
                              char access_key, const SoftButtonColors& colors);

/// The same as every dialog shows it.
GradientButton& AddDialogButton(const char* name, QWidget& dialog, const QString& caption,
                                char access_key);

}  // namespace dorvane
