#include "job/encryptor.h"

#include <algorithm>
#include <array>
#include <utility>

#include "platform/text/code_page.h"

namespace dorvane {

namespace {

/// Codes first to last move up by shift when scrambled.
struct Range {
  unsigned char first;
  unsigned char last;
  unsigned char shift;
};

constexpr std::array<Range, 3> kRanges = {{{'A', 'Z', 127}, {'a', 'z', 121}, {'0', '9', 196}}};

template <typename Map>
std::string Mapped(std::string_view text, Map map) {
  std::string result(text);
  std::ranges::transform(result, result.begin(), map);
  return result;
}

}  // namespace

std::string Encryptor::Encrypt(std::string_view plain) const {
  return Mapped(plain, [](unsigned char code) -> char {
    for (const Range& range : kRanges) {
      if (code >= range.first && code <= range.last) return static_cast<char>(code + range.shift);
    }
    return static_cast<char>(code);
  });
}

std::string Encryptor::Decrypt(std::string_view scrambled) const {
  return Mapped(scrambled, [](unsigned char code) -> char {
    for (const Range& range : kRanges) {
      const int plain = code - range.shift;
      if (plain >= range.first && plain <= range.last) return static_cast<char>(plain);
    }
    return static_cast<char>(code);
  });
}

std::optional<std::string> ScrambledPassword(const std::string& password) {
  const Encryptor encryptor;
  const std::string plain = text::ToAnsi(password);
  std::string scrambled = encryptor.Encrypt(plain);
  const bool is_kept = text::FitsAnsi(password) && encryptor.Decrypt(scrambled) == plain;
  return is_kept ? std::optional(std::move(scrambled)) : std::nullopt;
}

}  // namespace dorvane
