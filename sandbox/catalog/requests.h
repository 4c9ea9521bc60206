#pragma once

#include <atomic>
#include <map>
#include <mutex>

namespace sandbox {

/// The requests that are at work on a server, by their sessions. Thread-safe.
class Requests {
 public:
  /// One request, from its start to its end.
  class Guard {
   public:
    Guard(Requests& requests, int spid, const std::atomic<bool>& is_sending)
        : requests_(requests), spid_(spid) {
      const std::lock_guard lock(requests_.mutex_);
      requests_.sending_[spid] = &is_sending;
    }
    ~Guard() {
      const std::lock_guard lock(requests_.mutex_);
      requests_.sending_.erase(spid_);
    }
    Guard(const Guard&) = delete;
    Guard& operator=(const Guard&) = delete;

   private:
    Requests& requests_;
    const int spid_;
  };

  /// Calls `use` with each session and whether its answer is on the way to the client just now.
  template <typename Use>
  void ForEach(Use use) {
    const std::lock_guard lock(mutex_);
    for (const auto& [spid, is_sending] : sending_) use(spid, is_sending->load());
  }

 private:
  std::mutex mutex_;
  std::map<int, const std::atomic<bool>*> sending_;
};

}  // namespace sandbox
