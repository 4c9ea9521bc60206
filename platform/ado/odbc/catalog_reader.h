#pragma once

#include <memory>
#include <variant>

#include "platform/ado/odbc/driver_catalog.h"
#include "platform/ado/odbc/system_views.h"

namespace dorvane::ado::odbc {

/// A session's catalog: SQL Server's own views where the server has them, else the driver's
/// functions. Which, is asked when the catalog is first needed. All throw ProviderError.
class CatalogReader {
 public:
  explicit CatalogReader(std::shared_ptr<Logon> logon) : logon_(std::move(logon)) {}

  std::vector<TableInfo> Tables();
  std::vector<Column> Columns(const TableName& table);
  std::vector<Index> Indexes(const TableName& table);
  std::vector<Key> Keys(const TableName& table);
  /// Empty without the views.
  std::map<TableName, TableDetails> AllTables();

 private:
  using Catalog = std::variant<SystemViews, DriverCatalog>;
  const Catalog& Opened();

  std::shared_ptr<Logon> logon_;
  std::optional<Catalog> catalog_;
};

}  // namespace dorvane::ado::odbc
