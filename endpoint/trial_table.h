#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

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
  /// Makes it, as a table that is there already, or adds to it, by a statement that names it so.
  /// Empty, or why that failed, after which it is as it was.
  std::string Add(const std::string& statement);
  /// The names that the server's words have in place of its own.
  void CallChecks(std::map<std::string, std::string> names) { checks_ = std::move(names); }
  bool IsThere() const { return is_there_; }
  ServerKind Server() const { return kind_; }
  const ado::TableName& StandsFor() const { return stands_for_; }
  /// Open, until the connection to the server is lost.
  ado::Connection& Connection() { return *connection_; }
  /// No longer asks the server.
  void GiveUp();

  // While it is there.

  ado::TableName Name() const { return name_; }
  std::string QuotedName() const;
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
  std::map<std::string, std::string> checks_;  // names of the table's by the trial's
  bool is_there_ = false;
  bool is_usable_ = true;
};

}  // namespace dorvane
