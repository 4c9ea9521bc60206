#include "mssql/to_mysql/literals.h"

#include <algorithm>

#include "endpoint/date_time_text.h"
#include "endpoint/literal_text.h"
#include "endpoint/number_literal.h"
#include "mssql/to_mysql/exact_types.h"
#include "platform/text/ascii.h"

namespace dorvane::to_mysql {

namespace {

using ado::DataType;

// A datetime keeps thousandths of which MySQL's plain DATETIME never took any.
constexpr int kMostDroppedDigits = 3;
constexpr int kMostFractionDigits = 6;  // that MySQL has

/// Text that a writer puts into storage of at most `size` bytes.
template <typename Writer>
std::string_view Written(ado::Arena& storage, std::size_t size, Writer writer) {
  char* out = storage.Allocate(size);
  return std::string_view(out, writer(out));
}

/// "2020-01-02 03:04:05.1234567 +01:00" in the form of ISO 8601. Drivers leave out the zeros in
/// front of a year.
std::string_view IsoMoment(std::string_view text, ado::Arena& storage) {
  constexpr std::size_t kYearDigits = 4;
  const auto year_end = text.find('-');
  const auto day_end = text.find(' ');
  const auto offset = text.rfind(' ');
  if (day_end == offset || year_end > kYearDigits) return text;
  const std::size_t zeros = kYearDigits - year_end;
  char* const out = storage.Allocate(zeros + text.size() - 1);
  char* end = std::fill_n(out, zeros, '0');
  end = std::ranges::copy(text.substr(0, offset), end).out;
  out[zeros + day_end] = 'T';
  end = std::ranges::copy(text.substr(offset + 1), end).out;
  return {out, end};
}

/// Makes the destination's value, whatever form the source's has.
struct Converter {
  const ado::FieldInfo& field;
  const ColumnFacts& facts;
  ado::Arena& storage;

  ado::Value operator()(ado::Null) const { return {}; }
  ado::Value operator()(bool value) const { return std::string_view(value ? "1" : "0"); }
  ado::Value operator()(std::int64_t value) const { return Integer(value); }
  ado::Value operator()(std::uint64_t value) const { return Integer(value); }
  ado::Value operator()(float value) const {
    // MySQL reads a double and rounds that, whose range the shortest text of a float may leave.
    return facts.is_exact ? Number(static_cast<double>(value)) : Number(value);
  }
  ado::Value operator()(double value) const { return Number(value); }
  ado::Value operator()(ado::Decimal value) const { return Number(value); }
  ado::Value operator()(std::string_view value) const {
    return facts.is_exact && HasOffset(field) ? IsoMoment(value, storage) : value;
  }
  ado::Value operator()(ado::Binary value) const {
    if (facts.is_exact && field.type == DataType::Variant) return value.bytes;
    return value;
  }
  ado::Value operator()(ado::Guid value) const {
    if (facts.is_exact) return BareGuid(value.text);
    return ado::Binary{storage.Store(GuidBytes(value.text))};
  }
  ado::Value operator()(const ado::DateTime& value) const {
    return Written(storage, kDateTimeSize, [&](char* out) {
      if (field.type == DataType::DBDate) return WriteDate(out, value);
      return field.type == DataType::DBTime ? WriteTime(out, value, facts.fraction_digits)
                                            : WriteDateTime(out, value, facts.fraction_digits);
    });
  }

  ado::Value Integer(const ado::Value& value) const {
    return Written(storage, NumberSize(value), [&](char* out) { return WriteInteger(out, value); });
  }
  ado::Value Number(const ado::Value& value) const {
    const std::string_view text =
        Written(storage, NumberSize(value), [&](char* out) { return WriteNumber(out, value); });
    // The blank in front of a number is nothing to a number only.
    return facts.is_text ? text::Trim(text) : text;
  }
};

}  // namespace

ado::Value DataValue(const ado::Value& value, const ado::FieldInfo& field, const ColumnFacts& facts,
                     ado::Arena& storage) {
  if (ado::IsNull(value)) {
    if (facts.nullable) return {};
    return std::string_view(facts.default_text);
  }
  return std::visit(Converter{field, facts, storage}, value);
}

bool IsChunkCopied(DataType type) {
  return type == DataType::LongVarBinary || type == DataType::Binary;
}

int FractionDigits(const ado::FieldInfo& field) {
  const bool is_time = field.type == DataType::DBTime && field.numeric_scale > 0;
  const bool is_fine_moment =
      field.type == DataType::DBTimeStamp && field.numeric_scale > kMostDroppedDigits;
  return is_time || is_fine_moment ? kMostFractionDigits : 0;
}

bool LosesFraction(const ado::DateTime& moment, const ColumnFacts& facts) {
  std::int32_t kept = 1'000'000'000;  // nanoseconds of the last digit that is kept
  for (int digit = 0; digit < facts.fraction_digits; ++digit) kept /= 10;
  return moment.nanoseconds % kept != 0;
}

std::string Quote(std::string_view text) {
  return PrefixEach(PrefixEach(text, "\\\"", '\\'), "'", '\'');
}

std::string_view BareGuid(std::string_view braced) {
  return braced.substr(1, braced.size() - 2);
}

std::string SchemaText(const ado::TableName& table) {
  return table.IsBare() ? "database()" : "'" + Quote(table.schema) + "'";
}

std::string HexCodeGUID(std::string_view braced) {
  return HexCode(GuidBytes(braced));
}

}  // namespace dorvane::to_mysql
