#pragma once

#include <atomic>
#include <cstdint>
#include <list>
#include <thread>

#include "sandbox/tds/attention_watch.h"
#include "sandbox/tds/connection.h"
#include "sandbox/tds/file_descriptor.h"

namespace sandbox::tds {

/// Listens on 127.0.0.1 and gives every client a thread of its own.
class Server {
 public:
  /// `port` 0 takes any free one. Throws std::system_error when it cannot listen.
  Server(Engine& engine, Credentials credentials, std::uint16_t port);
  /// Ends every connection, running requests too.
  ~Server();
  Server(const Server&) = delete;
  Server& operator=(const Server&) = delete;

  std::uint16_t Port() const { return port_; }

 private:
  struct Client {
    FileDescriptor socket;
    std::atomic<bool> finished{false};
    std::thread thread;
  };

  void Accept();
  void Start(FileDescriptor socket);
  void Serve(Client& client);
  void RemoveFinished();

  Engine& engine_;
  const Credentials credentials_;
  FileDescriptor listener_;
  std::uint16_t port_ = 0;
  AttentionWatch watch_;
  std::atomic<bool> stopping_{false};
  std::list<Client> clients_;  // touched by the accepting thread only, until it has ended
  std::thread acceptor_;
};

}  // namespace sandbox::tds
