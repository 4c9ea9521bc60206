#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "endpoint/rehearsed_server.h"
#include "platform/ado/connection.h"

namespace dorvane::to_mssql {

/// A SQL Server that a rehearsal asks.
class RehearsedMsSql : public IRehearsedServer {
 public:
  /// `connection` outlives this.
  explicit RehearsedMsSql(ado::Connection& connection) : connection_(connection) {}

  std::vector<std::string> CopyOf(const ado::TableName& table, const std::string& copy,
                                  bool gives_identity) override;
  /// None: the names are each table's own.
  std::map<std::string, std::string> RenamedChecks(const ado::TableName& /*table*/,
                                                   const std::string& /*copy*/) override {
    return {};
  }
  std::string CopyOfColumns(const ado::TableName& table, const std::string& copy,
                            const std::vector<std::string>& columns) override;
  std::vector<std::string> GivenColumns(const ado::TableName& table) override;
  bool HasTriggers(const ado::TableName& table) override;
  std::optional<ado::ProviderError> SharedKey(const ado::TableName& table, const std::string& name,
                                              const std::vector<std::string>& columns) override;
  ErrorSummary LackOfParent(const ado::TableName& table, const ado::Key& key) override;
  ErrorSummary LackOfParents(const ado::TableName& table, const ado::Key& key) override;
  /// In rights.cpp.
  std::optional<ado::ProviderError> Denial(TableRight right, const ado::TableName& table) override;

 private:
  std::string FullName(const ado::TableName& table);
  ErrorSummary Orphan(std::string_view statement, const ado::TableName& table, const ado::Key& key);

  ado::Connection& connection_;
};

}  // namespace dorvane::to_mssql
