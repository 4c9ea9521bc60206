#pragma once

#include <QImage>
#include <QPixmap>
#include <QString>
#include <QVariant>
#include <ostream>

// How GoogleTest prints what Qt compares.
inline void PrintTo(const QString& text, std::ostream* out) {
  *out << text.toStdString();
}
inline void PrintTo(const QVariant& value, std::ostream* out) {
  *out << value.toString().toStdString();
}
inline void PrintTo(const QImage& image, std::ostream* out) {
  *out << "image " << image.width() << "x" << image.height();
}
