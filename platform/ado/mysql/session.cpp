#include "platform/ado/mysql/session.h"

#include <mariadb/errmsg.h>
#include <mariadb/mysqld_error.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>

#include "platform/ado/mysql/catalog.h"
#include "platform/ado/mysql/errors.h"
#include "platform/ado/mysql/reader.h"
#include "platform/ado/mysql/writer.h"

namespace dorvane::ado {

namespace mysql {

namespace {

bool IsLostConnection(const ProviderError& failure) {
  // Behind TLS the end of a connection is a failure of TLS.
  constexpr std::array kNumbers = {CR_SERVER_GONE_ERROR, CR_SERVER_LOST, CR_SSL_CONNECTION_ERROR,
                                   ER_CONNECTION_KILLED};
  const std::int32_t number = failure.Entries().at(0).native_error;
  return std::ranges::find(kNumbers, number) != kNumbers.end();
}

}  // namespace

ClientSession::ClientSession(ConnectionSettings settings, RowTransport transport)
    : settings_(std::move(settings)), transport_(transport), link_(LogOn(settings_)) {}

const ServerLink& ClientSession::Link() {
  if (!abandoned_) return link_;
  if (in_transaction_) {
    throw MakeError(CR_SERVER_LOST, "08S01",
                    "The transaction was lost with a result that was left unread");
  }
  link_ = LogOn(settings_);
  abandoned_ = false;
  return link_;
}

bool ClientSession::UsesBulk() {
  return transport_ == RowTransport::Fastest && Link().takes_bulk;
}

bool ClientSession::UsesLoads() {
  return transport_ != RowTransport::Statements && in_transaction_ && !UsesBulk() &&
         Link().limits.takes_local_files;
}

void ClientSession::Abandon() {
  streaming_ = false;
  abandoned_ = true;
  Sever();
}

void ClientSession::Close(Statement& statement) {
  link_.watchdog->Watch([&] { statement.reset(); });
}

void ClientSession::Sever() {
  // A server that waits for room to send learns of the end by a reset only.
  const int socket = mysql_get_socket(link_.client.get());
  const linger reset_on_close{1, 0};
  setsockopt(socket, SOL_SOCKET, SO_LINGER, &reset_on_close, sizeof reset_on_close);
  shutdown(socket, SHUT_RDWR);
}

std::unique_ptr<ResultReader> ClientSession::Execute(std::string_view sql) {
  return Watch([&] { return OpenReader(*this, sql); });
}

bool ClientSession::IsAlive() {
  try {
    if (Link().watchdog->IsQuiet()) return true;
    return Watch([&] { return mysql_ping(link_.client.get()) == 0; });
  } catch (const ProviderError&) {
    return false;
  }
}

std::unique_ptr<TableWriter> ClientSession::OpenWriter(std::string_view table,
                                                       const std::vector<std::string>& columns) {
  return Watch([&] { return std::make_unique<RowWriter>(*this, table, columns); });
}

void ClientSession::Run(std::string_view sql) {
  Watch([&] { Query(link_.client.get(), sql); });
}

void ClientSession::BeginTransaction() {
  Run("start transaction");
  in_transaction_ = true;
}

void ClientSession::Commit() {
  Run("commit");
  in_transaction_ = false;
}

void ClientSession::Rollback() {
  in_transaction_ = false;
  // A transaction whose connection is gone was rolled back by the server.
  if (abandoned_) return;
  try {
    Run("rollback");
  } catch (const ProviderError& failure) {
    if (!IsLostConnection(failure)) throw;
  }
}

std::vector<TableInfo> ClientSession::Tables() {
  return Watch([&] { return ReadTables(link_, {}); });
}

std::vector<Column> ClientSession::Columns(const TableName& table) {
  return Watch([&] { return ReadColumns(link_, table.schema, table.name); });
}

std::vector<Index> ClientSession::Indexes(const TableName& table) {
  return Watch([&] { return ReadIndexes(link_, table.schema, table.name); });
}

std::vector<Key> ClientSession::Keys(const TableName& table) {
  return Watch([&] { return ReadKeys(link_, table.schema, table.name); });
}

std::unique_ptr<Session> ClientProvider::Connect(const ConnectionSettings& settings) {
  return std::make_unique<ClientSession>(settings, transport_);
}

}  // namespace mysql

Provider& MySqlProvider() {
  static mysql::ClientProvider provider;
  return provider;
}

}  // namespace dorvane::ado
