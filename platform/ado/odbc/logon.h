#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <utility>

#include "platform/ado/odbc/diagnostics.h"
#include "platform/ado/odbc/driver.h"
#include "platform/ado/odbc/handle.h"
#include "platform/ado/provider.h"
#include "platform/ado/watchdog.h"

namespace dorvane::ado::odbc {

/// A logged-on connection, shared by its session and the readers that still fetch from it: it logs
/// off when the last of them goes.
class Logon {
 public:
  /// Gives up when the server is silent for so long. Throws ProviderError, or RunTimeError when the
  /// file of the authorities can't be read.
  explicit Logon(const ConnectionSettings& settings,
                 std::chrono::seconds timeout = std::chrono::seconds(15));
  ~Logon();
  Logon(const Logon&) = delete;
  Logon& operator=(const Logon&) = delete;

  /// A statement whose text is passed to the server as it stands. Throws ProviderError.
  Statement NewStatement() const;
  /// For what a driver has beside statements.
  SQLHANDLE Connection() const { return connection_.Get(); }

  /// Runs a call of the driver that waits for the server, see Watchdog.
  template <typename Operation>
  auto Watch(Operation operation) {
    return watchdog_->Watch(std::move(operation));
  }
  /// From now on the server may be silent for so long.
  void SetLimit(std::chrono::seconds limit, Watchdog::Question ask) {
    watchdog_->SetLimit(limit, std::move(ask));
  }
  /// See Watchdog.
  bool IsQuiet() const { return watchdog_->IsQuiet(); }
  /// See Session.
  bool IsExposed() const { return is_exposed_; }

  /// True when the driver has found the connection broken.
  bool IsLost() const;

  /// True while a reader has results left on the wire, which keep other statements from running.
  bool IsStreaming() const { return is_streaming_; }
  void SetStreaming(bool is_streaming) { is_streaming_ = is_streaming; }

 private:
  /// What the driver says when it does not connect; none when it does.
  Diagnostics Connect(const Driver& driver, const ConnectionSettings& settings,
                      std::chrono::seconds timeout);

  Environment environment_;
  ConnectionHandle connection_;
  std::optional<Watchdog> watchdog_;
  bool is_exposed_ = false;
  bool is_streaming_ = false;
};

}  // namespace dorvane::ado::odbc
