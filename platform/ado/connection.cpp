#include "platform/ado/connection.h"

#include <algorithm>
#include <string>

namespace dorvane::ado {

namespace {

std::string StatementText(std::string_view text, CommandType type) {
  if (type == CommandType::Table) return "select * from " + std::string(text);
  return std::string(text);
}

}  // namespace

template <typename Operation>
auto Connection::WhileOpen(Operation operation) {
  return Guarded([&] {
    if (sessions_.empty()) {
      throw RunTimeError(kObjectClosed, "ADODB.Connection",
                         "Operation is not allowed when the object is closed.");
    }
    return operation();
  });
}

Connection::Connection(Provider& provider) : provider_(provider) {}

Connection::~Connection() {
  Close();
}

void Connection::Open(ConnectionSettings settings) {
  Guarded([&] {
    if (State() == ObjectState::Open) {
      throw RunTimeError(kObjectOpen, "ADODB.Connection",
                         "Operation is not allowed when the object is open.");
    }
    settings_ = std::move(settings);
    sessions_.push_back(provider_.Connect(settings_));
  });
}

void Connection::Reopen() {
  Close();
  Open(ConnectionSettings(settings_));
}

std::unique_ptr<Connection> Connection::OpenAnother() const {
  auto another = std::make_unique<Connection>(provider_);
  another->Open(settings_);
  another->rehearsal_ = rehearsal_;
  return another;
}

bool Connection::IsAlive() {
  return State() == ObjectState::Open &&
         std::ranges::all_of(sessions_, [](const auto& session) { return session->IsAlive(); });
}

void Connection::Close() {
  errors_.clear();
  for (Dependent* dependent : dependents_) dependent->Detach();
  dependents_.clear();
  writing_session_ = nullptr;
  in_transaction_ = false;
  sessions_.clear();
}

ObjectState Connection::State() const {
  return sessions_.empty() ? ObjectState::Closed : ObjectState::Open;
}

Session& Connection::IdleSession() {
  if (in_transaction_ && !writing_session_->IsStreaming()) return *writing_session_;
  const auto idle = std::ranges::find_if(
      sessions_, [](const std::unique_ptr<Session>& session) { return !session->IsStreaming(); });
  if (idle != sessions_.end()) return **idle;
  sessions_.push_back(provider_.Connect(settings_));
  return *sessions_.back();
}

Session& Connection::WritingSession() {
  if (writing_session_ == nullptr) writing_session_ = &IdleSession();
  return *writing_session_;
}

Recordset Connection::Execute(std::string_view sql, CommandType type) {
  return WhileOpen([&] {
    const std::string text = StatementText(sql, type);
    if (rehearsal_ == nullptr || OnlyReads(text)) {
      return Recordset(*this, IdleSession().Execute(text));
    }
    rehearsal_(text);
    return Recordset(*this, NothingToRead());
  });
}

void Connection::ExecuteWith(std::string_view sql, std::span<const Value> parameters) {
  WhileOpen([&] {
    if (rehearsal_ != nullptr) return rehearsal_(sql);
    IdleSession().ExecuteWith(sql, parameters);
  });
}

Recordset Connection::OpenTable(std::string_view table, const std::vector<std::string>& columns) {
  return WhileOpen([&] {
    return Recordset(
        *this,
        rehearsal_ != nullptr ? NothingToWrite() : WritingSession().OpenWriter(table, columns),
        columns);
  });
}

void Connection::BeginTrans() {
  WhileOpen([&] {
    WritingSession().BeginTransaction();
    in_transaction_ = true;
  });
}

void Connection::EndTransaction(void (Session::*how)()) {
  WhileOpen([&] {
    // Whatever comes of it, the transaction is over: a commit that fails has stored nothing.
    in_transaction_ = false;
    (WritingSession().*how)();
  });
}

void Connection::CommitTrans() {
  EndTransaction(&Session::Commit);
}

void Connection::RollbackTrans() {
  EndTransaction(&Session::Rollback);
}

std::vector<TableInfo> Connection::Tables() {
  return WhileOpen([&] { return IdleSession().Tables(); });
}

std::vector<Column> Connection::Columns(const TableName& table) {
  return WhileOpen([&] { return IdleSession().Columns(table); });
}

std::vector<Index> Connection::Indexes(const TableName& table) {
  return WhileOpen([&] { return IdleSession().Indexes(table); });
}

std::vector<Key> Connection::Keys(const TableName& table) {
  return WhileOpen([&] { return IdleSession().Keys(table); });
}

std::map<TableName, TableDetails> Connection::AllTables() {
  return WhileOpen([&] { return IdleSession().AllTables(); });
}

}  // namespace dorvane::ado
