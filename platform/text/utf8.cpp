#include "platform/text/utf8.h"

#include <fmt/format.h>

namespace dorvane::text {

namespace {

/// Bytes that follow a lead byte, or -1 for a byte that cannot lead.
int ContinuationBytes(unsigned char lead) {
  if (lead < 0x80) return 0;
  if (lead >= 0xC2 && lead < 0xE0) return 1;
  if (lead >= 0xE0 && lead < 0xF0) return 2;
  if (lead >= 0xF0 && lead < 0xF5) return 3;
  return -1;
}

/// The code point of a lead byte and the bytes behind it.
std::optional<char32_t> Decode(std::string_view text, std::size_t size) {
  if (text.size() < size) return std::nullopt;
  char32_t code_point = static_cast<unsigned char>(text[0]);
  if (size > 1) code_point &= 0x7FU >> size;
  for (const char c : text.substr(1, size - 1)) {
    const auto byte = static_cast<unsigned char>(c);
    if ((byte & 0xC0) != 0x80) return std::nullopt;
    code_point = (code_point << 6) | (byte & 0x3F);
  }
  const bool valid =
      Utf8Size(code_point) == size && code_point <= 0x10FFFF && !IsSurrogate(code_point);
  return valid ? std::optional(code_point) : std::nullopt;
}

}  // namespace

void AppendUtf8(std::string& text, char32_t code_point) {
  char bytes[4];
  text.append(bytes, WriteUtf8(code_point, bytes));
}

std::optional<char32_t> TakeCodePoint(std::string_view& text) {
  const int following = ContinuationBytes(static_cast<unsigned char>(text.front()));
  const auto size = static_cast<std::size_t>(following) + 1;
  const auto code_point = following < 0 ? std::nullopt : Decode(text, size);
  text.remove_prefix(code_point ? size : 1);
  return code_point;
}

std::string Visible(std::string_view text) {
  std::string visible;
  visible.reserve(text.size());
  while (!text.empty()) {
    const std::string_view rest = text;
    const std::optional<char32_t> code_point = TakeCodePoint(text);
    const bool is_control =
        code_point && (*code_point < 0x20 || (*code_point >= 0x7F && *code_point < 0xA0));
    if (!is_control) {
      visible += rest.substr(0, rest.size() - text.size());
    } else if (*code_point == '\r' || *code_point == '\n' || *code_point == '\t') {
      visible += *code_point == '\r' ? "\\r" : *code_point == '\n' ? "\\n" : "\\t";
    } else {
      visible += fmt::format("\\x{:02X}", static_cast<unsigned>(*code_point));
    }
  }
  return visible;
}

std::string_view FirstCharacters(std::string_view text, std::size_t count) {
  std::string_view rest = text;
  for (; count > 0 && !rest.empty(); --count) TakeCodePoint(rest);
  return text.substr(0, text.size() - rest.size());
}

}  // namespace dorvane::text
