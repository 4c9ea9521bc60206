#include "job/encryptor.h"

#include <algorithm>
#include <array>

#include "platform/text/code_page.h"
#include "platform/text/utf8.h"

namespace dorvane {

namespace {

/// Codes first to last move up by shift when scrambled.
struct Range {
  unsigned char first;
  unsigned char last;
  unsigned char shift;
};

constexpr std::array<Range, 3> kRanges = {{{'A', 'Z', 127}, {'a', 'z', 121}, {'0', '9', 196}}};

// In UTF-8 text letters that look like scrambled ones stand this much higher, in private use.
constexpr char32_t kAside = 0xE000;

bool LooksScrambled(char32_t character) {
  return std::ranges::any_of(kRanges, [character](const Range& range) {
    return character >= char32_t{range.first} + range.shift &&
           character <= char32_t{range.last} + range.shift;
  });
}

char32_t Scrambled(char32_t character) {
  for (const Range& range : kRanges) {
    if (character >= range.first && character <= range.last) return character + range.shift;
  }
  return LooksScrambled(character) ? character + kAside : character;
}

char32_t Plain(char32_t character) {
  for (const Range& range : kRanges) {
    const char32_t plain = character - range.shift;
    if (plain >= range.first && plain <= range.last) return plain;
  }
  return LooksScrambled(character - kAside) ? character - kAside : character;
}

/// Bytes that are not UTF-8 are left as they are.
std::string MappedText(std::string_view utf8, char32_t (*map)(char32_t)) {
  std::string result;
  while (!utf8.empty()) {
    const char byte = utf8.front();
    const auto character = text::TakeCodePoint(utf8);
    if (character) {
      text::AppendUtf8(result, map(*character));
    } else {
      result += byte;
    }
  }
  return result;
}

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

std::optional<std::string> ScrambledPassword(const std::string& password, files::TextForm form) {
  std::string line = form == files::TextForm::Utf8 ? MappedText(password, Scrambled)
                                                   : Encryptor().Encrypt(text::ToAnsi(password));
  if (PlainPassword(line, form) != password) return std::nullopt;
  return line;
}

std::string PlainPassword(std::string_view line, files::TextForm form) {
  if (form == files::TextForm::Utf8) return MappedText(line, Plain);
  return text::FromAnsi(Encryptor().Decrypt(line));
}

}  // namespace dorvane
