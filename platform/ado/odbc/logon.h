#pragma once

#include <chrono>

#include "platform/ado/odbc/handle.h"
#include "platform/ado/provider.h"

namespace dorvane::ado::odbc {

/// A logged-on connection, shared by its session and the readers that still fetch from it: it logs
/// off when the last of them goes.
class Logon {
 public:
  /// Gives up when the server is silent for so long. Throws ProviderError.
  explicit Logon(const ConnectionSettings& settings,
                 std::chrono::seconds timeout = std::chrono::seconds(15));
  ~Logon();
  Logon(const Logon&) = delete;
  Logon& operator=(const Logon&) = delete;

  /// A statement whose text is passed to the server as it stands. Throws ProviderError.
  Statement NewStatement() const;
  /// For what a driver has beside statements.
  SQLHANDLE Connection() const { return connection_.Get(); }

  /// True when the driver has found the connection broken.
  bool IsLost() const;

  /// True while a reader has results left on the wire, which keep other statements from running.
  bool IsStreaming() const { return is_streaming_; }
  void SetStreaming(bool is_streaming) { is_streaming_ = is_streaming; }

 private:
  Environment environment_;
  ConnectionHandle connection_;
  bool is_streaming_ = false;
};

}  // namespace dorvane::ado::odbc
