#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "sandbox/values/types.h"

namespace sandbox {

struct CivilDate {
  int year = 1, month = 1, day = 1;
};

CivilDate ToCivil(std::int64_t days);
std::int64_t FromCivil(const CivilDate& date);  // days since 0001-01-01
int DaysInMonth(int year, int month);
std::string_view MonthName(int month);  // 1 to 12
/// Ticks (not below 0) to the nearest multiple of `step`.
std::int64_t RoundTo(std::int64_t ticks, std::int64_t step);

enum class DateProblem { None, Syntax, Range };

struct ParsedDateTime {
  DateProblem problem = DateProblem::None;
  DateTimeValue value;
  bool has_date = false;
};

/// Reads what the server reads: ISO forms, "20240131", "1/31/2024", "Jan 31 2024", times with
/// AM and PM, offsets. A missing date is 1900-01-01, a missing time midnight.
ParsedDateTime ParseDateTime(std::string_view text);

/// As CONVERT writes the value in a style; nothing for a style that there is not.
std::optional<std::string> DateTimeText(const DateTimeValue& value, const TypeInfo& type,
                                        int style);

/// The value as the type keeps it: datetime to 1/300 s, smalldatetime to minutes, the others to
/// their digits; nothing when out of the type's range.
std::optional<DateTimeValue> FitDateTime(const DateTimeValue& value, const TypeInfo& type);

constexpr std::int64_t kDaysTo1900 = 693595;

}  // namespace sandbox
