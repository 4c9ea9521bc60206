#include "sandbox/catalog/procedures/column_facts.h"

#include <array>

#include "sandbox/catalog/result_columns.h"
#include "sandbox/values/type_rules.h"

namespace sandbox {

namespace {

constexpr std::int64_t kOdbcTimestamp = 93;
constexpr std::int64_t kDateTimeClass = 9;

// What sp_columns says of the types whose measures are fixed.
struct FixedFacts {
  SqlType type;
  int precision, length, scale, radix;  // -1: NULL
};
constexpr std::array kFixed{
    FixedFacts{SqlType::Bit, 1, 1, -1, -1},
    FixedFacts{SqlType::TinyInt, 3, 1, 0, 10},
    FixedFacts{SqlType::SmallInt, 5, 2, 0, 10},
    FixedFacts{SqlType::Int, 10, 4, 0, 10},
    FixedFacts{SqlType::BigInt, 19, 8, 0, 10},
    FixedFacts{SqlType::SmallMoney, 10, 12, 4, 10},
    FixedFacts{SqlType::Money, 19, 21, 4, 10},
    FixedFacts{SqlType::Real, 24, 4, -1, 2},
    FixedFacts{SqlType::Float, 53, 8, -1, 2},
    FixedFacts{SqlType::SmallDateTime, 16, 16, 0, -1},
    FixedFacts{SqlType::DateTime, 23, 16, 3, -1},
    FixedFacts{SqlType::Date, 10, 20, -1, -1},
    FixedFacts{SqlType::Timestamp, 8, 8, -1, -1},
    FixedFacts{SqlType::UniqueIdentifier, 36, 16, -1, -1},
    FixedFacts{SqlType::Variant, 0, 8000, -1, -1},
    FixedFacts{SqlType::Text, 2147483647, 2147483647, -1, -1},
    FixedFacts{SqlType::NText, 1073741823, 2147483646, -1, -1},
    FixedFacts{SqlType::Xml, 0, 0, -1, -1},
    FixedFacts{SqlType::Image, 2147483647, 2147483647, -1, -1},
};

// SS_DATA_TYPE: the server's own type number, for columns that take NULL.
struct ServerCode {
  SqlType type;
  int code;
};
constexpr std::array kServerCodes{
    ServerCode{SqlType::Bit, 50},       ServerCode{SqlType::TinyInt, 38},
    ServerCode{SqlType::SmallInt, 38},  ServerCode{SqlType::Int, 38},
    ServerCode{SqlType::BigInt, 108},   ServerCode{SqlType::Decimal, 106},
    ServerCode{SqlType::Numeric, 108},  ServerCode{SqlType::SmallMoney, 110},
    ServerCode{SqlType::Money, 110},    ServerCode{SqlType::Real, 109},
    ServerCode{SqlType::Float, 109},    ServerCode{SqlType::SmallDateTime, 111},
    ServerCode{SqlType::DateTime, 111}, ServerCode{SqlType::Text, 35},
    ServerCode{SqlType::Image, 34},     ServerCode{SqlType::NText, 35},
    ServerCode{SqlType::Binary, 37},    ServerCode{SqlType::VarBinary, 37},
    ServerCode{SqlType::Timestamp, 45}, ServerCode{SqlType::UniqueIdentifier, 37},
    ServerCode{SqlType::Date, 0},       ServerCode{SqlType::Time, 0},
    ServerCode{SqlType::DateTime2, 0},  ServerCode{SqlType::DateTimeOffset, 0},
    ServerCode{SqlType::Xml, 0},        ServerCode{SqlType::Variant, 39},
};

Value NullIfNegative(int number) {
  return number < 0 ? Value() : Value(std::int64_t{number});
}

}  // namespace

OdbcFacts FactsForOdbc(const TypeInfo& type, bool version3) {
  OdbcFacts facts;
  const TypeFacts& general = Facts(type.type);
  facts.data_type = sys::Int(general.odbc_type);
  facts.sql_data_type = sys::Int(general.odbc_sql_type);
  const bool sized = IsText(type.type) || IsBinary(type.type);
  if (sized && general.length == 0) {
    // (max) has no length to tell.
    const std::int64_t length = type.length < 0 ? 0 : type.length;
    facts.precision = length;
    facts.length = IsUnicode(type.type) ? length * 2 : length;
  } else if (type.type == SqlType::Decimal || type.type == SqlType::Numeric) {
    facts.precision = sys::Int(type.precision);
    facts.length = sys::Int(type.precision + 2);
    facts.scale = sys::Int(type.scale);
    facts.radix = sys::Int(10);
  } else if (type.type == SqlType::Time || type.type == SqlType::DateTime2 ||
             type.type == SqlType::DateTimeOffset) {
    facts.precision = sys::Int(type.precision);
    facts.length = sys::Int(type.precision * 2);
    facts.scale = sys::Int(type.scale);
  }
  for (const FixedFacts& fixed : kFixed) {
    if (fixed.type != type.type) continue;
    facts.precision = NullIfNegative(fixed.precision);
    facts.length = NullIfNegative(fixed.length);
    facts.scale = NullIfNegative(fixed.scale);
    facts.radix = NullIfNegative(fixed.radix);
  }
  if (sized && type.type != SqlType::Timestamp) facts.octet_length = facts.length;
  const bool classic = type.type == SqlType::DateTime || type.type == SqlType::SmallDateTime;
  if (classic) {
    if (version3) facts.data_type = sys::Int(kOdbcTimestamp);
    facts.sql_data_type = sys::Int(kDateTimeClass);
    facts.datetime_sub = sys::Int(3);
  }
  facts.ss_data_type = sys::Int(39);
  for (const ServerCode& code : kServerCodes) {
    if (code.type == type.type) facts.ss_data_type = sys::Int(code.code);
  }
  return facts;
}

std::string ColumnTypeName(const Catalog& catalog, const ColumnDef& column) {
  for (const AliasTypeDef& alias : catalog.types) {
    if (alias.id == column.user_type) return alias.name;
  }
  return TypeName(column.type);
}

std::string OdbcTypeName(const Catalog& catalog, const ColumnDef& column) {
  std::string name = ColumnTypeName(catalog, column);
  if (!column.identity) return name;
  const bool exact = column.user_type == 0 &&
                     (column.type.type == SqlType::Decimal || column.type.type == SqlType::Numeric);
  return name + (exact ? "() identity" : " identity");
}

}  // namespace sandbox
