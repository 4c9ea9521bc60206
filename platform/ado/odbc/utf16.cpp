#include "platform/ado/odbc/utf16.h"

namespace dorvane::ado::odbc {

namespace {

constexpr char32_t kReplacement = 0xFFFD;

bool IsHighSurrogate(char16_t unit) {
  return unit >= 0xD800 && unit < 0xDC00;
}
bool IsLowSurrogate(char16_t unit) {
  return unit >= 0xDC00 && unit < 0xE000;
}
bool IsSurrogate(char32_t code) {
  return code >= 0xD800 && code < 0xE000;
}

/// The code point at `position`, which moves behind it.
char32_t NextCodePoint(std::u16string_view text, std::size_t& position) {
  const char16_t unit = text[position++];
  if (!IsSurrogate(unit)) return unit;
  if (!IsHighSurrogate(unit) || position == text.size() || !IsLowSurrogate(text[position])) {
    return kReplacement;
  }
  return 0x10000 + ((char32_t{unit} - 0xD800) << 10) + (text[position++] - 0xDC00);
}

/// Continuation bytes that a lead byte announces, or -1 for a byte that cannot lead.
int ContinuationBytes(unsigned char lead) {
  if (lead < 0x80) return 0;
  if (lead >= 0xC2 && lead < 0xE0) return 1;
  if (lead >= 0xE0 && lead < 0xF0) return 2;
  if (lead >= 0xF0 && lead < 0xF5) return 3;
  return -1;
}

char32_t NextCodePoint(std::string_view text, std::size_t& position) {
  static constexpr char32_t kLowest[] = {0, 0x80, 0x800, 0x10000};
  const auto lead = static_cast<unsigned char>(text[position++]);
  const int count = ContinuationBytes(lead);
  if (count == 0) return lead;
  if (count < 0 || text.size() - position < static_cast<std::size_t>(count)) return kReplacement;
  char32_t code = lead & (0x3F >> count);
  for (int i = 0; i < count; ++i) {
    const auto byte = static_cast<unsigned char>(text[position + i]);
    if ((byte & 0xC0) != 0x80) return kReplacement;
    code = (code << 6) | (byte & 0x3F);
  }
  if (code < kLowest[count] || code > 0x10FFFF || IsSurrogate(code)) return kReplacement;
  position += count;
  return code;
}

}  // namespace

std::u16string ToUtf16(std::string_view utf8) {
  // No text has more units than bytes.
  std::u16string result(utf8.size(), u'\0');
  char16_t* out = result.data();
  for (std::size_t position = 0; position < utf8.size();) {
    const char32_t code = NextCodePoint(utf8, position);
    if (code < 0x10000) {
      *out++ = static_cast<char16_t>(code);
    } else {
      *out++ = static_cast<char16_t>(0xD7C0 + (code >> 10));
      *out++ = static_cast<char16_t>(0xDC00 + (code & 0x3FF));
    }
  }
  result.resize(out - result.data());
  return result;
}

std::size_t Utf8Size(std::u16string_view utf16) {
  std::size_t size = 0;
  for (std::size_t position = 0; position < utf16.size();) {
    const char32_t code = NextCodePoint(utf16, position);
    size += code < 0x80 ? 1 : code < 0x800 ? 2 : code < 0x10000 ? 3 : 4;
  }
  return size;
}

char* WriteUtf8(std::u16string_view utf16, char* out) {
  const auto put = [&out](char32_t byte) { *out++ = static_cast<char>(byte); };
  for (std::size_t position = 0; position < utf16.size();) {
    const char32_t code = NextCodePoint(utf16, position);
    if (code < 0x80) {
      put(code);
      continue;
    }
    if (code < 0x800) {
      put(0xC0 | (code >> 6));
    } else {
      if (code < 0x10000) {
        put(0xE0 | (code >> 12));
      } else {
        put(0xF0 | (code >> 18));
        put(0x80 | ((code >> 12) & 0x3F));
      }
      put(0x80 | ((code >> 6) & 0x3F));
    }
    put(0x80 | (code & 0x3F));
  }
  return out;
}

std::string ToUtf8(std::u16string_view utf16) {
  std::string result(Utf8Size(utf16), '\0');
  WriteUtf8(utf16, result.data());
  return result;
}

}  // namespace dorvane::ado::odbc
