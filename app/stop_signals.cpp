#include "app/stop_signals.h"

#include <cstddef>

namespace dorvane {

namespace {

volatile std::sig_atomic_t received = 0;

void Receive(int signal) {
  received = signal;
}

}  // namespace

StopSignals::StopSignals() {
  received = 0;
  for (std::size_t i = 0; i < kSignals.size(); ++i) {
    sigaction(kSignals[i], nullptr, &before_[i]);
    if (before_[i].sa_handler == SIG_IGN) continue;
    struct sigaction action {};
    action.sa_handler = Receive;
    // Behind the first one the signal means what it always means.
    action.sa_flags = SA_RESETHAND | SA_RESTART;
    sigaction(kSignals[i], &action, nullptr);
  }
}

StopSignals::~StopSignals() {
  for (std::size_t i = 0; i < kSignals.size(); ++i) sigaction(kSignals[i], &before_[i], nullptr);
}

int StopSignals::Received() {
  return received;
}

}  // namespace dorvane
