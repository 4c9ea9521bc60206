#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/ado/catalog_types.h"
#include "platform/ado/connection.h"

namespace dorvane::ado {

/// A table of the catalog. Columns, indexes and keys are read once, when first asked for, unless
/// they came with the catalog.
class Table {
 public:
  /// `details` is null where the catalog tells of its tables one by one.
  Table(Connection& connection, TableInfo info, std::shared_ptr<const TableDetails> details)
      : connection_(&connection), info_(std::move(info)), details_(std::move(details)) {}

  const TableName& Name() const { return info_.name; }
  const std::string& Type() const { return info_.type; }
  const std::vector<Column>& Columns();
  /// Of indexes and keys the table's columns are spelled as Columns() has them.
  const std::vector<Index>& Indexes();
  const std::vector<Key>& Keys();
  /// True when the columns tell which one is the identity.
  bool TellsIdentity() const { return details_ != nullptr; }
  /// See TableDetails.
  const std::vector<std::string>& LeftOut() const;

 private:
  Connection* connection_;
  TableInfo info_;
  std::shared_ptr<const TableDetails> details_;
  std::optional<std::vector<Column>> columns_;
  std::optional<std::vector<Index>> indexes_;
  std::optional<std::vector<Key>> keys_;
};

/// The catalog of a connection's database, which must outlive it. Reads go through the connection
/// and fail as its operations do.
class Catalog {
 public:
  explicit Catalog(Connection& connection) : connection_(connection) {}

  /// Takes over what a catalog of the same database has read, which both then have once.
  void LearnFrom(const Catalog& other) { content_ = other.content_; }
  /// All entries, in the server's order.
  std::vector<TableInfo> Tables() { return connection_.Tables(); }
  /// The table that a list shows so: the exact spelling first, else the only one that differs in
  /// ASCII letter case. The catalog is read once, and again for a name that it lacks. Throws
  /// RunTimeError kItemNotFound.
  Table& TableByName(std::string_view listed);
  /// The name of a table that another one refers to, as the list has it; the name itself when the
  /// list has no such table.
  TableName Listed(const TableName& name);

 private:
  /// What the server told.
  struct Content {
    std::vector<TableInfo> infos;
    std::map<std::string, std::size_t, std::less<>> listed;  // positions by exact text
    std::map<TableName, std::shared_ptr<const TableDetails>> details;
  };

  void Read();
  const TableInfo* Find(std::string_view listed) const;

  Connection& connection_;
  std::shared_ptr<const Content> content_ = std::make_shared<Content>();  // as last read
  std::map<std::string, Table, std::less<>> tables_;
};

}  // namespace dorvane::ado
