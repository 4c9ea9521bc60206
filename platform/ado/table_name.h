#pragma once

#include <compare>
#include <string>
#include <utility>

namespace dorvane::ado {

/// The name of a table and what it stands in: a schema of SQL Server's database, a database of
/// MySQL's server. A bare name means a table of the login's default schema, or of the selected
/// database.
struct TableName {
  std::string schema;  // empty for a bare name
  std::string name;

  TableName() = default;
  // Implicit: most names are bare.
  TableName(std::string bare_name) : name(std::move(bare_name)) {}
  TableName(const char* bare_name) : name(bare_name) {}
  TableName(std::string in_schema, std::string of_table)
      : schema(std::move(in_schema)), name(std::move(of_table)) {}

  auto operator<=>(const TableName&) const = default;
  bool IsBare() const { return schema.empty(); }
  /// As lists, settings and messages show it: "Orders", "Sales.Orders". Not quoted.
  std::string Text() const { return IsBare() ? name : schema + "." + name; }
};

}  // namespace dorvane::ado
