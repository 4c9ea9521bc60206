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

constexpr std::array<std::pair<std::string_view, std::string_view>, 23> kDateUnits{
    {{"year", "year"},       {"yy", "year"},
     {"yyyy", "year"},       {"month", "month"},
     {"mm", "month"},        {"m", "month"},
     {"day", "day"},         {"dd", "day"},
     {"d", "day"},           {"hour", "hour"},
     {"hh", "hour"},         {"minute", "minute"},
     {"mi", "minute"},       {"n", "minute"},
     {"second", "second"},   {"ss", "second"},
     {"s", "second"},        {"millisecond", "millisecond"},
     {"ms", "millisecond"},  {"microsecond", "microsecond"},
     {"mcs", "microsecond"}, {"nanosecond", "nanosecond"},
     {"ns", "nanosecond"}}};

struct TickUnit {
  std::string_view name;
  std::int64_t ticks;
};

constexpr std::array kTickUnits{TickUnit{"day", kTicksPerDay},
                                TickUnit{"hour", 3600 * kTicksPerSecond},
                                TickUnit{"minute", 60 * kTicksPerSecond},
                                TickUnit{"second", kTicksPerSecond},
                                TickUnit{"millisecond", 10'000},
                                TickUnit{"microsecond", 10}};

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

std::int64_t MonthNumber(const CivilDate& date) {
  return date.year * 12 + date.month - 1;
}

// As many units later, or earlier.
Value AddToDate(std::string_view unit, std::int64_t count, const DateTimeValue& value,
                const TypeInfo& type) {
  DateTimeValue moved = value;
  const std::int64_t months = unit == "year" ? 12 : unit == "month" ? 1 : 0;
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

Value DateAdd(Call call) {
  const TypeInfo type = IsTemporal(call.types[2].type) ? call.types[2] : DateTimeType();
  return AddToDate(Text(call, 0), Integer(call, 1), Moment(call, 2), type);
}

std::int64_t Part(std::string_view unit, const DateTimeValue& value) {
  const CivilDate date = ToCivil(value.days);
  const std::int64_t seconds = value.ticks / kTicksPerSecond;
  const std::array<std::pair<std::string_view, std::int64_t>, 9> parts{{
      {"year", date.year},
      {"month", date.month},
      {"day", date.day},
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

Value GetDate(Call call) {
  const std::int64_t now = NowTicks();
  const DateTimeValue value{static_cast<std::int32_t>(now / kTicksPerDay), now % kTicksPerDay, 0};
  return Convert(value, {SqlType::DateTime2, 0, 27, 7}, call.result);
}

const std::array kFunctions{
    ScalarFunction{"dateadd", 3, 3, ReturnDateAdd, DateAdd},
    ScalarFunction{"datepart", 2, 2, ReturnInt, DatePart},
    ScalarFunction{"day", 1, 1, ReturnInt, Day},
    ScalarFunction{"getdate", 0, 0, ReturnDateTime, GetDate},
    ScalarFunction{"sysdatetime", 0, 0,
                   [](Types) {
                     return TypeInfo{SqlType::DateTime2, 0, 27, 7};
                   },
                   GetDate},
    ScalarFunction{"month", 1, 1, ReturnInt, Month},
    ScalarFunction{"year", 1, 1, ReturnInt, Year},
};

}  // namespace

std::span<const ScalarFunction> DateFunctions() {
  return kFunctions;
}

std::optional<std::string_view> DateUnit(std::string_view word) {
  for (const auto& [name, unit] : kDateUnits) {
    if (SameName(name, word)) return unit;
  }
  return std::nullopt;
}

}  // namespace sandbox
