#include <algorithm>
#include <array>

#include "sandbox/functions/scalar_functions.h"
#include "sandbox/text/text_order.h"
#include "sandbox/values/convert.h"
#include "sandbox/values/datetime_text.h"
#include "sandbox/values/errors.h"
#include "sandbox/values/ticks.h"
#include "sandbox/values/type_rules.h"

namespace sandbox {
namespace {

using namespace scalar;

constexpr std::array<std::pair<std::string_view, std::string_view>, 34> kDateUnits{
    {{"year", "year"},
     {"yy", "year"},
     {"yyyy", "year"},
     {"quarter", "quarter"},
     {"qq", "quarter"},
     {"q", "quarter"},
     {"month", "month"},
     {"mm", "month"},
     {"m", "month"},
     {"day", "day"},
     {"dd", "day"},
     {"d", "day"},
     {"dayofyear", "dayofyear"},
     {"dy", "dayofyear"},
     {"y", "dayofyear"},
     {"week", "week"},
     {"wk", "week"},
     {"ww", "week"},
     {"weekday", "weekday"},
     {"dw", "weekday"},
     {"hour", "hour"},
     {"hh", "hour"},
     {"minute", "minute"},
     {"mi", "minute"},
     {"n", "minute"},
     {"second", "second"},
     {"ss", "second"},
     {"s", "second"},
     {"millisecond", "millisecond"},
     {"ms", "millisecond"},
     {"microsecond", "microsecond"},
     {"mcs", "microsecond"},
     {"nanosecond", "nanosecond"},
     {"ns", "nanosecond"}}};

struct TickUnit {
  std::string_view name;
  std::int64_t ticks;
};

constexpr std::array kTickUnits{TickUnit{"week", 7 * kTicksPerDay},
                                TickUnit{"day", kTicksPerDay},
                                TickUnit{"dayofyear", kTicksPerDay},
                                TickUnit{"weekday", kTicksPerDay},
                                TickUnit{"hour", 3600 * kTicksPerSecond},
                                TickUnit{"minute", 60 * kTicksPerSecond},
                                TickUnit{"second", kTicksPerSecond},
                                TickUnit{"millisecond", 10'000},
                                TickUnit{"microsecond", 10}};

TypeInfo ReturnBigInt(Types) {
  return BigIntType();
}

TypeInfo ReturnDateTime(Types) {
  return DateTimeType();
}

TypeInfo ReturnDateAdd(Types types) {
  return IsTemporal(types[2].type) ? types[2] : DateTimeType();
}

DateTimeValue Moment(Call call, std::size_t i) {
  if (const auto* time = std::get_if<DateTimeValue>(&call.values[i])) return *time;
  const bool text = IsText(call.types[i].type);
  const TypeInfo type = text ? TypeInfo{SqlType::DateTime2, 0, 27, 7} : DateTimeType();
  return std::get<DateTimeValue>(Convert(call.values[i], call.types[i], type));
}

Value DateAdd(Call call) {
  const TypeInfo type = IsTemporal(call.types[2].type) ? call.types[2] : DateTimeType();
  return AddToDate(Text(call, 0), Integer(call, 1), Moment(call, 2), type);
}

std::int64_t MonthNumber(const CivilDate& date) {
  return date.year * 12 + date.month - 1;
}

Value DateDiff(Call call) {
  const std::string unit = Text(call, 0);
  const DateTimeValue from = Moment(call, 1), to = Moment(call, 2);
  const CivilDate a = ToCivil(from.days), b = ToCivil(to.days);
  if (unit == "year") return std::int64_t{b.year - a.year};
  if (unit == "month") return MonthNumber(b) - MonthNumber(a);
  if (unit == "quarter") return MonthNumber(b) / 3 - MonthNumber(a) / 3;
  if (unit == "week") return std::int64_t{(to.days + 1) / 7 - (from.days + 1) / 7};
  std::int64_t ticks = 1;
  for (const TickUnit& entry : kTickUnits) {
    if (entry.name == unit) ticks = entry.ticks;
  }
  // Whole boundaries count, not whole spans.
  const Int128 x = (Int128{from.days} * kTicksPerDay + from.ticks) / ticks;
  const Int128 y = (Int128{to.days} * kTicksPerDay + to.ticks) / ticks;
  const Int128 count = (y - x) * (unit == "nanosecond" ? 100 : 1);
  if (call.result.type == SqlType::Int && (count > INT32_MAX || count < INT32_MIN)) {
    Raise(8115, "expression", "int");
  }
  return static_cast<std::int64_t>(count);
}

std::int64_t Part(std::string_view unit, const DateTimeValue& value) {
  const CivilDate date = ToCivil(value.days);
  const std::int64_t seconds = value.ticks / kTicksPerSecond;
  const std::int64_t day_of_year = value.days - FromCivil({date.year, 1, 1}) + 1;
  const std::int64_t first_weekday = (FromCivil({date.year, 1, 1}) + 1) % 7;
  const std::array<std::pair<std::string_view, std::int64_t>, 13> parts{{
      {"year", date.year},
      {"quarter", (date.month + 2) / 3},
      {"month", date.month},
      {"day", date.day},
      {"dayofyear", day_of_year},
      {"week", (day_of_year - 1 + first_weekday) / 7 + 1},
      {"weekday", (value.days + 1) % 7 + 1},
      {"hour", seconds / 3600},
      {"minute", seconds / 60 % 60},
      {"second", seconds % 60},
      {"millisecond", value.ticks / 10'000 % 1000},
      {"microsecond", value.ticks / 10 % 1'000'000},
      {"nanosecond", value.ticks % kTicksPerSecond * 100},
  }};
  for (const auto& [name, number] : parts) {
    if (name == unit) return number;
  }
  return 0;
}

Value DatePart(Call call) {
  return Part(Text(call, 0), Moment(call, 1));
}

Value Year(Call call) {
  return Part("year", Moment(call, 0));
}

Value Month(Call call) {
  return Part("month", Moment(call, 0));
}

Value Day(Call call) {
  return Part("day", Moment(call, 0));
}

Value DateName(Call call) {
  static constexpr std::array kDays{"Sunday",   "Monday", "Tuesday", "Wednesday",
                                    "Thursday", "Friday", "Saturday"};
  const std::string unit = Text(call, 0);
  const std::int64_t number = Part(unit, Moment(call, 1));
  if (unit == "weekday") return std::string(kDays[static_cast<std::size_t>(number - 1)]);
  if (unit == "month") return std::string(MonthName(static_cast<int>(number)));
  return std::to_string(number);
}

Value GetDate(Call call) {
  const std::int64_t now = NowTicks();
  const DateTimeValue value{static_cast<std::int32_t>(now / kTicksPerDay), now % kTicksPerDay, 0};
  return Convert(value, {SqlType::DateTime2, 0, 27, 7}, call.result);
}

Value IsDateText(Call call) {
  const bool valid =
      IsTemporal(call.types[0].type) || ParseDateTime(Text(call, 0)).problem == DateProblem::None;
  return std::int64_t{valid};
}

const std::array kFunctions{
    ScalarFunction{"dateadd", 3, 3, ReturnDateAdd, DateAdd},
    ScalarFunction{"datediff", 3, 3, ReturnInt, DateDiff},
    ScalarFunction{"datediff_big", 3, 3, ReturnBigInt, DateDiff},
    ScalarFunction{"datename", 2, 2, [](Types) { return NVarChar(30); }, DateName},
    ScalarFunction{"datepart", 2, 2, ReturnInt, DatePart},
    ScalarFunction{"day", 1, 1, ReturnInt, Day},
    ScalarFunction{"getdate", 0, 0, ReturnDateTime, GetDate},
    ScalarFunction{"current_timestamp", 0, 0, ReturnDateTime, GetDate},
    ScalarFunction{"sysdatetime", 0, 0,
                   [](Types) {
                     return TypeInfo{SqlType::DateTime2, 0, 27, 7};
                   },
                   GetDate},
    ScalarFunction{"getutcdate", 0, 0, ReturnDateTime, GetDate},
    ScalarFunction{"isdate", 1, 1, ReturnInt, IsDateText},
    ScalarFunction{"month", 1, 1, ReturnInt, Month},
    ScalarFunction{"year", 1, 1, ReturnInt, Year},
};

}  // namespace

std::span<const ScalarFunction> DateFunctions() {
  return kFunctions;
}

Value AddToDate(std::string_view unit, std::int64_t count, const DateTimeValue& value,
                const TypeInfo& type) {
  DateTimeValue moved = value;
  const std::int64_t months = unit == "year" ? 12 : unit == "quarter" ? 3 : unit == "month" ? 1 : 0;
  const auto overflow = [&] { Raise(242, TypeName(type), TypeName(type)); };
  if (count > INT32_MAX || count < INT32_MIN) Raise(8115, "expression", "int");
  if (months != 0) {
    CivilDate date = ToCivil(value.days);
    const std::int64_t target = MonthNumber(date) + count * months;
    if (target < 12 || target >= 120000) overflow();
    date.year = static_cast<int>(target / 12);
    date.month = static_cast<int>(target % 12) + 1;
    date.day = std::min(date.day, DaysInMonth(date.year, date.month));
    moved.days = static_cast<std::int32_t>(FromCivil(date));
  } else {
    Int128 ticks = Int128{value.days} * kTicksPerDay + value.ticks;
    for (const TickUnit& entry : kTickUnits) {
      if (entry.name == unit) ticks += Int128{count} * entry.ticks;
    }
    if (unit == "nanosecond") ticks += count / 100;
    if (ticks < 0 || ticks >= Int128{3652059} * kTicksPerDay) overflow();
    moved.days = static_cast<std::int32_t>(ticks / kTicksPerDay);
    moved.ticks = static_cast<std::int64_t>(ticks % kTicksPerDay);
  }
  const auto fitted = FitDateTime(moved, type);
  if (!fitted) overflow();
  return *fitted;
}

std::optional<std::string_view> DateUnit(std::string_view word) {
  for (const auto& [name, unit] : kDateUnits) {
    if (SameName(name, word)) return unit;
  }
  return std::nullopt;
}

}  // namespace sandbox
