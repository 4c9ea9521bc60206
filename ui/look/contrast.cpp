#include "ui/look/contrast.h"

#include <algorithm>
#include <cmath>

namespace dorvane {

namespace {

constexpr double kReadable = 4.5;

/// The light that a colour gives, 0 to 1.
double Luminance(const QColor& color) {
  const auto linear = [](double part) {
    return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
  };
  return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
         0.0722 * linear(color.blueF());
}

}  // namespace

double Contrast(const QColor& a, const QColor& b) {
  const double one = Luminance(a) + 0.05;
  const double other = Luminance(b) + 0.05;
  return std::max(one / other, other / one);
}

QColor Mix(const QColor& from, const QColor& to, double part) {
  const auto channel = [part](int a, int b) {
    return static_cast<int>(std::lround(a + (b - a) * part));
  };
  return QColor(channel(from.red(), to.red()), channel(from.green(), to.green()),
                channel(from.blue(), to.blue()));
}

QColor Readable(const QColor& ink, std::initializer_list<QColor> grounds) {
  const auto is_readable = [grounds](const QColor& color) {
    return std::ranges::all_of(
        grounds, [&color](const QColor& ground) { return Contrast(color, ground) >= kReadable; });
  };
  const QColor& ground = *grounds.begin();
  const QColor end =
      Contrast(Qt::white, ground) > Contrast(Qt::black, ground) ? Qt::white : Qt::black;
  constexpr int kSteps = 20;
  for (int step = 0; step < kSteps; ++step) {
    const QColor color = Mix(ink, end, static_cast<double>(step) / kSteps);
    if (is_readable(color)) return color;
  }
  return end;
}

}  // namespace dorvane
