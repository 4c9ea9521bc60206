#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "platform/ado/catalog_types.h"
#include "platform/ado/odbc/logon.h"

namespace dorvane::ado::odbc {

/// The catalog of the selected database as SQL Server's own views tell it (schema "sys", since
/// 2005): of one table, or of all of them in as many questions. All throw ProviderError.
class SystemViews {
 public:
  /// Asks what the server's views have; nothing where one of them is missing.
  static std::optional<SystemViews> Find(std::shared_ptr<Logon> logon);

  /// Those of the default schema first, then by schema and name.
  std::vector<TableInfo> Tables() const;
  std::vector<Column> Columns(const TableName& table) const;
  std::vector<Index> Indexes(const TableName& table) const;
  std::vector<Key> Keys(const TableName& table) const;
  std::map<TableName, TableDetails> AllTables() const;

 private:
  /// Gives the details of the table with that number; null for one that is left out.
  using DetailsOf = std::function<TableDetails*(std::int64_t object_id)>;

  SystemViews(std::shared_ptr<Logon> logon, std::set<std::string> columns)
      : logon_(std::move(logon)), columns_(std::move(columns)) {}

  // `object_id` is a query for the number of one table; empty: all tables.
  void ReadColumns(const std::string& object_id, const DetailsOf& details_of) const;
  void ReadIndexes(const std::string& object_id, const DetailsOf& details_of) const;
  void ReadKeys(const std::string& object_id, const DetailsOf& details_of) const;
  /// `alias`.`column` where the view has it, else 0.
  std::string IfThere(const std::string& view, const std::string& alias,
                      const std::string& column) const;

  std::shared_ptr<Logon> logon_;
  std::set<std::string> columns_;  // "view.column"
};

}  // namespace dorvane::ado::odbc
