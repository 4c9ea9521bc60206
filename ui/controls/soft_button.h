#pragma once

#include <QString>

#include "ui/controls/gradient_button.h"
#include "ui/look/look.h"

namespace dorvane {

/// Distances in a dialog, in logical pixels.
inline constexpr int kDialogMargin = 20;
inline constexpr int kDialogGap = 10;

/// A soft button that `parent` owns, clicked with Alt and `access_key` as well ('\0' for none). It
/// follows the look.
GradientButton& AddSoftButton(const char* name, QWidget& parent, const QString& caption,
                              char access_key, ButtonColors Look::*colors);

/// The same as every dialog shows it.
GradientButton& AddDialogButton(const char* name, QWidget& dialog, const QString& caption,
                                char access_key);

}  // namespace dorvane
