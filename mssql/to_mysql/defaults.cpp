#include "mssql/to_mysql/defaults.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "endpoint/date_time_text.h"
#include "endpoint/literal_text.h"
#include "endpoint/number_literal.h"
#include "mssql/to_mysql/exact_types.h"
#include "mssql/to_mysql/literals.h"
#include "platform/text/number_text.h"

namespace dorvane::to_mysql {

namespace {

using ado::DataType;

constexpr std::size_t kMostCanonicalDigits = 18;
constexpr std::size_t kGuidBytes = 16;
constexpr int kMostFractionDigits = 6;
// MySQL takes fourteen digits below it for a year of two digits.
constexpr int kFirstYearOfFourDigits = 1000;

bool IsCurrentTime(std::string_view value) {
  return text::EqualsIgnoringCase(value, "getdate()");
}

std::string Digits(std::string date_time) {
  std::erase_if(date_time, [](char c) { return !text::IsDigit(c); });
  return date_time;
}

std::string Quoted(std::string_view text) {
  return fmt::format("'{}'", text);
}

/// Digits that would be written back the same: no sign but "-", no zeros in front.
bool IsCanonicalInteger(std::string_view text) {
  if (text == "0") return true;
  if (text.starts_with('-')) text.remove_prefix(1);
  if (text.empty() || text.size() > kMostCanonicalDigits || text.front() == '0') return false;
  return text.find_first_not_of("0123456789") == std::string_view::npos;
}

/// SQL Server cuts a fraction off and takes an empty text for 0.
std::string IntegerLiteral(const std::string& value) {
  const std::string_view trimmed = text::Trim(value);
  if (trimmed.empty()) return "0";
  if (!text::IsNumeric(trimmed)) text::ThrowTypeMismatch(value);
  if (trimmed.find_first_of(".eE") == std::string_view::npos) return value;
  return fmt::format("{:.0f}", std::trunc(std::strtod(value.c_str(), nullptr)));
}

std::string FloatLiteral(const std::string& value) {
  return NumberText(text::Trim(value).empty() ? "0" : value);
}

std::string DateTimeLiteral(const ado::Column& col, const std::string& value) {
  const ado::DateTime moment = ParseServerDate(value);
  if (FractionDigits(col) > 0 && moment.nanoseconds != 0) {
    std::string text(kDateTimeSize, ' ');
    text.resize(WriteDateTime(text.data(), moment, kMostFractionDigits));
    return Quoted(text);
  }
  const std::string digits = Digits(DateTimeText(moment));
  return moment.year < kFirstYearOfFourDigits ? Quoted(digits) : digits;
}

std::string TimeLiteral(const ado::Column& col, const std::string& value) {
  ado::DateTime moment = ParseServerDate(value);
  if (moment.nanoseconds != 0 && FractionDigits(col) > 0) {
    std::string text(kDateTimeSize, ' ');
    text.resize(WriteTime(text.data(), moment, kMostFractionDigits));
    return Quoted(text);
  }
  const ado::DateTime day_zero;
  moment.year = day_zero.year;
  moment.month = day_zero.month;
  moment.day = day_zero.day;
  return Quoted(DateTimeText(moment));
}

std::string GuidLiteral(const std::string& value) {
  if (GuidBytes(value).size() != kGuidBytes) text::ThrowTypeMismatch(value);
  return HexCodeGUID(value);
}

std::string BinaryLiteral(const std::string& value) {
  if (!text::EqualsIgnoringCase(std::string_view(value).substr(0, 2), "0x")) {
    text::ThrowTypeMismatch(value);
  }
  const std::string bytes = BinaryDefaultBytes(value);
  return bytes.empty() ? "''" : HexCode(bytes);
}

}  // namespace

std::string DefaultLiteral(const ado::Column& col, const std::string& value) {
  switch (col.type) {
    case DataType::SmallInt:
    case DataType::Integer:
    case DataType::TinyInt:
    case DataType::UnsignedTinyInt:
    case DataType::UnsignedSmallInt:
    case DataType::UnsignedInt:
    case DataType::BigInt:
    case DataType::UnsignedBigInt:
      return IntegerLiteral(value);
    case DataType::Single:
    case DataType::Double:
    case DataType::Currency:
      return FloatLiteral(value);
    case DataType::Decimal:
    case DataType::Numeric:
    case DataType::VarNumeric:
      return NumberText(value);
    case DataType::Boolean:
      return !text::Trim(value).empty() && text::ParseBoolean(value) ? "1" : "0";
    case DataType::Date:
    case DataType::DBDate:
      return IsCurrentTime(value) ? "" : Quoted(DateTimeText(ParseServerDate(value)));
    case DataType::DBTime:
      return IsCurrentTime(value) ? "" : TimeLiteral(col, value);
    case DataType::DBTimeStamp:
      return IsCurrentTime(value) ? "" : DateTimeLiteral(col, value);
    case DataType::BStr:
    case DataType::Char:
    case DataType::WChar:
    case DataType::VarChar:
    case DataType::LongVarChar:
    case DataType::VarWChar:
    case DataType::LongVarWChar:
      return IsCanonicalInteger(value) ? value : Quoted(Quote(value));
    case DataType::Guid:
      return GuidLiteral(value);
    case DataType::VarBinary:
    case DataType::LongVarBinary:
      return BinaryLiteral(value);
    default:
      return {};
  }
}

std::string ExactDefaultLiteral(const ado::Column& col, const std::string& value) {
  if (HasOffset(col)) return {};
  const auto written = [&](auto writer) {
    std::string text(kDateTimeSize, ' ');
    text.resize(writer(text.data(), ParseServerDate(value)));
    return Quoted(text);
  };
  const int digits = std::min(col.numeric_scale, kMostFractionDigits);
  switch (col.type) {
    case DataType::DBDate:
      return IsCurrentTime(value) ? "" : written(WriteDate);
    case DataType::DBTime:
      if (IsCurrentTime(value)) return {};
      return written(
          [&](char* out, const ado::DateTime& time) { return WriteTime(out, time, digits); });
    case DataType::DBTimeStamp:
      if (IsCurrentTime(value)) return {};
      return written([&](char* out, const ado::DateTime& moment) {
        return WriteDateTime(out, moment, digits);
      });
    case DataType::Guid:
      if (GuidBytes(value).size() != kGuidBytes) text::ThrowTypeMismatch(value);
      return Quoted(BareGuid(value));
    case DataType::Binary:
      return BinaryLiteral(value);
    default:
      return DefaultLiteral(col, value);
  }
}

}  // namespace dorvane::to_mysql
