#pragma once

#include <string_view>

#include "platform/ado/types.h"

namespace dorvane::to_mssql {

/// What the server makes of a literal before it looks at the column: in a VALUES list of several
/// rows it gives a column's literals one common type first, which must not change any value.
struct LiteralShape {
  enum class Kind {
    Null,
    Integer,
    Decimal,
    Float,
    Text,  // plain ASCII that fits beside Unicode text
    LongText,
    NationalText,
    Binary,
    Other
  };
  Kind kind = Kind::Null;
  int integer_digits = 0;  // of a Decimal
  int scale = 0;
};

LiteralShape ShapeOf(std::string_view literal);

/// Widens `shape` to take in `other`. False, and no change, when literals of both shapes in one
/// list could reach a destination column of this type with another value or error than each alone.
bool Join(LiteralShape& shape, const LiteralShape& other, ado::DataType type);

}  // namespace dorvane::to_mssql
