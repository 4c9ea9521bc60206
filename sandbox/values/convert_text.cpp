#include <algorithm>
#include <array>
#include <charconv>

#include "sandbox/text/code_page.h"
#include "sandbox/text/utf16.h"
#include "sandbox/values/convert.h"
#include "sandbox/values/convert_parts.h"
#include "sandbox/values/datetime_text.h"
#include "sandbox/values/decimal.h"
#include "sandbox/values/errors.h"

namespace sandbox {
namespace conversion {

namespace {

std::string DoubleText(double number, bool single, int style) {
  const int digits = style == 3 ? 17 : style == 2 ? 16 : style == 1 ? 8 : 6;
  std::string text = style == 1 || style == 2
                         ? fmt::format("{:.{}e}", number, digits - 1)
                         : fmt::format("{:.{}g}", number, single && style == 3 ? 9 : digits);
  const std::size_t e = text.find('e');
  if (e != std::string::npos && text.size() - e < 5) text.insert(e + 2, 5 - (text.size() - e), '0');
  return text;
}

std::size_t CountCharacters(std::string_view text, bool unicode) {
  return unicode ? Utf16Length(text) : CodePointCount(text);
}

}  // namespace

std::string_view Trim(std::string_view text) {
  const auto blank = [](char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; };
  while (!text.empty() && blank(text.front())) text.remove_prefix(1);
  while (!text.empty() && blank(text.back())) text.remove_suffix(1);
  return text;
}

std::string HexText(std::string_view bytes) {
  std::string text;
  for (const char c : bytes) text += fmt::format("{:02X}", static_cast<unsigned char>(c));
  return text;
}

std::string ToText(const Value& value, const TypeInfo& from, const TypeInfo& to, int style) {
  switch (value.index()) {
    case 1:
      return std::get<bool>(value) ? "1" : "0";
    case 2:
      return fmt::format("{}", std::get<std::int64_t>(value));
    case 3:
      return DoubleText(std::get<double>(value), from.type == SqlType::Real, style);
    case 4: {
      const auto& number = std::get<DecimalValue>(value);
      return DecimalText(IsMoney(from.type) ? *Rescale(number, 2) : number);
    }
    case 5:
      return std::get<std::string>(value);
    case 6: {
      const std::string& bytes = std::get<BinaryValue>(value).bytes;
      if (style == 1) return "0x" + HexText(bytes);
      if (style == 2) return HexText(bytes);
      if (!IsUnicode(to.type)) return FromCodePage(bytes);
      // Half a unit at the end is left off.
      return Utf16ToUtf8(std::string_view(bytes).substr(0, bytes.size() / 2 * 2));
    }
    case 7: {
      const auto text = DateTimeText(std::get<DateTimeValue>(value), from, style);
      if (!text) Raise(8114, TypeName(from), TypeName(to));
      return *text;
    }
    default:
      return GuidText(std::get<GuidValue>(value));
  }
}

void CheckNumberFits(const Value& value, const TypeInfo& from, const TypeInfo& to,
                     std::string& text) {
  if (to.length < 0 || text.size() <= static_cast<std::size_t>(to.length)) return;
  if (!IsNumber(from.type)) {
    if (from.type == SqlType::UniqueIdentifier) Raise(8115, "uniqueidentifier", TypeName(to));
    return;
  }
  const bool small = value.index() == 2 && from.type != SqlType::BigInt && !IsUnicode(to.type);
  if (!small) Raise(8115, IsInteger(from.type) ? "expression" : TypeName(from), TypeName(to));
  text = "*";
}

Value FitText(std::string text, const TypeInfo& to, bool storing) {
  const bool unicode = IsUnicode(to.type);
  if (!unicode) text = KeepCodePage(text);
  const bool fixed = to.type == SqlType::Char || to.type == SqlType::NChar;
  if (to.length < 0) return text;
  const auto limit = static_cast<std::size_t>(to.length);
  if (text.size() > limit) {
    const std::size_t count = CountCharacters(text, unicode);
    if (count > limit) {
      std::string kept(Prefix(text, limit, unicode));
      const std::string_view rest = std::string_view(text).substr(kept.size());
      const bool blanks = rest.find_first_not_of(' ') == std::string_view::npos;
      if (storing && !blanks) throw Truncation{kept};
      text = std::move(kept);
    }
  }
  if (fixed) text.append(limit - std::min(limit, CountCharacters(text, unicode)), ' ');
  return text;
}

std::string ToBytes(const Value& value, const TypeInfo& from, const TypeInfo& to) {
  const auto big_endian = [](std::int64_t number, int size) {
    std::string bytes(static_cast<std::size_t>(size), '\0');
    for (std::size_t i = bytes.size(); i-- > 0; number >>= 8)
      bytes[i] = static_cast<char>(number & 0xFF);
    return bytes;
  };
  switch (value.index()) {
    case 1:
      return std::string(1, std::get<bool>(value) ? '\1' : '\0');
    case 2:
      return big_endian(std::get<std::int64_t>(value), Facts(from.type).length);
    case 5: {
      const std::string& text = std::get<std::string>(value);
      return IsUnicode(from.type) ? Utf8ToUtf16(text) : ToCodePage(text);
    }
    case 6:
      return std::get<BinaryValue>(value).bytes;
    default:
      Raise(257, TypeName(from), TypeName(to));
  }
}

Value FitBytes(std::string bytes, const TypeInfo& from, const TypeInfo& to, bool storing) {
  const bool fixed = to.type == SqlType::Binary || to.type == SqlType::Timestamp;
  if (to.length < 0) return BinaryValue{std::move(bytes)};
  const auto limit = static_cast<std::size_t>(to.length);
  const bool number = IsNumber(from.type);
  if (bytes.size() > limit) {
    const bool zeros = bytes.find_first_not_of('\0', limit) == std::string::npos;
    if (storing && !zeros) throw Truncation{""};
    bytes = number ? bytes.substr(bytes.size() - limit) : bytes.substr(0, limit);
  }
  if (fixed && bytes.size() < limit) {
    number ? bytes.insert(0, limit - bytes.size(), '\0') : bytes.append(limit - bytes.size(), '\0');
  }
  return BinaryValue{std::move(bytes)};
}

Value ToGuid(const Value& value, const TypeInfo& from) {
  GuidValue guid{};
  if (std::holds_alternative<GuidValue>(value)) return value;
  const auto* held = std::get_if<std::string>(&value);
  if (!held) Raise(206, TypeName(from), "uniqueidentifier");
  std::string_view text = Trim(*held);
  if (!text.empty() && text.front() == '{') text = text.substr(1, 36);
  static constexpr std::array kDashes{8, 13, 18, 23};
  if (text.size() < 36) Raise(8169);
  std::size_t byte = 0;
  for (std::size_t i = 0; i < 36;) {
    if (std::find(kDashes.begin(), kDashes.end(), static_cast<int>(i)) != kDashes.end()) {
      if (text[i++] != '-') Raise(8169);
      continue;
    }
    unsigned number = 0;
    const auto [end, failure] = std::from_chars(text.data() + i, text.data() + i + 2, number, 16);
    if (failure != std::errc() || end != text.data() + i + 2) Raise(8169);
    guid.bytes[byte++] = static_cast<unsigned char>(number);
    i += 2;
  }
  return guid;
}

}  // namespace conversion

std::string GuidText(const GuidValue& guid) {
  std::string text;
  for (std::size_t i = 0; i < 16; ++i) {
    if (i == 4 || i == 6 || i == 8 || i == 10) text += '-';
    text += fmt::format("{:02X}", guid.bytes[i]);
  }
  return text;
}

}  // namespace sandbox
