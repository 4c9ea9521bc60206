#pragma once

#include <QColor>
#include <QImage>
#include <QPalette>
#include <algorithm>
#include <cmath>
#include <vector>

namespace dorvane::test {

/// What small text needs.
inline constexpr double kReadable = 4.5;

inline double Luminance(QRgb color) {
  const auto linear = [](int value) {
    const double part = value / 255.0;
    return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
  };
  return 0.2126 * linear(qRed(color)) + 0.7152 * linear(qGreen(color)) +
         0.0722 * linear(qBlue(color));
}

inline double Contrast(const QColor& a, const QColor& b) {
  const auto [dark, light] = std::minmax({Luminance(a.rgb()), Luminance(b.rgb())});
  return (light + 0.05) / (dark + 0.05);
}

/// Of the picture's ground, which most of it is, to the colour farthest from it.
inline double Contrast(const QImage& picture) {
  std::vector<double> lights;
  for (int y = 0; y < picture.height(); ++y) {
    for (int x = 0; x < picture.width(); ++x) lights.push_back(Luminance(picture.pixel(x, y)));
  }
  std::ranges::sort(lights);
  const double ground = lights[lights.size() / 2] + 0.05;
  return std::max((lights.back() + 0.05) / ground, ground / (lights.front() + 0.05));
}

/// A desktop's dark palette.
inline QPalette DarkPalette() {
  QPalette dark(QColor(45, 45, 48), QColor(30, 30, 32));
  dark.setColor(QPalette::Base, QColor(30, 30, 32));
  return dark;
}

}  // namespace dorvane::test
