#pragma once

#include <QString>

#include "ui/controls/gradient_button.h"

namespace dorvane {

/// A button as the dialogs of this folder show them, clicked with Alt and `access_key` as well;
/// `dialog` owns it.
GradientButton& AddDialogButton(const char* name, QWidget& dialog, const QString& caption,
                                char access_key);

/// Distances of these dialogs in logical pixels.
inline constexpr int kDialogMargin = 20;
inline constexpr int kDialogGap = 10;

}  // namespace dorvane
