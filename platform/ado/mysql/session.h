#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/ado/mysql/errors.h"
#include "platform/ado/mysql/logon.h"
#include "platform/ado/provider.h"

namespace dorvane::ado::mysql {

/// How rows are sent: by the fastest way that the server offers, which is MariaDB's bulk protocol
/// or else a load; by a load where the server takes one; or always by INSERT statements of many
/// rows, which every server understands.
enum class RowTransport { Fastest, Loads, Statements };

/// One logged-on session. Its readers and writers must go before it does.
class ClientSession final : public Session {
 public:
  ClientSession(ConnectionSettings settings, RowTransport transport);

  std::unique_ptr<ResultReader> Execute(std::string_view sql) override;
  bool IsStreaming() const override { return streaming_; }
  bool IsAlive() override;
  bool IsExposed() const override { return link_.is_exposed; }
  std::unique_ptr<TableWriter> OpenWriter(std::string_view table,
                                          const std::vector<std::string>& columns) override;
  void BeginTransaction() override;
  void Commit() override;
  void Rollback() override;
  std::vector<TableInfo> Tables() override;
  std::vector<Column> Columns(const TableName& table) override;
  std::vector<Index> Indexes(const TableName& table) override;
  std::vector<Key> Keys(const TableName& table) override;

  /// The session's client. Where rows were left unread it logs on again first, since the rest of a
  /// result can only be read or given up with its connection. Throws ProviderError; inside a
  /// transaction that was lost so, always.
  const ServerLink& Link();
  /// Runs a call on the client that waits for the server, see Watchdog. A failure of the client
  /// library itself leaves the two of them out of step: that is a lost connection.
  template <typename Operation>
  auto Watch(Operation operation) {
    try {
      return Link().watchdog->Watch(std::move(operation));
    } catch (const ProviderError& failure) {
      if (IsClientError(failure.Entries().at(0).native_error)) Sever();
      throw;
    }
  }
  /// Whether rows are to be sent by the bulk protocol.
  bool UsesBulk();
  /// Whether many rows are to be loaded. What is loaded can be undone inside a transaction only.
  bool UsesLoads();

  /// For readers: whether rows are left on the wire.
  void SetStreaming(bool streaming) { streaming_ = streaming; }
  /// For readers: gives up the rows that were not read, at once, whatever their number.
  void Abandon();
  /// For readers: takes the statement off the server.
  void Close(Statement& statement);

 private:
  void Run(std::string_view sql);
  /// Ends the connection without a word: the library would read what is left of a result before it
  /// closes anything.
  void Sever();

  ConnectionSettings settings_;
  const RowTransport transport_;
  ServerLink link_;
  bool streaming_ = false;
  bool abandoned_ = false;
  bool in_transaction_ = false;
};

/// MySqlProvider() is one of these that sends rows by the fastest way.
class ClientProvider final : public Provider {
 public:
  explicit ClientProvider(RowTransport transport = RowTransport::Fastest) : transport_(transport) {}
  std::unique_ptr<Session> Connect(const ConnectionSettings& settings) override;

 private:
  const RowTransport transport_;
};

}  // namespace dorvane::ado::mysql
