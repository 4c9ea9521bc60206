#pragma once

#include <QWidget>
#include <functional>

#include "ui/look/look.h"

namespace dorvane {

/// The look of all windows: that of the user's skin, on the desktop's palette as it is now.
const Look& CurrentLook();

/// Keeps a skin as the user's choice and gives every open window its look.
void ChooseSkin(const QString& name);

/// Calls `dress` with the look, now and whenever the user chooses another skin or the desktop
/// changes its palette, as long as `widget` lives.
void FollowLook(QWidget& widget, std::function<void(const Look&)> dress);

/// Gives a widget one of the look's palettes, now and from then on.
void FollowPalette(QWidget& widget, QPalette Look::*palette);

}  // namespace dorvane
