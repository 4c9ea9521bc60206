#include "platform/ado/mysql/types.h"

#include <algorithm>
#include <array>
#include <utility>

namespace dorvane::ado::mysql {

namespace {

/// What of the declaration goes into the field's size, precision and scale.
enum class TypeClass { Number, Decimal, Temporal, Sized, Bits };

struct TypeRow {
  std::string_view name;
  DataType type;
  DataType variant;  // of unsigned numbers, of texts in a Unicode character set
  TypeClass type_class;
  int precision = 0;            // decimal digits of a number
  std::int64_t fixed_size = 0;  // where the declaration has none
};

constexpr std::int64_t kLongest = 4'294'967'295;

using enum DataType;
constexpr TypeRow kTypes[] = {
    {"tinyint", TinyInt, UnsignedTinyInt, TypeClass::Number, 3},
    {"smallint", SmallInt, UnsignedSmallInt, TypeClass::Number, 5},
    {"mediumint", Integer, UnsignedInt, TypeClass::Number, 7},
    {"int", Integer, UnsignedInt, TypeClass::Number, 10},
    {"bigint", BigInt, UnsignedBigInt, TypeClass::Number, 19},
    {"year", SmallInt, SmallInt, TypeClass::Number, 4},
    {"float", Single, Single, TypeClass::Number, 7},
    {"double", Double, Double, TypeClass::Number, 15},
    {"decimal", Numeric, Numeric, TypeClass::Decimal},
    {"bit", Binary, Binary, TypeClass::Bits},
    {"date", DBDate, DBDate, TypeClass::Temporal},
    {"time", DBTime, DBTime, TypeClass::Temporal},
    {"datetime", DBTimeStamp, DBTimeStamp, TypeClass::Temporal},
    {"timestamp", DBTimeStamp, DBTimeStamp, TypeClass::Temporal},
    {"char", Char, WChar, TypeClass::Sized},
    {"varchar", VarChar, VarWChar, TypeClass::Sized},
    {"tinytext", LongVarChar, LongVarWChar, TypeClass::Sized},
    {"text", LongVarChar, LongVarWChar, TypeClass::Sized},
    {"mediumtext", LongVarChar, LongVarWChar, TypeClass::Sized},
    {"longtext", LongVarChar, LongVarWChar, TypeClass::Sized},
    {"json", LongVarWChar, LongVarWChar, TypeClass::Sized, 0, kLongest},
    {"enum", Char, WChar, TypeClass::Sized},
    {"set", Char, WChar, TypeClass::Sized},
    {"uuid", Char, Char, TypeClass::Sized, 0, 36},
    {"inet4", Char, Char, TypeClass::Sized, 0, 15},
    {"inet6", Char, Char, TypeClass::Sized, 0, 39},
    {"binary", Binary, Binary, TypeClass::Sized},
    {"varbinary", VarBinary, VarBinary, TypeClass::Sized},
    {"tinyblob", LongVarBinary, LongVarBinary, TypeClass::Sized},
    {"blob", LongVarBinary, LongVarBinary, TypeClass::Sized},
    {"mediumblob", LongVarBinary, LongVarBinary, TypeClass::Sized},
    {"longblob", LongVarBinary, LongVarBinary, TypeClass::Sized},
};

// Also what spatial columns are, under their many names.
constexpr TypeRow kUnknownBinary = {"", LongVarBinary, LongVarBinary, TypeClass::Sized,
                                    0,  kLongest};
constexpr TypeRow kUnknownText = {"", LongVarChar, LongVarWChar, TypeClass::Sized, 0, kLongest};

// All that Windows-1252, the other side's usual code page, can hold.
constexpr std::array<std::string_view, 2> kWesternSets = {"ascii", "latin1"};

const TypeRow& RowOf(std::string_view type, bool is_text) {
  const auto* found = std::ranges::find(kTypes, type, &TypeRow::name);
  if (found != std::end(kTypes)) return *found;
  return is_text ? kUnknownText : kUnknownBinary;
}

}  // namespace

FieldInfo Translate(std::string name, const Declaration& declaration, bool is_text) {
  const TypeRow& row = RowOf(declaration.type, is_text);
  const bool is_variant = declaration.is_unsigned || declaration.is_unicode;
  FieldInfo info{.name = std::move(name), .type = is_variant ? row.variant : row.type};
  switch (row.type_class) {
    case TypeClass::Number:
      info.precision = row.precision;
      if (info.type == UnsignedBigInt) info.precision = 20;
      break;
    case TypeClass::Decimal:
      info.precision = declaration.precision;
      info.numeric_scale = declaration.scale;
      break;
    case TypeClass::Temporal:
      info.numeric_scale = declaration.scale;
      break;
    case TypeClass::Sized:
      info.defined_size = row.fixed_size != 0 ? row.fixed_size : declaration.length;
      break;
    case TypeClass::Bits:
      if (declaration.length == 1) {
        info.type = Boolean;
      } else {
        info.defined_size = (declaration.length + 7) / 8;
      }
      break;
  }
  return info;
}

bool IsUnicode(std::string_view character_set) {
  return std::ranges::find(kWesternSets, character_set) == kWesternSets.end();
}

bool IsBinary(DataType type) {
  return type == Binary || type == VarBinary || type == LongVarBinary;
}

}  // namespace dorvane::ado::mysql
