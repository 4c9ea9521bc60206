#pragma once

#include <QColor>
#include <QPalette>

namespace dorvane {

/// Of a button that shades from top to bottom.
struct ButtonColors {
  QColor back;      // at the top
  QColor gradient;  // at the bottom
  QColor fore;
  QColor hover_back;
  QColor hover_fore;
};

/// The panel with the step list.
struct SidebarColors {
  QColor top, bottom;
  QColor current_step, other_step;
  QColor current_marker, other_marker, marker_edge;
  QColor arrows;  // of the logo
};

/// The help picture, at rest and under the mouse.
struct HelpColors {
  QColor edge;
  QColor ground, sign;
  QColor hover_ground, hover_sign;
};

/// The frame of a message box where its skin has no pictures.
struct FrameColors {
  QColor title_top, title_bottom;
  QColor edge;
  QColor button, close, sign;
};

/// Every colour of every window. Nothing else in the program's windows has colours of its own, but
/// the icons of messages and the logo's cylinders.
struct Look {
  QPalette window;      // of dialogs and of the help window
  QPalette page;        // of the wizard's pages
  QPalette field;       // of what stands on the ground of a field whole: tables, open lists
  QPalette scroll_bar;  // of a list
  QPalette title;       // of the line above the pages
  QPalette navigation;  // of the bar below them
  QPalette panel;       // of what is shown while a server is waited for
  QPalette message;     // of a message box
  QColor message_title;
  QColor closed_field;  // the ground of a field that cannot be typed into
  QColor card_ground, card_edge;
  QColor veil;  // over the wizard while it waits
  QColor icon;  // in a field
  SidebarColors sidebar;
  HelpColors help;
  FrameColors frame;
  ButtonColors button;         // of the wizard
  ButtonColors dialog_button;  // of every other window
};

/// Blue pages beside a dark step list; dialogs have the desktop's colours.
Look ClassicLook(const QPalette& desktop);

/// Quiet surfaces, light or dark, with one accent colour. The colours are those of the desktop's
/// palette where it is as light or as dark as the look.
Look QuietLook(bool is_dark, const QPalette& desktop);

}  // namespace dorvane
