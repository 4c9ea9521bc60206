#pragma once

#include <string>
#include <string_view>

#include "platform/ado/catalog_types.h"

namespace dorvane::to_mysql {

/// The MySQL type that loses nothing of a SQL Server column's values.
struct ExactType {
  std::string text;              // as it stands in a Create Table statement
  int fraction_digits = 0;       // of the seconds that it keeps
  std::string_view change = {};  // what becomes of the values, behind the column's name
};

/// `is_fine`: the seconds of its values have a seventh digit, of which MySQL knows none.
ExactType ExactTypeOf(const ado::Column& col, bool is_fine);

/// True for a date and time, or a time, whose type has seven digits behind the second.
bool MayBeFine(const ado::Column& col);

/// An object of the server's: a place in a hierarchy, a shape. Only its text means anything
/// elsewhere.
bool IsObject(const ado::FieldInfo& field);

/// A moment with its offset from UTC.
bool HasOffset(const ado::FieldInfo& field);

}  // namespace dorvane::to_mysql
