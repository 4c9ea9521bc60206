#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/ado/catalog_types.h"
#include "platform/ado/odbc/logon.h"

namespace dorvane::ado::odbc {

/// The catalog of the selected database as ODBC's catalog functions give it, table by table: for
/// servers that speak the protocol but lack SQL Server's own views. A name is the one spelled
/// exactly so, else the only one that differs in letter case. All throw ProviderError.
class DriverCatalog {
 public:
  explicit DriverCatalog(std::shared_ptr<Logon> logon);

  std::vector<TableInfo> Tables() const;
  std::vector<Column> Columns(const TableName& table) const;
  std::vector<Index> Indexes(const TableName& table) const;
  std::vector<Key> Keys(const TableName& table) const;

 private:
  std::vector<Key> PrimaryKey(const TableName& table) const;
  std::vector<Key> ForeignKeys(const TableName& table) const;
  /// A bare name when the schema is the login's.
  TableName NameIn(const std::string& schema, std::string name) const;

  std::shared_ptr<Logon> logon_;
  std::string default_schema_;
};

}  // namespace dorvane::ado::odbc
