#pragma once

#include <atomic>
#include <mutex>
#include <thread>
#include <unordered_map>

#include "sandbox/tds/file_descriptor.h"

namespace sandbox::tds {

/// Looks at the sockets of connections that are busy with a request, and raises the request's
/// cancel flag when the client sends an attention packet or goes away. One thread serves all.
class AttentionWatch {
 public:
  /// Throws std::system_error.
  AttentionWatch();
  ~AttentionWatch();
  AttentionWatch(const AttentionWatch&) = delete;
  AttentionWatch& operator=(const AttentionWatch&) = delete;

  /// Watches one socket during its lifetime.
  class Guard {
   public:
    Guard(AttentionWatch& watch, int socket, std::atomic<bool>& cancel);
    ~Guard();
    Guard(const Guard&) = delete;
    Guard& operator=(const Guard&) = delete;

   private:
    AttentionWatch& watch_;
    int socket_;
  };

 private:
  void Run();
  void Look(int socket);

  FileDescriptor epoll_;
  FileDescriptor stop_;
  std::mutex mutex_;
  std::unordered_map<int, std::atomic<bool>*> watched_;
  std::thread thread_;
};

}  // namespace sandbox::tds
