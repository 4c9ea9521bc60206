#include "sandbox/text/utf16.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "sandbox/text/utf8.h"

namespace sandbox {

namespace {

constexpr char32_t kReplacement = 0xFFFD;

bool IsHighSurrogate(char32_t unit) {
  return unit >= 0xD800 && unit < 0xDC00;
}
bool IsLowSurrogate(char32_t unit) {
  return unit >= 0xDC00 && unit < 0xE000;
}

char32_t UnitAt(const char* bytes) {
  std::uint16_t unit;
  std::memcpy(&unit, bytes, sizeof unit);
  return unit;
}

char* PutUnit(char* to, char32_t unit) {
  const auto narrow = static_cast<std::uint16_t>(unit);
  std::memcpy(to, &narrow, sizeof narrow);
  return to + sizeof narrow;
}

char* PutUtf8(char* to, char32_t code) {
  const auto tail = [&](int shift) { *to++ = static_cast<char>(0x80 | ((code >> shift) & 0x3F)); };
  if (code < 0x80) {
    *to++ = static_cast<char>(code);
  } else if (code < 0x800) {
    *to++ = static_cast<char>(0xC0 | code >> 6);
    tail(0);
  } else if (code < 0x10000) {
    *to++ = static_cast<char>(0xE0 | code >> 12);
    tail(6);
    tail(0);
  } else {
    *to++ = static_cast<char>(0xF0 | code >> 18);
    tail(12);
    tail(6);
    tail(0);
  }
  return to;
}

// Copies the ASCII characters that the UTF-16 text starts with, four at a time and within `room`.
void TakeAscii(const char*& from, const char* end, char*& to, const char* room) {
  constexpr std::uint64_t kBeyondAscii = 0xFF80FF80FF80FF80;
  for (std::uint64_t four; end - from >= 8 && room - to >= 4; from += 8, to += 4) {
    std::memcpy(&four, from, sizeof four);
    if ((four & kBeyondAscii) != 0) return;
    four = (four | four >> 8) & 0x0000FFFF0000FFFF;
    const auto packed = static_cast<std::uint32_t>(four | four >> 16);
    std::memcpy(to, &packed, sizeof packed);
  }
}

struct Decoded {
  char32_t code;
  std::size_t bytes;
};

// The first character of UTF-8 text; a byte that starts none is one by itself.
Decoded FirstOf(std::string_view text) {
  const auto lead = static_cast<unsigned char>(text.front());
  if (lead < 0x80) return {lead, 1};
  const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
  if (lead < 0xC2 || lead > 0xF4 || text.size() < length) return {kReplacement, 1};
  char32_t code = lead & (0xFFu >> (length + 1));
  for (std::size_t i = 1; i < length; ++i) {
    if ((text[i] & 0xC0) != 0x80) return {kReplacement, 1};
    code = code << 6 | (static_cast<unsigned char>(text[i]) & 0x3Fu);
  }
  if (code > 0x10FFFF || IsHighSurrogate(code) || IsLowSurrogate(code)) return {kReplacement, 1};
  return {code, length};
}

void AppendUtf8(std::string_view utf16, std::string& out) {
  constexpr std::ptrdiff_t kLongestCharacter = 4;
  const char* from = utf16.data();
  const char* const end = from + utf16.size();
  while (end - from >= 2) {
    std::array<char, 2048> block;
    const char* const room = block.data() + block.size();
    char* to = block.data();
    while (end - from >= 2 && room - to >= kLongestCharacter) {
      char32_t code = UnitAt(from);
      from += 2;
      if (IsHighSurrogate(code) && end - from >= 2 && IsLowSurrogate(UnitAt(from))) {
        code = 0x10000 + ((code - 0xD800) << 10) + (UnitAt(from) - 0xDC00);
        from += 2;
      } else if (IsHighSurrogate(code) || IsLowSurrogate(code)) {
        code = kReplacement;
      }
      to = PutUtf8(to, code);
      TakeAscii(from, end, to, room);
    }
    out.append(block.data(), to);
  }
  if (from == end) return;
  char half[kLongestCharacter];
  out.append(half, PutUtf8(half, kReplacement));
}

}  // namespace

bool IsAscii(std::string_view text) {
  unsigned char all = 0;
  for (char c : text) all |= static_cast<unsigned char>(c);
  return all < 0x80;
}

void AppendUtf16(std::string_view utf8, std::string& out) {
  const std::size_t start = out.size();
  out.resize(start + 2 * utf8.size());
  char* to = out.data() + start;
  if (IsAscii(utf8)) {
    for (std::size_t i = 0; i < utf8.size(); ++i) to[2 * i] = utf8[i];
    return;
  }
  while (!utf8.empty()) {
    const Decoded decoded = FirstOf(utf8);
    utf8.remove_prefix(decoded.bytes);
    if (decoded.code < 0x10000) {
      to = PutUnit(to, decoded.code);
      continue;
    }
    to = PutUnit(to, 0xD800 + ((decoded.code - 0x10000) >> 10));
    to = PutUnit(to, 0xDC00 + ((decoded.code - 0x10000) & 0x3FF));
  }
  out.resize(static_cast<std::size_t>(to - out.data()));
}

std::string Utf8ToUtf16(std::string_view utf8) {
  std::string utf16;
  AppendUtf16(utf8, utf16);
  return utf16;
}

std::string Utf16ToUtf8(std::string_view bytes) {
  std::string utf8;
  AppendUtf8(bytes, utf8);
  return utf8;
}

void Utf16Decoder::Append(std::string_view piece, std::string& utf8) {
  std::string joined;
  if (!rest_.empty()) piece = joined = rest_.append(piece);
  std::size_t whole = piece.size() / 2 * 2;
  if (whole > 0 && IsHighSurrogate(UnitAt(piece.data() + whole - 2))) whole -= 2;
  AppendUtf8(piece.substr(0, whole), utf8);
  rest_ = piece.substr(whole);
}

void Utf16Decoder::Finish(std::string& utf8) {
  AppendUtf8(rest_, utf8);
  rest_.clear();
}

}  // namespace sandbox
