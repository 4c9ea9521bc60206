#include "endpoint/literal_text.h"

#include <optional>
#include <utility>

#include "platform/text/ascii.h"

namespace dorvane {

namespace {

/// Nothing when a character is no hexadecimal digit. An odd number of digits has a leading zero.
std::optional<std::string> BytesOfHex(std::string_view digits) {
  std::string bytes;
  int high = digits.size() % 2 == 0 ? -1 : 0;
  for (const char digit : digits) {
    const int nibble = text::HexDigit(digit);
    if (nibble < 0) return std::nullopt;
    if (high < 0) {
      high = nibble;
      continue;
    }
    bytes.push_back(static_cast<char>(high * 16 + nibble));
    high = -1;
  }
  return bytes;
}

}  // namespace

std::string PrefixEach(std::string_view text, std::string_view characters, char prefix) {
  std::string result;
  result.reserve(text.size());
  for (const char c : text) {
    if (characters.find(c) != std::string_view::npos) result += prefix;
    result += c;
  }
  return result;
}

std::string SqlText(std::string_view text) {
  return text::Doubled(text, '\'');
}

void AppendHexDigits(std::string& out, std::string_view bytes) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  const std::size_t start = out.size();
  out.resize(start + 2 * bytes.size());
  char* digit = out.data() + start;
  for (const char byte : bytes) {
    const auto code = static_cast<unsigned char>(byte);
    *digit++ = kDigits[code >> 4];
    *digit++ = kDigits[code & 15];
  }
}

std::string HexCode(std::string_view bytes) {
  std::string code = "0x";
  AppendHexDigits(code, bytes);
  return code;
}

std::string BinaryDefaultBytes(std::string_view text) {
  if (text.substr(0, 2) == "0x" || text.substr(0, 2) == "0X") {
    if (auto bytes = BytesOfHex(text.substr(2))) return *std::move(bytes);
  }
  return std::string(text);
}

std::string GuidBytes(std::string_view braced) {
  constexpr std::size_t kBracedSize = 38;
  if (braced.size() != kBracedSize) return std::string(1, '\0');
  std::string digits;
  for (const auto& [first, count] :
       {std::pair<std::size_t, std::size_t>{1, 8}, {10, 4}, {15, 4}, {20, 4}, {25, 12}}) {
    digits.append(braced.substr(first, count));
  }
  return BytesOfHex(digits).value_or(std::string(1, '\0'));
}

}  // namespace dorvane
