#pragma once

#include <QColor>
#include <initializer_list>

namespace dorvane {

/// From 1, the same lightness, to 21, black and white.
double Contrast(const QColor& a, const QColor& b);

/// `part` of `to` (0 to 1) in `from`.
QColor Mix(const QColor& from, const QColor& to, double part);

/// `ink` itself where words in it can be read on each of the grounds (4.5), else the nearest colour
/// on its way to white or black with which they can. The grounds are alike light.
QColor Readable(const QColor& ink, std::initializer_list<QColor> grounds);

}  // namespace dorvane
