#include "platform/ado/odbc/utf16.h"

#include <algorithm>

#include "platform/text/utf8.h"

namespace dorvane::ado::odbc {

namespace {

constexpr char32_t kReplacement = 0xFFFD;

bool IsHighSurrogate(char16_t unit) {
  return unit >= 0xD800 && unit < 0xDC00;
}
bool IsLowSurrogate(char16_t unit) {
  return unit >= 0xDC00 && unit < 0xE000;
}

/// The code point at `position`, which moves behind it.
char32_t NextCodePoint(std::u16string_view utf16, std::size_t& position) {
  const char16_t unit = utf16[position++];
  if (!text::IsSurrogate(unit)) return unit;
  if (!IsHighSurrogate(unit) || position == utf16.size() || !IsLowSurrogate(utf16[position])) {
    return kReplacement;
  }
  return 0x10000 + ((char32_t{unit} - 0xD800) << 10) + (utf16[position++] - 0xDC00);
}

}  // namespace

std::u16string ToUtf16(std::string_view utf8) {
  // No text has more units than bytes.
  std::u16string result(utf8.size(), u'\0');
  char16_t* out = result.data();
  while (!utf8.empty()) {
    // Nearly all of a long statement is ASCII, which is widened many characters at a time.
    const auto other = std::ranges::find_if(utf8, [](char c) { return (c & 0x80) != 0; });
    out = std::copy(utf8.begin(), other, out);
    utf8.remove_prefix(static_cast<std::size_t>(other - utf8.begin()));
    if (utf8.empty()) break;
    const char32_t code_point = text::TakeCodePoint(utf8).value_or(kReplacement);
    if (code_point < 0x10000) {
      *out++ = static_cast<char16_t>(code_point);
    } else {
      *out++ = static_cast<char16_t>(0xD7C0 + (code_point >> 10));
      *out++ = static_cast<char16_t>(0xDC00 + (code_point & 0x3FF));
    }
  }
  result.resize(out - result.data());
  return result;
}

std::size_t Utf8Size(std::u16string_view utf16) {
  std::size_t size = 0;
  for (std::size_t position = 0; position < utf16.size();) {
    size += text::Utf8Size(NextCodePoint(utf16, position));
  }
  return size;
}

char* WriteUtf8(std::u16string_view utf16, char* out) {
  for (std::size_t position = 0; position < utf16.size();) {
    out = text::WriteUtf8(NextCodePoint(utf16, position), out);
  }
  return out;
}

std::string ToUtf8(std::u16string_view utf16) {
  std::string result(Utf8Size(utf16), '\0');
  WriteUtf8(utf16, result.data());
  return result;
}

}  // namespace dorvane::ado::odbc
