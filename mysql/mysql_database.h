#pragma once

#include <memory>
#include <optional>
#include <string>

#include "endpoint/database_base.h"

namespace dorvane {

/// A MySQL server. As the source of a transfer its tables become SQL Server tables.
class MySqlDatabase : public DatabaseBase {
 public:
  /// `host` must outlive the endpoint.
  explicit MySqlDatabase(IRunHost& host, ado::ProviderLookup providers = ado::InstalledProvider);

  ServerKind Kind() const override { return ServerKind::MySql; }
  std::optional<NameList> GetDatabases() override;
  bool CreateDatabase(const std::string& name) override;
  std::optional<NameList> GetTablesFromDatabase() override;

 protected:
  std::string_view SizesQuestion() const override;
  ServerInfo AskServerInfo(ado::Connection& connection) const override;
  std::unique_ptr<Conversion> MakeConversion(Conversion::Context context) override;

 private:
  std::optional<ConnectionFailure> DescribeConnectionFailure(
      const RunTimeError& error, const ado::Connection& connection) const override;
};

}  // namespace dorvane
