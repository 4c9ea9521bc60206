#pragma once

#include <sql.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/ado/odbc/logon.h"
#include "platform/ado/table_name.h"
#include "platform/ado/value.h"

namespace dorvane::ado::odbc {

/// One row of a catalog function, its values by the names that ODBC gives them.
class CatalogRow {
 public:
  explicit CatalogRow(std::map<std::string, std::string> values) : values_(std::move(values)) {}

  /// Empty for NULL and for a column that the driver does not have.
  std::string Text(const std::string& name) const;
  std::optional<std::string> OptionalText(const std::string& name) const;
  std::optional<int> OptionalNumber(const std::string& name) const;
  /// 0 for NULL.
  int Number(const std::string& name) const { return OptionalNumber(name).value_or(0); }

 private:
  std::map<std::string, std::string> values_;  // without the NULLs
};

/// Calls a catalog function, or runs a query, on a statement handle; returns what that returned.
using CatalogCall = std::function<SQLRETURN(SQLHANDLE)>;

/// Makes the call on a fresh statement and reads all of its rows. Throws ProviderError.
std::vector<CatalogRow> ReadCatalog(const std::shared_ptr<Logon>& logon, const CatalogCall& call);

/// The same of a query.
std::vector<CatalogRow> ReadCatalog(const std::shared_ptr<Logon>& logon, std::string_view sql);

/// One row of a query, its values by position; valid as long as the row is at hand.
class QueryRow {
 public:
  explicit QueryRow(std::span<const Value> values) : values_(values) {}

  /// Empty for NULL.
  std::string Text(std::size_t i) const { return OptionalText(i).value_or(std::string()); }
  std::optional<std::string> OptionalText(std::size_t i) const;
  /// 0 for NULL; a bit is 0 or 1.
  std::int64_t Number(std::size_t i) const;
  bool Flag(std::size_t i) const { return Number(i) != 0; }

 private:
  std::span<const Value> values_;
};

/// Hands on the rows of a query one by one, for those who do not want to hold them all. Throws
/// ProviderError.
void ForEachRow(const std::shared_ptr<Logon>& logon, std::string_view sql,
                const std::function<void(const QueryRow& row)>& use);

/// Which columns of a catalog function's rows name a table.
struct NameColumns {
  std::string table;
  std::string schema;
};

/// The rows of one table: those of exactly that name, else those of the only name that differs in
/// letter case; of these the ones of its schema. A bare name is one of the default schema, else of
/// the first one that the rows have.
std::vector<CatalogRow> RowsOfTable(std::vector<CatalogRow> rows, const NameColumns& columns,
                                    const TableName& table, const std::string& default_schema);

/// A search pattern that finds the name, and perhaps others of its length: drivers do not agree on
/// how the pattern characters in a name are quoted, so any character may stand in their place.
std::u16string AsPattern(std::string_view name);

}  // namespace dorvane::ado::odbc
