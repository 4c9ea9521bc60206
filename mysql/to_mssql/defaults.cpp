#include "mysql/to_mssql/defaults.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <string_view>

#include "endpoint/date_time_text.h"
#include "endpoint/literal_text.h"
#include "endpoint/number_literal.h"
#include "mysql/to_mssql/literals.h"
#include "platform/run_time_error.h"
#include "platform/text/number_text.h"

namespace dorvane::to_mssql {

namespace {

using ado::DataType;

bool IsTime(DataType type) {
  return type == DataType::Date || type == DataType::DBDate || type == DataType::DBTime ||
         type == DataType::DBTimeStamp;
}

/// CURRENT_TIMESTAMP and its kin, with or without parentheses and a precision.
bool IsCurrentTime(std::string_view value) {
  const std::string_view word = value.substr(0, value.find('('));
  const std::string_view arguments = value.substr(word.size());
  const bool has_digits_only =
      arguments.empty() || (arguments.size() >= 2 && arguments.back() == ')' &&
                            arguments.find_first_not_of("0123456789", 1) == arguments.size() - 1);
  constexpr std::string_view kWords[] = {"current_timestamp", "now", "getdate", "localtimestamp",
                                         "localtime"};
  return has_digits_only && std::ranges::any_of(kWords, [word](std::string_view known) {
           return text::EqualsIgnoringCase(word, known);
         });
}

/// The digits of a bit literal b'...', or none.
std::optional<std::string_view> BitDigits(std::string_view value) {
  if (value.size() < 3 || value.substr(0, 2) != "b'" || value.back() != '\'') return std::nullopt;
  return value.substr(2, value.size() - 3);
}

std::string BytesOfBits(std::string_view digits, std::int64_t size) {
  std::string bytes(static_cast<std::size_t>(std::max<std::int64_t>(size, 1)), '\0');
  const std::size_t bits = std::min(digits.size(), 8 * bytes.size());
  for (std::size_t bit = 0; bit < bits; ++bit) {
    if (digits[digits.size() - 1 - bit] != '1') continue;
    char& byte = bytes[bytes.size() - 1 - bit / 8];
    byte = static_cast<char>(byte | (1 << (bit % 8)));
  }
  return bytes;
}

std::string TextLiteral(std::string_view text) {
  std::string literal;
  AppendTextLiteral(literal, text);
  return literal;
}

/// A whole number as the server would write it, so that text keeps its characters.
bool IsCanonicalInteger(std::string_view text) {
  constexpr std::size_t kMostDigits = 18;
  const std::string_view digits = text.substr(text.starts_with('-') ? 1 : 0);
  if (!text::IsDigits(digits) || digits.size() > kMostDigits) return false;
  return digits.front() != '0' || text == "0";
}

/// A date, a time or both as MySQL writes them: days that no calendar has, times of many hours.
/// Throws RunTimeError 13 for any other text.
ado::DateTime ReadMoment(const std::string& text, DataType type) {
  int year = 0;
  int month = 0;
  int day = 0;
  int hours = 0;
  int minutes = 0;
  int seconds = 0;
  const bool is_negative = text.starts_with('-');
  if (type == DataType::DBTime) {
    const char* digits = text.c_str() + (is_negative ? 1 : 0);
    if (std::sscanf(digits, "%3d:%2d:%2d", &hours, &minutes, &seconds) != 3) {
      return ParseDateTime(text);
    }
    const int sign = is_negative ? -1 : 1;
    return {.seconds = sign * ((hours * 60 + minutes) * 60 + seconds), .nanoseconds = 0};
  }
  const int read = std::sscanf(text.c_str(), "%4d-%2d-%2d %2d:%2d:%2d", &year, &month, &day, &hours,
                               &minutes, &seconds);
  if (read != 3 && read != 6) return ParseDateTime(text);
  return {static_cast<std::int16_t>(year), static_cast<std::uint8_t>(month),
          static_cast<std::uint8_t>(day), (hours * 60 + minutes) * 60 + seconds, 0};
}

/// Throws RunTimeError for a value that the type has not.
std::string LiteralOf(const ado::Column& col, const std::string& value,
                      const std::string& described) {
  switch (col.type) {
    case DataType::SmallInt:
    case DataType::Integer:
    case DataType::TinyInt:
    case DataType::UnsignedTinyInt:
    case DataType::UnsignedSmallInt:
    case DataType::UnsignedInt:
    case DataType::BigInt:
    case DataType::UnsignedBigInt:
      return text::IsNumeric(value) ? value : "'" + value + "'";
    case DataType::Single:
    case DataType::Double:
    case DataType::Currency:
    case DataType::Decimal:
    case DataType::Numeric:
    case DataType::VarNumeric:
      return NumberText(value);
    case DataType::Boolean: {
      const auto bits = BitDigits(described);
      return text::ParseBoolean(bits ? *bits : value) ? "1" : "0";
    }
    case DataType::Date:
    case DataType::DBDate:
    case DataType::DBTime:
    case DataType::DBTimeStamp:
      return DateLiteral(ReadMoment(value, col.type));
    case DataType::Char:
    case DataType::VarChar:
    case DataType::WChar:
    case DataType::VarWChar:
    case DataType::LongVarWChar:
      return IsCanonicalInteger(value) ? value : TextLiteral(value);
    case DataType::LongVarChar:
      // Long text of the old kind takes no number.
      return TextLiteral(value);
    case DataType::Binary:
    case DataType::VarBinary:
    case DataType::LongVarBinary: {
      const auto bits = BitDigits(described);
      return HexCode(bits ? BytesOfBits(*bits, col.defined_size) : BinaryDefaultBytes(value));
    }
    default:
      return {};
  }
}

/// The moment as MySQL writes it, its fraction with it; nothing for one that SQL Server has not.
std::optional<std::string> ExactMoment(const ado::Column& col) {
  try {
    const ado::DateTime moment = ReadMoment(*col.default_value, col.type);
    if (!IsOfCalendar(moment) || Normalised(moment) != moment) return std::nullopt;
    return TextLiteral(*col.default_value);
  } catch (const RunTimeError&) {
    return std::nullopt;
  }
}

}  // namespace

std::optional<std::string> DefaultLiteral(const ado::Column& col, const std::string& described) {
  if (IsTime(col.type) && IsCurrentTime(described)) return "getdate()";
  // The catalog knows an expression from a text that looks like one.
  if (!col.default_value) return std::nullopt;
  if (col.default_value->empty()) return std::string();
  try {
    return LiteralOf(col, *col.default_value, described);
  } catch (const RunTimeError&) {
    return std::nullopt;
  }
}

std::optional<std::string> ExactDefaultLiteral(const ado::Column& col,
                                               const std::string& described) {
  const bool is_moment =
      IsTime(col.type) && !IsCurrentTime(described) && col.default_value.has_value();
  return is_moment ? ExactMoment(col) : DefaultLiteral(col, described);
}

}  // namespace dorvane::to_mssql
