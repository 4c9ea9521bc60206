#include <algorithm>
#include <charconv>

#include "sandbox/parser/hex_digit.h"
#include "sandbox/parser/parser.h"
#include "sandbox/text/code_page.h"
#include "sandbox/values/errors.h"
#include "sandbox/values/type_rules.h"

namespace sandbox {

namespace {

constexpr int kMaxDigits = 38;

Literal TextLiteral(const Token& token, bool unicode) {
  std::string text = token.escaped ? Unquote(token.text, '\'') : std::string(token.text);
  if (!unicode) text = KeepCodePage(text);
  const TypeInfo type = unicode ? NVarChar(Utf16Length(text)) : VarChar(CodePointCount(text));
  return {std::move(text), type, false};
}

// Digits with at most one point, as an exact number of as many digits.
Literal ExactLiteral(std::string_view digits, bool negative) {
  DecimalValue number;
  int significant = 0;
  bool fraction = false;
  for (const char c : digits) {
    if (c == '.') {
      fraction = true;
      continue;
    }
    if (significant > 0 || c != '0') ++significant;
    if (significant > kMaxDigits) Raise(1007, digits);
    number.unscaled = number.unscaled * 10 + (c - '0');
    if (fraction) ++number.scale;
  }
  if (number.scale > kMaxDigits) Raise(1007, digits);
  if (negative) number.unscaled = -number.unscaled;
  const int precision = std::max({1, significant, number.scale});
  return {number, DecimalType(precision, number.scale), false};
}

Literal IntegerLiteral(std::string_view digits, bool negative) {
  std::int64_t number = 0;
  const auto [end, failure] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  const std::int64_t limit = std::int64_t{INT32_MAX} + (negative ? 1 : 0);
  if (failure != std::errc() || number > limit) return ExactLiteral(digits, negative);
  return {negative ? -number : number, IntType(), false};
}

Literal FloatLiteral(std::string_view text, bool negative) {
  std::string number(text);
  if (number.back() == 'e' || number.back() == 'E' || number.back() == '+' ||
      number.back() == '-') {
    number += '0';
  }
  double value = 0;
  const auto [end, failure] = std::from_chars(number.data(), number.data() + number.size(), value);
  if (failure == std::errc::result_out_of_range && number.find("e-") == std::string::npos &&
      number.find("E-") == std::string::npos) {
    Raise(232, "float", text);
  }
  return {negative ? -value : value, FloatType(), false};
}

// An odd digit is the first byte's.
Literal HexLiteral(std::string_view text) {
  const std::string_view digits = text.substr(2);
  std::string bytes((digits.size() + 1) / 2, '\0');
  char* to = bytes.data();
  const char* from = digits.data();
  if (digits.size() % 2 == 1) *to++ = static_cast<char>(HexDigit(*from++));
  for (const char* const end = digits.data() + digits.size(); from != end; from += 2) {
    *to++ = static_cast<char>(HexDigit(from[0]) << 4 | HexDigit(from[1]));
  }
  const TypeInfo type = VarBinary(bytes.size());
  return {BinaryValue{std::move(bytes)}, type, false};
}

Literal MoneyLiteral(std::string_view text, bool negative) {
  Literal literal = ExactLiteral(text.substr(1), negative);
  auto& number = std::get<DecimalValue>(literal.value);
  for (; number.scale < 4; ++number.scale) number.unscaled *= 10;
  for (; number.scale > 4; --number.scale) number.unscaled /= 10;
  literal.type = MoneyType();
  return literal;
}

}  // namespace

bool IsLiteralToken(const Token& token) {
  switch (token.kind) {
    case TokenKind::String:
    case TokenKind::NString:
    case TokenKind::Integer:
    case TokenKind::Decimal:
    case TokenKind::Float:
    case TokenKind::Money:
    case TokenKind::Hex:
      return true;
    default:
      return token.Is("null");
  }
}

bool IsNumberToken(const Token& token) {
  return token.kind >= TokenKind::Integer && token.kind <= TokenKind::Money;
}

Literal ParseLiteral(const Token& token, bool negative) {
  switch (token.kind) {
    case TokenKind::String:
      return TextLiteral(token, false);
    case TokenKind::NString:
      return TextLiteral(token, true);
    case TokenKind::Integer:
      return IntegerLiteral(token.text, negative);
    case TokenKind::Decimal:
      return ExactLiteral(token.text, negative);
    case TokenKind::Float:
      return FloatLiteral(token.text, negative);
    case TokenKind::Money:
      return MoneyLiteral(token.text, negative);
    case TokenKind::Hex:
      return HexLiteral(token.text);
    default:
      return {std::monostate(), IntType(), true};
  }
}

}  // namespace sandbox
