#include "platform/text/code_page.h"

#include <iconv.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <vector>

#include "platform/text/utf8.h"

namespace dorvane::text {

namespace {

struct AnsiCode {
  char32_t character;
  unsigned char code;
};

/// Both directions of codes 0x80 to 0x9F, the only ones that differ from Unicode's first 256.
struct CodePage {
  std::array<std::string, 256> utf8;  // by code
  std::vector<AnsiCode> special;      // sorted by character
};

char32_t CharacterOf(iconv_t converter, unsigned char code) {
  char in = static_cast<char>(code);
  char* in_position = &in;
  std::size_t in_left = 1;
  std::uint32_t out = 0;
  char* out_position = reinterpret_cast<char*>(&out);
  std::size_t out_left = sizeof out;
  if (iconv(converter, &in_position, &in_left, &out_position, &out_left) ==
      static_cast<std::size_t>(-1)) {
    iconv(converter, nullptr, nullptr, nullptr, nullptr);
    return code;  // unassigned
  }
  return out;
}

CodePage ReadCodePage() {
  iconv_t converter = iconv_open("UCS-4LE", "WINDOWS-1252");
  if (converter == reinterpret_cast<iconv_t>(-1)) {
    throw std::runtime_error("the system has no conversion for the code page Windows-1252");
  }
  CodePage page;
  for (int code = 0; code < 256; ++code) {
    const char32_t character = CharacterOf(converter, static_cast<unsigned char>(code));
    AppendUtf8(page.utf8[code], character);
    if (code >= 0x80 && code <= 0x9F) {
      page.special.push_back({character, static_cast<unsigned char>(code)});
    }
  }
  iconv_close(converter);
  std::ranges::sort(page.special, {}, &AnsiCode::character);
  return page;
}

const CodePage& Page() {
  static const CodePage page = ReadCodePage();
  return page;
}

std::optional<unsigned char> CodeOf(char32_t character) {
  if (character < 0x80 || (character > 0x9F && character <= 0xFF)) {
    return static_cast<unsigned char>(character);
  }
  const auto& special = Page().special;
  const auto found = std::ranges::lower_bound(special, character, {}, &AnsiCode::character);
  if (found == special.end() || found->character != character) return std::nullopt;
  return found->code;
}

std::size_t AsciiPrefix(std::string_view utf8) {
  const auto end =
      std::ranges::find_if(utf8, [](char c) { return static_cast<signed char>(c) < 0; });
  return static_cast<std::size_t>(end - utf8.begin());
}

}  // namespace

std::string ToAnsi(std::string_view utf8) {
  std::string ansi;
  ansi.reserve(utf8.size());
  while (!utf8.empty()) {
    const std::size_t ascii = AsciiPrefix(utf8);
    ansi.append(utf8.substr(0, ascii));
    utf8.remove_prefix(ascii);
    if (utf8.empty()) break;
    const auto character = TakeCodePoint(utf8);
    const auto code = character ? CodeOf(*character) : std::nullopt;
    ansi.push_back(code ? static_cast<char>(*code) : '?');
  }
  return ansi;
}

std::string FromAnsi(std::string_view ansi) {
  std::string utf8;
  utf8.reserve(ansi.size());
  for (const char code : ansi) utf8.append(Page().utf8[static_cast<unsigned char>(code)]);
  return utf8;
}

bool FitsAnsi(std::string_view utf8) {
  while (!utf8.empty()) {
    utf8.remove_prefix(AsciiPrefix(utf8));
    if (utf8.empty()) break;
    const auto character = TakeCodePoint(utf8);
    if (!character || !CodeOf(*character)) return false;
  }
  return true;
}

}  // namespace dorvane::text
