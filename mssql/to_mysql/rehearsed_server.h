#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "endpoint/rehearsed_server.h"
#include "platform/ado/connection.h"

namespace dorvane::to_mysql {

/// A MySQL server that a rehearsal asks.
class RehearsedMySql : public IRehearsedServer {
 public:
  /// `connection` outlives this.
  explicit RehearsedMySql(ado::Connection& connection) : connection_(connection) {}

  std::vector<std::string> CopyOf(const ado::TableName& table, const std::string& copy,
                                  bool gives_identity) override;
  std::map<std::string, std::string> RenamedChecks(const ado::TableName& table,
                                                   const std::string& copy) override;
  std::string CopyOfColumns(const ado::TableName& table, const std::string& copy,
                            const std::vector<std::string>& columns) override;
  std::vector<std::string> GivenColumns(const ado::TableName& table) override;
  bool HasTriggers(const ado::TableName& table) override;
  std::optional<ado::ProviderError> SharedKey(const ado::TableName& table, const std::string& name,
                                              const std::vector<std::string>& columns) override;
  ErrorSummary LackOfParent(const ado::TableName& table, const ado::Key& key) override;
  ErrorSummary LackOfParents(const ado::TableName& table, const ado::Key& key) override;
  std::optional<ado::ProviderError> Denial(TableRight right, const ado::TableName& table) override;

 private:
  /// The refusal of a row by a key, as the server writes the key.
  ErrorSummary Orphan(const ado::TableName& table, const std::string& key);
  std::string DefinitionOf(const std::string& quoted_name);
  // rights.cpp
  std::optional<ado::ProviderError> SchemaDenial(const std::string& schema);

  ado::Connection& connection_;
};

}  // namespace dorvane::to_mysql
