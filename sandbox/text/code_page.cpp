#include "sandbox/text/code_page.h"

#include <algorithm>
#include <array>

#include "sandbox/text/utf16.h"
#include "sandbox/text/utf8.h"

namespace sandbox {

namespace {

// The characters of bytes 0x80 to 0x9F; the five unassigned bytes stand for themselves.
constexpr std::array<char32_t, 32> kHighControls{
    0x20AC, 0x81,   0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x8D,   0x017D, 0x8F,   0x90,   0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x9D,   0x017E, 0x0178};

int CodePageByte(char32_t code) {
  if (code < 0x80 || (code >= 0xA0 && code <= 0xFF)) return static_cast<int>(code);
  const auto found = std::find(kHighControls.begin(), kHighControls.end(), code);
  return found == kHighControls.end() ? -1 : 0x80 + static_cast<int>(found - kHighControls.begin());
}

bool FitsCodePage(std::string_view text) {
  if (IsAscii(text)) return true;
  while (!text.empty()) {
    if (CodePageByte(NextCodePoint(text)) < 0) return false;
  }
  return true;
}

}  // namespace

std::string KeepCodePage(std::string_view text) {
  if (FitsCodePage(text)) return std::string(text);
  std::string kept;
  while (!text.empty()) {
    const char32_t code = NextCodePoint(text);
    if (CodePageByte(code) >= 0) {
      AppendUtf8(kept, code);
    } else {
      kept += code > 0xFFFF ? "??" : "?";
    }
  }
  return kept;
}

void AppendCodePage(std::string_view text, std::string& bytes) {
  if (IsAscii(text)) {
    bytes.append(text);
    return;
  }
  while (!text.empty()) {
    const int byte = CodePageByte(NextCodePoint(text));
    bytes += byte < 0 ? '?' : static_cast<char>(byte);
  }
}

std::string ToCodePage(std::string_view text) {
  std::string bytes;
  AppendCodePage(text, bytes);
  return bytes;
}

std::string FromCodePage(std::string_view bytes) {
  if (IsAscii(bytes)) return std::string(bytes);
  std::string text;
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    AppendUtf8(text, byte >= 0x80 && byte < 0xA0 ? kHighControls[byte - 0x80u] : byte);
  }
  return text;
}

std::size_t CodePointCount(std::string_view text) {
  return static_cast<std::size_t>(
      std::count_if(text.begin(), text.end(), [](char c) { return (c & 0xC0) != 0x80; }));
}

std::size_t Utf16Length(std::string_view text) {
  std::size_t units = 0;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    units += (byte & 0xC0) == 0x80 ? 0 : byte >= 0xF0 ? 2 : 1;
  }
  return units;
}

std::string_view Prefix(std::string_view text, std::size_t count, bool utf16) {
  std::string_view rest = text;
  std::size_t units = 0;
  while (!rest.empty()) {
    const std::string_view before = rest;
    const char32_t code = NextCodePoint(rest);
    units += utf16 && code > 0xFFFF ? 2 : 1;
    if (units > count) return text.substr(0, text.size() - before.size());
  }
  return text;
}

}  // namespace sandbox
