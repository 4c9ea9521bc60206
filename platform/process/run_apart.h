#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace dorvane::process {

/// Takes bytes that the work has made.
using ByteSink = std::function<void(std::string_view)>;

/// What the work may use up.
struct WorkLimits {
  std::chrono::seconds time{10};
  std::size_t bytes = 64U << 20;  // that it makes
};

/// Runs `work` in a copy of this process and gives what it wrote into the sink: for libraries that
/// bad input may bring down. Nothing when the copy crashed, threw, went beyond its limits or could
/// not be made. The work must touch neither windows nor threads nor locks of this process.
std::optional<std::string> RunApart(const std::function<void(const ByteSink&)>& work,
                                    const WorkLimits& limits = {});

}  // namespace dorvane::process
