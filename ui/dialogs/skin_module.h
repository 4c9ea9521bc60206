#pragma once

#include <QRect>
#include <QString>
#include <QWidget>
#include <filesystem>
#include <string_view>

namespace dorvane {

/// Loads the current skin from the program's folder into every picture control of `frm`. Pictures
/// whose file is missing or unreadable stay as they are.
void LoadSkin(QWidget& frm);
/// The same from the folder of one skin: one file per picture control, its name + ".gif".
void LoadSkin(QWidget& frm, const std::filesystem::path& skin_folder);

/// Where a window of the given size has the frame picture of that name; extents that the frame
/// leaves alone are those of `designed`. An unknown name keeps position 0, 0.
QRect SkinPictureRect(std::string_view name, QSize window, QSize designed);

/// Gives a window its background, caption, rounded outline and the places of its frame pictures.
/// A window may lack any of them.
void LayoutSkinFrame(QWidget& frm);

/// Cuts the window to a rectangle with corners of 12 pixels radius.
void RoundWindowCorners(QWidget& frm);

/// Moves the window with the mouse, whose left button is down, until it is released. A maximised
/// window stays where it is.
void DragWindow(QWidget& frm);

/// Keeps the window above all others, or no longer.
void SetTopMost(QWidget& frm, bool top_most);

}  // namespace dorvane
