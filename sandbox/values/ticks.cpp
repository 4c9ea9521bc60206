#include "sandbox/values/ticks.h"

#include <chrono>
#include <ctime>

namespace sandbox {

namespace {

constexpr std::int64_t kDaysToUnixEpoch = 719162;

}  // namespace

std::int64_t NowTicks() {
  using std::chrono::system_clock;
  const auto now = system_clock::now();
  const std::time_t seconds = system_clock::to_time_t(now);
  std::tm local{};
  localtime_r(&seconds, &local);
  const auto ticks =
      std::chrono::duration_cast<std::chrono::nanoseconds>(now - system_clock::from_time_t(seconds))
          .count() /
      100;
  return kDaysToUnixEpoch * kTicksPerDay + (seconds + local.tm_gmtoff) * kTicksPerSecond + ticks;
}

}  // namespace sandbox
