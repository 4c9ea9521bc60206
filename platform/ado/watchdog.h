#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <thread>

#include "platform/ado/errors.h"

namespace dorvane::ado {

/// What a server, asked over another connection, tells of a session that owes an answer.
enum class SessionState {
  Working,  // its statement is being worked on
  Unknown,  // the server lives and does not tell
  Lost,     // the server does not answer, or has nothing to do for the session
};

/// Ends the waiting for a server that neither answers nor closes: client libraries wait for ever.
/// While a call of the session is under way and no byte moves for as long as the limit, the server
/// is asked about the session; unless it is still at work the session's socket is shut, by which
/// the call fails with a lost connection. A server that does not tell is believed twelve times.
///
/// One for each session, with a thread that wakes a few times in a limit. The session's calls come
/// from one thread at a time.
class Watchdog {
 public:
  /// Asked in the watchdog's thread; must return within a minute or so, and must not throw.
  using Question = std::function<SessionState()>;

  /// How long a server may take for a small answer: to a logon, a setting, a question.
  static constexpr std::chrono::seconds kAnswerLimit{15};

  /// Watches a session that was just opened: until SetLimit, kAnswerLimit of silence ends it.
  /// Switches keep-alive probes on. The socket stays the session's own; -1, one that nobody knows,
  /// is not watched.
  explicit Watchdog(int socket);
  ~Watchdog();
  Watchdog(const Watchdog&) = delete;
  Watchdog& operator=(const Watchdog&) = delete;

  /// A limit of 0 is none.
  void SetLimit(std::chrono::seconds limit, Question ask);

  /// True when the server has neither closed the connection nor sent anything that nobody asked
  /// for. Costs no trip; false for a socket that nobody knows.
  bool IsQuiet() const;

  /// Runs a call that waits for the server. A failure of it says so when the limit caused it.
  template <typename Operation>
  auto Watch(Operation operation);

 private:
  using Clock = std::chrono::steady_clock;

  /// Everything that changes while a session is alive.
  struct Pulse {
    std::uint64_t begun = 0;  // calls
    std::uint64_t ended = 0;
    std::uint64_t bytes = 0;  // received, and sent and acknowledged
    bool operator==(const Pulse&) const = default;
  };
  /// A call that is under way, in the thread that makes it.
  class Call;

  void Run();
  Pulse Feel() const;
  bool IsLost();
  ProviderError Explain(const ProviderError& failure) const;

  const int socket_;  // a duplicate: its number cannot become another file's
  std::atomic<std::uint64_t> begun_ = 0;
  std::atomic<std::uint64_t> ended_ = 0;
  std::atomic<bool> has_shut_ = false;

  std::mutex mutex_;
  std::condition_variable changed_;
  std::chrono::seconds limit_ = kAnswerLimit;
  Question ask_;
  bool is_over_ = false;
  int believed_ = 0;  // answers in a row that told nothing
  std::thread thread_;
};

class Watchdog::Call {
 public:
  explicit Call(Watchdog& watchdog) : watchdog_(watchdog) { ++watchdog_.begun_; }
  ~Call() { ++watchdog_.ended_; }
  Call(const Call&) = delete;
  Call& operator=(const Call&) = delete;

 private:
  Watchdog& watchdog_;
};

template <typename Operation>
auto Watchdog::Watch(Operation operation) {
  const Call call(*this);
  try {
    return operation();
  } catch (const ProviderError& failure) {
    if (!has_shut_) throw;
    throw Explain(failure);
  }
}

}  // namespace dorvane::ado
