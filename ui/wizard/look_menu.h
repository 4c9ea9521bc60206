#pragma once

class QWidget;

namespace dorvane {

class GradientButton;

/// The button with the menu of skins; choosing one gives every window its look at once.
GradientButton& AddLookButton(QWidget& bar);

}  // namespace dorvane
