#include "platform/ado/mysql/types.h"

#include <algorithm>
#include <array>
#include <utility>

namespace dorvane::ado::mysql {

namespace {

/// What of the declaration goes into the field's size, precision and scale.
enum class Shape { Number, Decimal, Time, Sized, Bits };

struct TypeRow {
  std::string_view name;
  DataType type;
  DataType variant;  // of unsigned numbers, of texts in a Unicode character set
  Shape shape;
  int precision = 0;            // decimal digits of a number
  std::int64_t fixed_size = 0;  // where the declaration has none
};

constexpr std::int64_t kLongest = 4'294'967'295;

using enum DataType;
constexpr TypeRow kTypes[] = {
    {"tinyint", TinyInt, UnsignedTinyInt, Shape::Number, 3},
    {"smallint", SmallInt, UnsignedSmallInt, Shape::Number, 5},
    {"mediumint", Integer, UnsignedInt, Shape::Number, 7},
    {"int", Integer, UnsignedInt, Shape::Number, 10},
    {"bigint", BigInt, UnsignedBigInt, Shape::Number, 19},
    {"year", SmallInt, SmallInt, Shape::Number, 4},
    {"float", Single, Single, Shape::Number, 7},
    {"double", Double, Double, Shape::Number, 15},
    {"decimal", Numeric, Numeric, Shape::Decimal},
    {"bit", Binary, Binary, Shape::Bits},
    {"date", DBDate, DBDate, Shape::Time},
    {"time", DBTime, DBTime, Shape::Time},
    {"datetime", DBTimeStamp, DBTimeStamp, Shape::Time},
    {"timestamp", DBTimeStamp, DBTimeStamp, Shape::Time},
    {"char", Char, WChar, Shape::Sized},
    {"varchar", VarChar, VarWChar, Shape::Sized},
    {"tinytext", LongVarChar, LongVarWChar, Shape::Sized},
    {"text", LongVarChar, LongVarWChar, Shape::Sized},
    {"mediumtext", LongVarChar, LongVarWChar, Shape::Sized},
    {"longtext", LongVarChar, LongVarWChar, Shape::Sized},
    {"json", LongVarWChar, LongVarWChar, Shape::Sized, 0, kLongest},
    {"enum", Char, Char, Shape::Sized},
    {"set", Char, Char, Shape::Sized},
    {"uuid", Char, Char, Shape::Sized, 0, 36},
    {"inet4", Char, Char, Shape::Sized, 0, 15},
    {"inet6", Char, Char, Shape::Sized, 0, 39},
    {"binary", Binary, Binary, Shape::Sized},
    {"varbinary", VarBinary, VarBinary, Shape::Sized},
    {"tinyblob", LongVarBinary, LongVarBinary, Shape::Sized},
    {"blob", LongVarBinary, LongVarBinary, Shape::Sized},
    {"mediumblob", LongVarBinary, LongVarBinary, Shape::Sized},
    {"longblob", LongVarBinary, LongVarBinary, Shape::Sized},
};

// Also what spatial columns are, under their many names.
constexpr TypeRow kUnknownBinary = {"", LongVarBinary, LongVarBinary, Shape::Sized, 0, kLongest};
constexpr TypeRow kUnknownText = {"", LongVarChar, LongVarWChar, Shape::Sized, 0, kLongest};

constexpr std::array<std::string_view, 16> kUnicodeSets = {
    "utf8mb4", "utf8mb3", "utf8", "ucs2", "utf16", "utf16le", "utf32", "gb18030",
    "gbk",     "gb2312",  "big5", "sjis", "cp932", "ujis",    "euckr", "eucjpms"};

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
  switch (row.shape) {
    case Shape::Number:
      info.precision = row.precision;
      if (info.type == UnsignedBigInt) info.precision = 20;
      break;
    case Shape::Decimal:
      info.precision = declaration.precision;
      info.numeric_scale = declaration.scale;
      break;
    case Shape::Time:
      info.numeric_scale = declaration.scale;
      break;
    case Shape::Sized:
      info.defined_size = row.fixed_size != 0 ? row.fixed_size : declaration.length;
      break;
    case Shape::Bits:
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
  return std::ranges::find(kUnicodeSets, character_set) != kUnicodeSets.end();
}

bool IsBinary(DataType type) {
  return type == Binary || type == VarBinary || type == LongVarBinary;
}

}  // namespace dorvane::ado::mysql
