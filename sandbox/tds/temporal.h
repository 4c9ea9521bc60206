#pragma once

#include <cstdint>

#include "sandbox/values/ticks.h"
#include "sandbox/values/types.h"

namespace sandbox::tds {

constexpr std::int64_t kTicksPerSecond = 10'000'000;
constexpr std::int64_t kTicksPerMinute = 60 * kTicksPerSecond;
constexpr std::int64_t kTicksPerDay = 86'400 * kTicksPerSecond;
/// Days of 1900-01-01 and of 9999-12-31, counted from 0001-01-01.
constexpr std::int32_t kDaysTo1900 = 693'595;
constexpr std::int32_t kLastDay = 3'652'058;

/// datetime as the wire holds it: days since 1900 and three-hundredths of a second.
struct LegacyDateTime {
  std::int32_t days;
  std::uint32_t three_hundredths;
};
LegacyDateTime ToLegacy(const DateTimeValue& value);
DateTimeValue FromLegacy(LegacyDateTime legacy);

/// The same moment without its offset, which stays in offset_minutes; and back.
DateTimeValue ToUtc(const DateTimeValue& local);
DateTimeValue ToLocal(const DateTimeValue& utc);

/// 10 to the power of 7 - scale: how many ticks make one unit of a time with that scale.
std::int64_t TicksPerUnit(int scale);

}  // namespace sandbox::tds
