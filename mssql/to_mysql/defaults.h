#pragma once

#include <string>
#include <string_view>

#include "platform/ado/catalog_types.h"
#include "platform/ado/value.h"

namespace dorvane::to_mysql {

/// The MySQL literal of a default as the catalog reports its value; empty for a type or a value
/// (the current time) that gets none. Throws RunTimeError 13 for a value that cannot be read.
std::string DefaultLiteral(const ado::Column& col, const std::string& value);

/// The same for a column of the exact mapping.
std::string ExactDefaultLiteral(const ado::Column& col, const std::string& value);

/// A date, a time or both as SQL Server reads them in English: dates with "-", "/" or ".", month
/// names, AM and PM, days since 1900-01-01, and 1900-01-01 for an empty text. A time alone has the
/// date 1900-01-01. Throws RunTimeError 13.
ado::DateTime ParseServerDate(std::string_view text);

}  // namespace dorvane::to_mysql
