#pragma once

#include <QString>

#include "ui/controls/gradient_button.h"

namespace dorvane {

/// A button as the dialogs of this folder show them; `dialog` owns it.
GradientButton& AddDialogButton(const char* name, QWidget& dialog, const QString& caption);

}  // namespace dorvane
