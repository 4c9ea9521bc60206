#include "tests/support/proxy.h"

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <optional>
#include <stdexcept>
#include <vector>

#include "tests/support/sockets.h"

namespace dorvane::test {

namespace {

constexpr int kLook = 50;  // milliseconds between looks at whether the proxy ends
constexpr std::chrono::milliseconds kLateness(20);

/// Follows the packets of one direction of a connection.
class PacketTracker {
 public:
  explicit PacketTracker(ServerKind kind) : is_my_sql_(kind == ServerKind::MySql) {}

  /// Steps over the bytes. With a pattern it changes the length in the first header that is whole
  /// among them, and says so.
  bool Track(std::vector<char>& bytes, std::optional<std::uint8_t> pattern) {
    bool changed = false;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
      if (body_ > 0) {
        const std::size_t step = std::min(body_, bytes.size() - i);
        body_ -= step;
        i += step - 1;
        continue;
      }
      header_[have_++] = static_cast<std::uint8_t>(bytes[i]);
      if (have_ < HeaderSize()) continue;
      have_ = 0;
      body_ = BodySize();
      if (!pattern || changed || i + 1 < HeaderSize()) continue;
      const std::size_t length_at = i + 1 - HeaderSize() + (is_my_sql_ ? 0 : 3);
      bytes[length_at] = static_cast<char>(bytes[length_at] ^ *pattern);
      changed = true;
    }
    return changed;
  }

 private:
  std::size_t HeaderSize() const { return is_my_sql_ ? 4 : 8; }
  std::size_t BodySize() const {
    if (is_my_sql_) return header_[0] + (header_[1] << 8U) + (header_[2] << 16U);
    const std::size_t size = (header_[2] << 8U) + header_[3];
    return size > HeaderSize() ? size - HeaderSize() : 0;
  }

  const bool is_my_sql_;
  std::array<std::uint8_t, 8> header_{};
  std::size_t have_ = 0;  // bytes of the header
  std::size_t body_ = 0;  // bytes that are still to come
};

}  // namespace

/// One connection through the proxy, in a thread of its own.
class Proxy::Tunnel {
 public:
  Tunnel(Proxy& proxy, int client)
      : proxy_(proxy),
        sides_{Side{client, PacketTracker(proxy.framing_)},
               Side{ConnectTo(proxy.server_port_), PacketTracker(proxy.framing_)}},
        is_open_(sides_[1].socket >= 0) {
    const timeval limit{.tv_sec = 0, .tv_usec = kLook * 1000};
    for (const Side& side : sides_) {
      setsockopt(side.socket, SOL_SOCKET, SO_SNDTIMEO, &limit, sizeof limit);
    }
  }
  ~Tunnel() {
    for (const Side& side : sides_) close(side.socket);
  }
  Tunnel(const Tunnel&) = delete;
  Tunnel& operator=(const Tunnel&) = delete;

  void Run() {
    while (is_open_ && !proxy_.is_over_) {
      std::array<pollfd, 2> waiting{{{sides_[0].socket, POLLIN, 0}, {sides_[1].socket, POLLIN, 0}}};
      const bool is_stalled = fault_ == Fault::Stall;
      if (is_stalled) waiting[0].events = waiting[1].events = POLLRDHUP;
      poll(waiting.data(), waiting.size(), kLook);
      if (is_stalled) {
        is_open_ = (waiting[0].revents | waiting[1].revents) == 0;
        continue;
      }
      for (std::size_t from = 0; from < sides_.size() && is_open_; ++from) {
        if ((waiting[from].revents & (POLLIN | POLLHUP | POLLERR)) != 0) Pump(from);
      }
    }
  }

 private:
  struct Side {
    int socket;
    PacketTracker packets;  // of what comes from this side
  };

  void Pump(std::size_t from) {
    std::vector<char> bytes(64 * 1024);
    const ssize_t size = recv(sides_[from].socket, bytes.data(), bytes.size(), 0);
    if (size <= 0) {
      is_open_ = false;
      return;
    }
    bytes.resize(static_cast<std::size_t>(size));
    const bool answers = from == 1;
    std::size_t passing = 0;
    Strike strike;
    if (!fault_ && proxy_.Strikes(answers, bytes.size(), passing, strike)) {
      fault_ = strike.fault;
      pattern_ = strike.pattern;
      if (fault_ == Fault::Truncate) bytes.resize(passing);
    }
    Treat(from, bytes);
  }

  void Treat(std::size_t from, std::vector<char>& bytes) {
    const bool answers = from == 1;
    if (fault_ == Fault::Swallow || (fault_ == Fault::SwallowAnswers && answers)) return;
    if (fault_ == Fault::Delay) std::this_thread::sleep_for(kLateness);
    const bool lies = fault_ == Fault::Corrupt;
    if (sides_[from].packets.Track(bytes, lies ? std::optional(pattern_) : std::nullopt)) {
      fault_.reset();  // one lie is enough
    }
    Send(sides_[1 - from].socket, bytes);
    if (fault_ == Fault::Reset) {
      const linger at_once{1, 0};
      for (const Side& side : sides_) {
        setsockopt(side.socket, SOL_SOCKET, SO_LINGER, &at_once, sizeof at_once);
      }
    }
    if (fault_ == Fault::Reset || fault_ == Fault::Cut || fault_ == Fault::Truncate) {
      is_open_ = false;
    }
  }

  void Send(int socket, const std::vector<char>& bytes) {
    for (std::size_t sent = 0; sent < bytes.size() && !proxy_.is_over_;) {
      const ssize_t size = send(socket, bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL);
      if (size > 0) {
        sent += static_cast<std::size_t>(size);
      } else if (errno != EAGAIN && errno != EWOULDBLOCK) {
        is_open_ = false;
        return;
      }
    }
  }

  Proxy& proxy_;
  std::array<Side, 2> sides_;  // the client's and the server's
  bool is_open_;
  std::optional<Fault> fault_;
  std::uint8_t pattern_ = 0;
};

Proxy::Proxy(int server_port, ServerKind framing)
    : server_port_(server_port), framing_(framing), port_(FreePort()), listener_(ListenAt(port_)) {
  if (listener_ < 0) throw std::runtime_error("the proxy cannot listen");
  acceptor_ = std::thread([this] { Accept(); });
}

Proxy::~Proxy() {
  is_over_ = true;
  acceptor_.join();
  for (std::thread& tunnel : tunnels_) tunnel.join();
  close(listener_);
}

void Proxy::Accept() {
  while (!is_over_) {
    pollfd waiting{listener_, POLLIN, 0};
    if (poll(&waiting, 1, kLook) <= 0) continue;
    const int client = accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
    if (client >= 0) tunnels_.emplace_back([this, client] { Tunnel(*this, client).Run(); });
  }
}

void Proxy::Arm(const Strike& strike) {
  const std::lock_guard lock(mutex_);
  is_armed_ = true;
  has_struck_ = false;
  strike_ = strike;
  counted_ = {};
}

std::size_t Proxy::Counted(bool on_answers) {
  const std::lock_guard lock(mutex_);
  return counted_[on_answers ? 1 : 0];
}

bool Proxy::Strikes(bool answers, std::size_t size, std::size_t& passing, Strike& strike) {
  const std::lock_guard lock(mutex_);
  std::size_t& counted = counted_[answers ? 1 : 0];
  passing = strike_.after - std::min(strike_.after, counted);
  counted += size;
  if (!is_armed_ || strike_.on_answers != answers || counted <= strike_.after) return false;
  is_armed_ = false;
  has_struck_ = true;
  strike = strike_;
  return true;
}

}  // namespace dorvane::test
