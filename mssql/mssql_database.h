#pragma once

#include <memory>
#include <optional>
#include <string>

#include "endpoint/database_base.h"

namespace dorvane {

/// A Microsoft SQL Server. As the source of a transfer its tables become MySQL tables.
class MsSqlDatabase : public DatabaseBase {
 public:
  /// `host` must outlive the endpoint.
  explicit MsSqlDatabase(IRunHost& host, ado::ProviderLookup providers = ado::InstalledProvider);

  ServerKind Kind() const override { return ServerKind::MsSql; }
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
