#pragma once

#include <string>
#include <string_view>

#include "endpoint/table_definition.h"
#include "platform/ado/types.h"
#include "platform/ado/value.h"

namespace dorvane {

/// Appends the literal of one source value as it stands in a VALUES list. A NULL becomes the
/// column's default where the column takes no NULL.
void AppendDataValue(std::string& out, const ado::Value& value, const ColumnFacts& facts);

/// Appends a text literal: "'" doubled, N'...' when a character lies outside the ANSI code page.
void AppendTextLiteral(std::string& out, std::string_view text);

/// The quoted literal of a date and time; dates before 1753-01-01, the zero date among them, become
/// that day.
std::string DateLiteral(const ado::DateTime& value);

}  // namespace dorvane
