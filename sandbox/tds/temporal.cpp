#include "sandbox/tds/temporal.h"

#include "sandbox/values/ticks.h"

namespace sandbox::tds {

namespace {

constexpr std::int64_t kThreeHundredthsPerDay = 86'400 * 300;

DateTimeValue Shifted(const DateTimeValue& value, std::int64_t minutes) {
  std::int64_t ticks = value.ticks + minutes * kTicksPerMinute;
  std::int64_t days = ticks / kTicksPerDay;
  ticks %= kTicksPerDay;
  if (ticks < 0) {
    ticks += kTicksPerDay;
    --days;
  }
  return {static_cast<std::int32_t>(value.days + days), ticks, value.offset_minutes};
}

}  // namespace

LegacyDateTime ToLegacy(const DateTimeValue& value) {
  std::int64_t parts = (value.ticks * 3 + 50'000) / 100'000;
  std::int32_t carry = parts >= kThreeHundredthsPerDay ? 1 : 0;
  return {value.days - kDaysTo1900 + carry,
          static_cast<std::uint32_t>(parts - carry * kThreeHundredthsPerDay)};
}

DateTimeValue FromLegacy(LegacyDateTime legacy) {
  // SQL Server shows a three-hundredth rounded to whole milliseconds.
  std::int64_t milliseconds = (std::int64_t{legacy.three_hundredths} * 10 + 1) / 3;
  return {legacy.days + kDaysTo1900, milliseconds * 10'000, 0};
}

DateTimeValue ToUtc(const DateTimeValue& local) {
  return Shifted(local, -local.offset_minutes);
}

DateTimeValue ToLocal(const DateTimeValue& utc) {
  return Shifted(utc, utc.offset_minutes);
}

std::int64_t TicksPerUnit(int scale) {
  constexpr std::int64_t kUnits[] = {10'000'000, 1'000'000, 100'000, 10'000, 1'000, 100, 10, 1};
  return kUnits[scale];
}

}  // namespace sandbox::tds
