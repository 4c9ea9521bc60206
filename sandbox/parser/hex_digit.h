#pragma once

#include <array>

namespace sandbox {

/// What HexDigit gives for a character that is no hexadecimal digit.
inline constexpr unsigned kNoHexDigit = 0xFF;

/// The value of a hexadecimal digit. By table: literals of megabytes consist of them.
inline unsigned HexDigit(char c) {
  static constexpr auto kValues = [] {
    std::array<unsigned char, 256> values{};
    values.fill(kNoHexDigit);
    for (unsigned char i = 0; i < 10; ++i) values['0' + i] = i;
    for (unsigned char i = 0; i < 6; ++i) values['a' + i] = values['A' + i] = 10 + i;
    return values;
  }();
  return kValues[static_cast<unsigned char>(c)];
}

}  // namespace sandbox
