#pragma once

#include <QString>
#include <string_view>

namespace dorvane {

/// A UTF-8 text as Qt keeps texts.
inline QString ToQString(std::string_view utf8) {
  return QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
}

}  // namespace dorvane
