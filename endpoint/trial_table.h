#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "endpoint/definition_statement.h"
#include "platform/ado/connection.h"

namespace dorvane {

/// A temporary table that stands for the table that a rehearsal has in hand: what the server says
/// of the one it would say of the other. It belongs to a session of its own and is gone with it.
class TrialTable {
 public:
  /// `connection` is open, its database selected.
  TrialTable(std::unique_ptr<ado::Connection> connection, ServerKind kind);

  /// Stands from now on for this table of the destination, and is not there until a statement that
  /// makes the table has been tried.
  void StandFor(const ado::TableName& table);
  /// Carries out a statement that makes or changes the table. Throws ProviderError when the server
  /// refuses it. Any other statement is taken for done, and so is every one once the server cannot
  /// be asked.
  void Try(std::string_view sql, const DefinitionStatement& definition);
  /// Makes it by these statements, which name it, as a table that is there already. It is not there
  /// afterwards when one of them fails.
  void Make(const std::vector<std::string>& statements);
  bool IsThere() const { return is_there_; }
  ServerKind Server() const { return kind_; }
  /// No longer asks the server.
  void GiveUp();

  // While it is there.

  ado::TableName Name() const { return name_; }
  std::string QuotedName() const;
  ado::Connection& Connection() { return *connection_; }
  /// Takes the connection or gives it back.
  void SwapConnection(std::unique_ptr<ado::Connection>& other) { connection_.swap(other); }
  /// Throws RunTimeError.
  void Empty();
  /// The server's words, as it would say them of the table.
  std::string Words(std::string text) const;

 private:
  /// What to send in place of a statement; none for one that does not concern the table.
  std::optional<std::string> TrialOf(std::string_view sql,
                                     const DefinitionStatement& definition) const;
  void Drop();

  std::unique_ptr<ado::Connection> connection_;
  const ServerKind kind_;
  const ado::TableName name_;
  ado::TableName stands_for_;
  bool is_there_ = false;
  bool is_usable_ = true;
};

}  // namespace dorvane
