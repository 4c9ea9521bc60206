#pragma once

#include <cstdint>

namespace sandbox {

// Times are counted in ticks of 100 ns, points in time from 0001-01-01.
constexpr std::int64_t kTicksPerSecond = 10'000'000;
constexpr std::int64_t kTicksPerDay = 86'400 * kTicksPerSecond;

/// The time now, local time.
std::int64_t NowTicks();

}  // namespace sandbox
