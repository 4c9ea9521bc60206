#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/ado/catalog_types.h"
#include "platform/ado/connection.h"

namespace dorvane::ado {

/// A table of the catalog. Columns, indexes and keys are read once, when first asked for.
class Table {
 public:
  Table(Connection& connection, TableInfo info)
      : connection_(&connection), info_(std::move(info)) {}

  const std::string& Name() const { return info_.name; }
  const std::string& Type() const { return info_.type; }
  const std::vector<Column>& Columns();
  const std::vector<Index>& Indexes();
  const std::vector<Key>& Keys();

 private:
  Connection* connection_;
  TableInfo info_;
  std::optional<std::vector<Column>> columns_;
  std::optional<std::vector<Index>> indexes_;
  std::optional<std::vector<Key>> keys_;
};

/// The catalog of a connection's database, which must outlive it. Reads go through the connection
/// and fail as its operations do.
class Catalog {
 public:
  explicit Catalog(Connection& connection) : connection_(connection) {}

  /// All entries, in the server's order.
  std::vector<TableInfo> Tables() { return connection_.Tables(); }
  /// The table of that name: the exact spelling first, else the one that differs only in ASCII
  /// letter case. The list of tables is read once, and again for a name that it lacks. Throws
  /// RunTimeError kItemNotFound.
  Table& TableByName(std::string_view name);

 private:
  Connection& connection_;
  std::vector<TableInfo> infos_;  // as last read
  std::map<std::string, Table, std::less<>> tables_;
};

}  // namespace dorvane::ado
