#include "platform/ado/watchdog.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <linux/tcp.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <string>
#include <utility>

namespace dorvane::ado {

namespace {

using std::chrono::milliseconds;

constexpr int kMostBelieved = 12;
constexpr int kLooksInLimit = 8;
constexpr milliseconds kUnlimitedPause = std::chrono::hours(1);

/// A server that vanished without a word is noticed within minutes, while a statement may take as
/// long as it needs. Unix sockets refuse these options, rightly.
void KeepAlive(int socket) {
  const auto set = [socket](int level, int option, int value) {
    setsockopt(socket, level, option, &value, sizeof value);
  };
  set(SOL_SOCKET, SO_KEEPALIVE, 1);
  set(IPPROTO_TCP, TCP_KEEPIDLE, 60);
  set(IPPROTO_TCP, TCP_KEEPINTVL, 10);
  set(IPPROTO_TCP, TCP_KEEPCNT, 6);
  set(IPPROTO_TCP, TCP_USER_TIMEOUT, 120'000);
}

/// Bytes that went over a TCP socket in either direction; 0 for other sockets.
std::uint64_t BytesMoved(int socket) {
  tcp_info info{};
  socklen_t size = sizeof info;
  if (getsockopt(socket, IPPROTO_TCP, TCP_INFO, &info, &size) != 0) return 0;
  return info.tcpi_bytes_acked + info.tcpi_bytes_received;
}

}  // namespace

Watchdog::Watchdog(int socket) : socket_(fcntl(socket, F_DUPFD_CLOEXEC, 0)) {
  KeepAlive(socket_);
  if (socket_ >= 0) thread_ = std::thread([this] { Run(); });
}

Watchdog::~Watchdog() {
  {
    const std::lock_guard lock(mutex_);
    is_over_ = true;
  }
  changed_.notify_one();
  if (thread_.joinable()) thread_.join();
  if (socket_ >= 0) close(socket_);
}

bool Watchdog::IsQuiet() const {
  char byte = 0;
  const ssize_t size = recv(socket_, &byte, 1, MSG_PEEK | MSG_DONTWAIT);
  return size < 0 && (errno == EAGAIN || errno == EWOULDBLOCK);
}

void Watchdog::SetLimit(std::chrono::seconds limit, Question ask) {
  {
    const std::lock_guard lock(mutex_);
    limit_ = limit;
    ask_ = std::move(ask);
  }
  changed_.notify_one();
}

Watchdog::Pulse Watchdog::Feel() const {
  return {.begun = begun_, .ended = ended_, .bytes = BytesMoved(socket_)};
}

void Watchdog::Run() {
  std::unique_lock lock(mutex_);
  Pulse last;
  Clock::time_point silent_since = Clock::now();
  while (!is_over_) {
    const bool has_limit = limit_.count() > 0;
    changed_.wait_for(lock, has_limit ? milliseconds(limit_) / kLooksInLimit : kUnlimitedPause);
    if (is_over_) return;
    const Pulse pulse = Feel();
    if (pulse != last || pulse.begun == pulse.ended) {
      last = pulse;
      believed_ = 0;
      silent_since = Clock::now();
      continue;
    }
    if (!has_limit || Clock::now() - silent_since < limit_) continue;
    // Asked under the lock, since the session's own thread hangs in its call.
    const bool is_lost = IsLost();
    if (Feel() != last) continue;
    if (is_lost) {
      has_shut_ = true;
      shutdown(socket_, SHUT_RDWR);
      return;
    }
    silent_since = Clock::now();
  }
}

bool Watchdog::IsLost() {
  switch (ask_ ? ask_() : SessionState::Lost) {
    case SessionState::Working:
      believed_ = 0;
      return false;
    case SessionState::Unknown:
      return ++believed_ >= kMostBelieved;
    case SessionState::Lost:
      break;
  }
  return true;
}

ProviderError Watchdog::Explain(const ProviderError& failure) const {
  const auto explained = [&](const std::string& description) {
    return fmt::format("No answer for {} seconds. {}", limit_.count(), description);
  };
  Errors entries = failure.Entries();
  for (Error& entry : entries) entry.description = explained(entry.description);
  return {failure.Number(), failure.Source(), explained(failure.Description()), std::move(entries)};
}

}  // namespace dorvane::ado
