#include "sandbox/engine/literal_binding.h"

#include <charconv>
#include <cmath>

#include "sandbox/parser/parser.h"
#include "sandbox/storage/encoding.h"
#include "sandbox/text/code_page.h"
#include "sandbox/text/utf16.h"
#include "sandbox/values/convert.h"
#include "sandbox/values/datetime_text.h"
#include "sandbox/values/decimal.h"
#include "sandbox/values/type_rules.h"

namespace sandbox {
namespace {

constexpr std::size_t kSurelyInt = 9;     // digits
constexpr std::size_t kSurelyExact = 18;  // digits that 64 bits hold

bool BindText(sqlite3_stmt* statement, int index, const TypeInfo& type, const LiteralText& literal,
              std::string& scratch) {
  std::string_view text = literal.text;
  if (literal.escaped) text = scratch = Unquote(text, '\'');
  const bool ascii = IsAscii(text);
  const bool unicode = IsUnicode(type.type);
  const bool any_character = unicode && literal.kind == TokenKind::NString;
  if (!ascii && !any_character && !FitsCodePage(text)) return false;
  if (type.length >= 0) {
    const auto limit = static_cast<std::size_t>(type.length);
    const std::size_t count = ascii     ? text.size()
                              : unicode ? Utf16Length(text)
                                        : CodePointCount(text);
    if (count > limit) return false;
    const bool fixed = type.type == SqlType::Char || type.type == SqlType::NChar;
    if (fixed && count < limit) {
      if (!literal.escaped) scratch.assign(text);
      text = scratch.append(limit - count, ' ');
    }
  }
  sqlite3_bind_text64(statement, index, text.data(), text.size(), SQLITE_STATIC, SQLITE_UTF8);
  return true;
}

bool BindMoment(sqlite3_stmt* statement, int index, const TypeInfo& type,
                const LiteralText& literal, std::string&) {
  const auto moment = ParsePlainDateTime(literal.text);
  if (!moment) return false;
  const auto fitted = FitDateTime(*moment, type);
  if (fitted) BindValue(statement, index, *fitted, type);
  return fitted.has_value();
}

bool BindBytes(sqlite3_stmt* statement, int index, const TypeInfo& type, const LiteralText& literal,
               std::string& scratch) {
  scratch.clear();
  AppendHexBytes(literal.text, scratch);
  if (type.length >= 0) {
    const auto limit = static_cast<std::size_t>(type.length);
    if (scratch.size() > limit) return false;
    if (type.type == SqlType::Binary) scratch.resize(limit, '\0');
  }
  sqlite3_bind_blob64(statement, index, scratch.data(), scratch.size(), SQLITE_STATIC);
  return true;
}

bool BindFloat(sqlite3_stmt* statement, int index, const TypeInfo& type, const LiteralText& literal,
               std::string&) {
  double number = 0;
  const char* const end = literal.text.data() + literal.text.size();
  const auto [stop, failure] = std::from_chars(literal.text.data(), end, number);
  if (failure != std::errc() || stop != end) return false;
  const bool exact_zero = number == 0 && literal.kind != TokenKind::Float;  // has no sign
  if (literal.negative && !exact_zero) number = -number;
  if (type.type == SqlType::Real) number = static_cast<float>(number);
  if (!std::isfinite(number)) return false;
  sqlite3_bind_double(statement, index, number);
  return true;
}

struct ShortDecimal {
  std::int64_t unscaled = 0;
  int scale = 0;
};

// Of at most kSurelyExact digits.
ShortDecimal ReadExact(const LiteralText& literal) {
  ShortDecimal number;
  bool fraction = false;
  for (const char c : literal.text) {
    if (c == '.') {
      fraction = true;
      continue;
    }
    number.unscaled = number.unscaled * 10 + (c - '0');
    number.scale += fraction ? 1 : 0;
  }
  if (literal.negative) number.unscaled = -number.unscaled;
  return number;
}

bool BindExact(sqlite3_stmt* statement, int index, const TypeInfo& type, const LiteralText& literal,
               std::string&) {
  const ShortDecimal number = ReadExact(literal);
  if (!IsExact(type.type)) {
    const bool bit = type.type == SqlType::Bit;
    if (number.scale > 0 || !(bit || FitsInteger(number.unscaled, type.type))) return false;
    sqlite3_bind_int64(statement, index, bit ? number.unscaled != 0 : number.unscaled);
    return true;
  }
  const int more_digits = type.scale - number.scale;
  const int room = type.precision - more_digits;
  if (more_digits < 0 || room < 0 || !FitsPrecision({number.unscaled, 0}, room)) return false;
  BindValue(statement, index, DecimalValue{number.unscaled * PowerOfTen(more_digits), type.scale},
            type);
  return true;
}

}  // namespace

CellKinds KindOf(const LiteralText& literal) {
  switch (literal.kind) {
    case TokenKind::String:
    case TokenKind::NString:
      return kTextCell;
    case TokenKind::Hex:
      return kBytesCell;
    case TokenKind::Integer:
      if (literal.text.size() <= kSurelyInt) return kIntCell;
      return literal.text.size() <= kSurelyExact ? kExactCell : kOtherCell;
    case TokenKind::Decimal:
      return literal.text.size() <= kSurelyExact + 1 ? kExactCell : kOtherCell;
    case TokenKind::Float:
      return kFloatCell;
    default:
      return kOtherCell;
  }
}

bool HaveOneType(unsigned kinds) {
  return kinds == 0 || kinds == kTextCell || kinds == kBytesCell || kinds == kIntCell ||
         kinds == kFloatCell;
}

bool TakesAsWritten(const ColumnDef& column, unsigned kinds) {
  const SqlType type = column.type.type;
  if (column.identity || type == SqlType::Timestamp) return false;
  unsigned taken = 0;
  if (IsText(type) || IsTemporal(type)) taken = kTextCell;
  if (IsBinary(type)) taken = kBytesCell;
  if (type == SqlType::Bit || IsInteger(type) || (IsExact(type) && !IsMoney(type)))
    taken = kIntCell | kExactCell;
  if (IsApproximate(type)) taken = kIntCell | kExactCell | kFloatCell;
  return (kinds & ~taken) == 0;
}

LiteralBinder LiteralBinderFor(SqlType column) {
  if (IsText(column)) return BindText;
  if (IsTemporal(column)) return BindMoment;
  if (IsBinary(column)) return BindBytes;
  return IsApproximate(column) ? BindFloat : BindExact;
}

}  // namespace sandbox
