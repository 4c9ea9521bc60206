#pragma once

#include <array>
#include <csignal>

namespace dorvane {

/// While it lives, the first SIGINT or SIGTERM is a request to end in order; the second one ends
/// the program at once. One that was ignored stays ignored. At most one at a time.
class StopSignals {
 public:
  StopSignals();
  ~StopSignals();
  StopSignals(const StopSignals&) = delete;
  StopSignals& operator=(const StopSignals&) = delete;

  /// The signal that came, or 0.
  static int Received();

 private:
  static constexpr std::array kSignals{SIGINT, SIGTERM};
  std::array<struct sigaction, kSignals.size()> before_{};
};

}  // namespace dorvane
