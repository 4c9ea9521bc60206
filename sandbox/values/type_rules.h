#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "sandbox/values/types.h"

namespace sandbox {

/// What the catalog says of a type, besides what its measures say.
struct TypeFacts {
  SqlType type;
  const char* name;
  int precedence;      // the higher one wins when two types meet
  int system_type_id;  // of sys.types
  int odbc_type;       // DATA_TYPE of sp_columns
  int odbc_sql_type;   // SQL_DATA_TYPE of sp_columns
  int precision;       // PRECISION of sp_columns; 0 where the measures say
  int length;          // bytes it takes; 0 where the measures say
};

const TypeFacts& Facts(SqlType type);
const char* TypeName(SqlType type);
inline const char* TypeName(const TypeInfo& type) {
  return TypeName(type.type);
}

/// The type of a declaration "name(args...)"; -1 in `args` stands for max. Null when there is no
/// such type. Raises the errors of measures out of range; `position` is the column's number in
/// them.
std::optional<TypeInfo> DeclaredType(std::string_view name, const std::vector<int>& args,
                                     int position, std::string_view column);

/// As written in a definition: "varchar(20)", "decimal(10,2)".
std::string TypeText(const TypeInfo& type);

bool IsInteger(SqlType type);  // bit excluded
bool IsExact(SqlType type);    // decimal, numeric and money
bool IsMoney(SqlType type);
bool IsApproximate(SqlType type);
bool IsNumber(SqlType type);  // every number, bit included
bool IsText(SqlType type);
bool IsUnicode(SqlType type);
bool IsBinary(SqlType type);
bool IsTemporal(SqlType type);
bool IsLong(const TypeInfo& type);  // text, image, xml and (max)
bool IsKeyable(const TypeInfo& type);

/// An integer or money type as the decimal that holds all its values.
TypeInfo AsDecimal(const TypeInfo& type);

/// The type that two values take when they meet in a comparison, a CASE or a UNION.
TypeInfo CommonType(const TypeInfo& left, const TypeInfo& right);

/// The type of left OP right for + - * / %. Raises 402 or 8117.
TypeInfo ArithmeticType(char op, const TypeInfo& left, const TypeInfo& right);

/// True when values of both types lie in storage in the same form, so that they compare as they
/// are.
bool SameForm(const TypeInfo& left, const TypeInfo& right);

/// Bytes that a value takes at most, -1 for the long types (max_length of sys.columns).
int MaxLength(const TypeInfo& type);

/// The collation of a column of the type; `declared` empty: the database's. Empty for types that
/// have none.
std::string CollationName(const TypeInfo& type, const std::string& declared);

/// Digits of the type in the catalog; 0 when it has none.
int CatalogPrecision(const TypeInfo& type);

TypeInfo VarChar(std::size_t length);
TypeInfo NVarChar(std::size_t length);
TypeInfo VarBinary(std::size_t length);
inline TypeInfo IntType() {
  return {SqlType::Int, 0, 10, 0};
}
inline TypeInfo SmallIntType() {
  return {SqlType::SmallInt, 0, 5, 0};
}
inline TypeInfo TinyIntType() {
  return {SqlType::TinyInt, 0, 3, 0};
}
inline TypeInfo BigIntType() {
  return {SqlType::BigInt, 0, 19, 0};
}
inline TypeInfo BitType() {
  return {SqlType::Bit, 0, 1, 0};
}
inline TypeInfo FloatType() {
  return {SqlType::Float, 0, 53, 0};
}
inline TypeInfo DateTimeType() {
  return {SqlType::DateTime, 0, 23, 3};
}
inline TypeInfo MoneyType() {
  return {SqlType::Money, 0, 19, 4};
}
TypeInfo DecimalType(int precision, int scale);

}  // namespace sandbox
