#pragma once

#include <string>
#include <string_view>

#include "endpoint/table_definition.h"
#include "platform/ado/row_block.h"
#include "platform/ado/types.h"
#include "platform/ado/value.h"

namespace dorvane::to_mssql {

/// Appends the literal of one source value as it stands in a VALUES list. A NULL becomes the
/// column's default where the column takes no NULL.
void AppendDataValue(std::string& out, const ado::Value& value, const ColumnFacts& facts);

/// Appends a text literal: "'" doubled, N'...' unless it is plain ASCII. A text with U+0000, at
/// which drivers would cut the statement, becomes an expression of Unicode text.
void AppendTextLiteral(std::string& out, std::string_view text);

/// True for a date of the calendar that the server's newer types have, from year 1 on.
bool IsOfCalendar(const ado::DateTime& value);

/// What becomes of a value of an exact column: dates and times become the text that the column's
/// type reads, a decimal that the server has no number for its digits, and a date that no calendar
/// has NULL, or 0001-01-01 where the column takes no NULL. New text is kept in `storage`.
ado::Value ExactValue(const ado::Value& value, ado::DataType type, const ColumnFacts& facts,
                      ado::Arena& storage);

/// The moment that the server's datetime can hold, in whole seconds; dates before 1753-01-01 and
/// those that no calendar has, the zero date among them, become that day.
ado::DateTime StorableMoment(const ado::DateTime& value);

/// The quoted literal of the storable moment.
std::string DateLiteral(const ado::DateTime& value);

/// What the rules of the conversion change in a date or time, as bits: several may meet in one.
enum TimeChange : unsigned {
  kDateMadeUp = 1,     // no calendar has it
  kDateRaised = 2,     // before 1753-01-01
  kTimeDated = 4,      // a time of day became one of 1899-12-30
  kTimeMovedDate = 8,  // a time below zero or beyond a day became one of another day
  kFractionCut = 16,
};
inline constexpr unsigned kTimeChanges = 5;

/// The TimeChange bits of a value of a column of this type.
unsigned ChangesOf(const ado::DateTime& value, ado::DataType type);

}  // namespace dorvane::to_mssql
