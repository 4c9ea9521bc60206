#include "endpoint/comparable_value.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <optional>
#include <string_view>

#include "endpoint/date_time_text.h"
#include "endpoint/row_identity.h"
#include "platform/ado/value_text.h"
#include "platform/run_time_error.h"
#include "platform/text/ascii.h"

namespace dorvane {

namespace {

using ado::DataType;

enum class Form { Exact, Approximate, Moment, Bytes, Identifier, Text };

Form FormOf(DataType type) {
  switch (type) {
    case DataType::SmallInt:
    case DataType::Integer:
    case DataType::Currency:
    case DataType::Boolean:
    case DataType::Decimal:
    case DataType::TinyInt:
    case DataType::UnsignedTinyInt:
    case DataType::UnsignedSmallInt:
    case DataType::UnsignedInt:
    case DataType::BigInt:
    case DataType::UnsignedBigInt:
    case DataType::Numeric:
    case DataType::VarNumeric:
      return Form::Exact;
    case DataType::Single:
    case DataType::Double:
      return Form::Approximate;
    case DataType::Date:
    case DataType::DBDate:
    case DataType::DBTime:
    case DataType::DBTimeStamp:
      return Form::Moment;
    case DataType::Binary:
    case DataType::VarBinary:
    case DataType::LongVarBinary:
      return Form::Bytes;
    case DataType::Guid:
      return Form::Identifier;
    default:
      return Form::Text;
  }
}

void AppendSized(std::string& out, std::string_view bytes) {
  const auto size = static_cast<std::uint32_t>(bytes.size());
  out += '\1';
  out.append(reinterpret_cast<const char*>(&size), sizeof(size));
  out += bytes;
}

std::string_view WithoutTail(std::string_view text, char filler) {
  return text.substr(0, text.find_last_not_of(filler) + 1);
}

/// Decimal digits without zeros that mean nothing; anything else as it is.
std::string ExactForm(std::string_view number) {
  number = text::Trim(number);
  const bool is_negative = number.starts_with('-');
  std::string_view digits = number.substr(is_negative ? 1 : 0);
  const std::size_t point = digits.find('.');
  std::string_view whole = digits.substr(0, point);
  std::string_view fraction = point == std::string_view::npos ? "" : digits.substr(point + 1);
  if (digits.find_first_not_of("0123456789.") != std::string_view::npos) return std::string(number);
  whole.remove_prefix(std::min(whole.find_first_not_of('0'), whole.size()));
  fraction = WithoutTail(fraction, '0');
  std::string form(whole);
  if (!fraction.empty()) form.append(".").append(fraction);
  if (form.empty()) return "0";
  return is_negative ? "-" + form : form;
}

template <typename Float>
std::optional<Float> Parsed(std::string_view number) {
  number = text::Trim(number);
  Float value = 0;
  const auto [end, error] = std::from_chars(number.data(), number.data() + number.size(), value);
  const bool is_whole = error == std::errc() && end == number.data() + number.size();
  return is_whole ? std::optional(value) : std::nullopt;
}

template <typename Float>
void AppendFloat(std::string& out, const ado::Value& value) {
  std::optional<Float> number;
  if (const auto* single = std::get_if<float>(&value)) {
    number = static_cast<Float>(*single);
  } else if (const auto* wide = std::get_if<double>(&value)) {
    number = static_cast<Float>(*wide);
  } else {
    const std::string text = ado::ToText(value, DataType::Double);
    number = Parsed<Float>(text);
    if (!number) return AppendSized(out, text);
  }
  const Float plain = *number + Float(0);  // no zero below zero
  AppendSized(out, {reinterpret_cast<const char*>(&plain), sizeof(plain)});
}

void AppendMoment(std::string& out, const ado::Value& value, DataType type) {
  if (const auto* text = std::get_if<std::string_view>(&value)) {
    try {
      return AppendSized(out, ado::ToText(ParseDateTime(*text), type));
    } catch (const RunTimeError&) {
      return AppendSized(out, *text);
    }
  }
  AppendSized(out, ado::ToText(value, type));
}

/// Without braces, in upper case.
std::string IdentifierForm(std::string identifier) {
  if (identifier.starts_with('{') && identifier.ends_with('}')) {
    identifier = identifier.substr(1, identifier.size() - 2);
  }
  for (char& c : identifier) c = text::ToUpper(c);
  return identifier;
}

void AppendText(std::string& out, const ado::Value& value, DataType type, char filler,
                bool is_padded) {
  std::string other;
  std::string_view text = ado::BytesOf(value);
  if (!std::holds_alternative<std::string_view>(value) &&
      !std::holds_alternative<ado::Binary>(value)) {
    text = other = ado::ToText(value, type);
  }
  AppendSized(out, is_padded ? WithoutTail(text, filler) : text);
}

}  // namespace

void AppendComparable(std::string& out, const ado::Value& value, DataType type) {
  if (ado::IsNull(value)) {
    out += '\0';
    return;
  }
  switch (FormOf(type)) {
    case Form::Exact:
      return AppendSized(out, ExactForm(ado::ToText(value, type)));
    case Form::Approximate:
      return type == DataType::Single ? AppendFloat<float>(out, value)
                                      : AppendFloat<double>(out, value);
    case Form::Moment:
      return AppendMoment(out, value, type);
    case Form::Bytes:
      return AppendText(out, value, type, '\0', type == DataType::Binary);
    case Form::Identifier:
      return AppendSized(out, IdentifierForm(ado::ToText(value, type)));
    case Form::Text:
      return AppendText(out, value, type, ' ', IsPaddedType(type));
  }
}

}  // namespace dorvane
