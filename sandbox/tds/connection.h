#pragma once

#include <functional>
#include <memory>
#include <string>

#include "sandbox/tds/attention_watch.h"
#include "sandbox/tds/client_session.h"
#include "sandbox/tds/login_phase.h"
#include "sandbox/tds/result_writer.h"

namespace sandbox::tds {

/// One client from its handshake to its end.
class Connection {
 public:
  /// The socket stays its owner's; shutting it down ends Run.
  Connection(int socket, Engine& engine, const Credentials& credentials, AttentionWatch& watch);

  /// Serves the client until it leaves. Throws ProtocolError, Disconnected.
  void Run();

 private:
  void Serve(MessageType type);
  void ServeBatch();
  void ServeProcedures();
  void ServeBulkLoad();
  void ConfirmAttention();
  void ReportBrokenStream();
  void RunRequest(ResultWriter::Request kind, const std::function<void(ResultWriter&)>& work);

  int socket_;
  Engine& engine_;
  const Credentials& credentials_;
  AttentionWatch& watch_;
  ClientSession client_;
  std::unique_ptr<BulkTarget> bulk_target_;
};

}  // namespace sandbox::tds
